// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "sites/ListingScan.h"

#include <gtest/gtest.h>

#include "base/TextHelpers.h"

namespace gavelscope::sites {
namespace {

const sites::Profile kProfile = sites::CompiledProfile();

std::string UsaRow(const std::string& item, const std::string& picture, const std::string& title,
                   const std::string& price, const std::string& bids, const std::string& time) {
  const std::string link = "http://cgi.ebay.com/ws/eBayISAPI.dll?ViewItem&amp;category=1&amp;item=" + item;
  return "<table><tr>\n<td width=\"70\"><a href=\"" + link + "\">" + picture + "</a></td>\n<td><a href=\"" + link +
         "\">" + title + "</a></td>\n<td align=\"right\"><span class=\"price\">" + price +
         "</span></td>\n<td align=\"center\" width=\"50\">" + bids + "</td>\n<td align=\"right\">" + time +
         "</td>\n</tr></table>\n";
}

std::vector<ListingRow> ScanRows(const std::string& page, bool uk) {
  const sites::SiteConfig& site = kProfile.site(uk ? sites::Site::UK : sites::Site::USA);
  std::vector<ListingRow> rows;
  int s = base::Find(page, site.itemLinkPrefix, 0);
  while (s != -1 && rows.size() < 100) {
    rows.push_back(ParseRow(page, s, base::Find(page, ">", s), site, uk));
    s = rows.back().s2;
  }
  return rows;
}

TEST(ListingScan, ReadsUsaRowsOfEveryKind) {
  const std::string page = "<html>" +
                           UsaRow("1", "<img src=\"x.gif\" title=\"Lamp &amp; Shade\" alt=\"Lamp\" border=\"0\">",
                                  "Lamp", "$1,234.56", "-", "23h 59m") +
                           UsaRow("2", "<img alt=\"Listing has pictures\">", "Vase",
                                  "<font color=\"red\"><b>AU $10.00</b></font>", "7", "3d 04h") +
                           UsaRow("3", "", "Bowl", "$5.00", "12", "") + "</html>";
  const auto rows = ScanRows(page, false);
  ASSERT_EQ(rows.size(), 3U);
  EXPECT_EQ(rows[0].title, "Lamp & Shade");
  EXPECT_EQ(rows[0].link, "http://cgi.ebay.com/ws/eBayISAPI.dll?ViewItem&category=1&item=1");
  EXPECT_EQ(rows[0].price, "$1,234.56");
  EXPECT_EQ(rows[0].bids, "-");
  EXPECT_EQ(rows[0].timeLeft, "23h 59m");
  // Later rows are entered by their title link.
  EXPECT_EQ(rows[1].title, "Vase");
  EXPECT_EQ(rows[1].price, "AU $10.00");
  EXPECT_EQ(rows[2].timeLeft, "");
  EXPECT_EQ(rows[2].s2, -1);
}

TEST(ListingScan, ReadsUkRowsWithThePoundByteAndTheTimeCellAfterAnIcon) {
  const std::string link = "http://cgi.ebay.co.uk/ws/eBayISAPI.dll?ViewItem&amp;category=1&amp;item=9";
  const std::string page = "<tr>\n<td><a href=\"" + link +
                           "\"><img alt=\"Listing has pictures\"></a></td>\n<td><a href=\"" + link +
                           "\">Tea Set</a></td>\n<td align=\"right\"><b>\xA3"
                           "12.50</b></td>\n<td align=\"center\">4</td>\n"
                           "<td align=\"center\"></td>\n<td align=\"right\">2d 10h</td>\n</tr>";
  const auto rows = ScanRows(page, true);
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_EQ(rows[0].title, "Tea Set");
  EXPECT_EQ(rows[0].price,
            "\xA3"
            "12.50");
  EXPECT_EQ(ParsePrice(rows[0].price), 12);
  EXPECT_EQ(rows[0].timeLeft, "2d 10h");
}

TEST(ListingScan, PageCutShortStaysInside) {
  const std::string row = UsaRow("1", "", "Lamp", "$5.00", "3", "1d");
  for (std::size_t cut = 0; cut < row.size(); cut += 7) {
    const auto rows = ScanRows(row.substr(0, cut), false);
    EXPECT_LE(rows.size(), 1U);
  }
}

TEST(ListingScan, PricesDaysAndBids) {
  EXPECT_EQ(ParsePrice("$1,234.56"), 1234);
  EXPECT_EQ(ParsePrice("$12.99"), 12);
  EXPECT_EQ(ParsePrice("AU $10.00"), -1);
  EXPECT_EQ(ParsePrice("GBP 5.00"), -1);
  EXPECT_EQ(ParsePrice("C $5.00"), -1);
  EXPECT_EQ(ParseDaysLeft("3d 04h"), 3);
  EXPECT_EQ(ParseDaysLeft("23h 59m"), 0);
  EXPECT_EQ(ParseBids("-"), 0);
  EXPECT_EQ(ParseBids(" 41"), 41);
}

TEST(ListingScan, KeywordFieldsAreTrimmedAndAnEmptyFieldMatchesAll) {
  EXPECT_TRUE(MatchesKeywords("Lego castle", " lego , duplo "));
  EXPECT_TRUE(MatchesKeywords("DUPLO train", " lego , duplo "));
  EXPECT_FALSE(MatchesKeywords("Meccano", " lego , duplo "));
  EXPECT_TRUE(MatchesKeywords("Meccano", "lego,"));
  EXPECT_TRUE(MatchesKeywords("Meccano", ""));
}

TEST(ListingScan, ListingLinksFollowTheCategoryUntilAnotherLink) {
  const std::string home =
      "<a href=\"/Art/list/\"><b>Art</b></a> (3)<br>"
      "<a href=\"http://listings.ebay.com/Art/A/ListingItemList/\">A</a> (1)"
      "<a href=\"http://x@listings.ebay.com/Art/X/ListingItemList/\">X</a> (1)"
      "<a href=\"http://listings.ebay.com/Art/B/ListingItemList/\">B</a> (2)"
      "<a href=\"http://listings.ebay.com/Art/list/\">more...</a>"
      "<a href=\"http://listings.ebay.com/Art/C/ListingItemList/\">C</a> (2)";
  EXPECT_EQ(BuildListingLinks(home, "/Art/list", kProfile.usa),
            (std::vector<std::string>{"http://listings.ebay.com/Art/A/ListingItemList/QQsosortpropertyZ1",
                                      "http://listings.ebay.com/Art/B/ListingItemList/QQsosortpropertyZ1"}));
  EXPECT_TRUE(BuildListingLinks(home, "/Nowhere/list", kProfile.usa).empty());
}

TEST(ListingScan, NextPageAddressComesFromTheContinueLink) {
  const std::string page = "<a href=\"/Art/A/ListingItemListQQfrpgZ2\">Next <img title=\"Continue\"></a>";
  const int c = base::Find(page, kContinueMarker, 0);
  EXPECT_EQ(NextPageUrl(page, c, kProfile, false), "http://listings.ebay.com/Art/A/ListingItemListQQfrpgZ2");
  EXPECT_EQ(NextPageUrl(page, c, kProfile, true), "http://listings.ebay.co.uk/Art/A/ListingItemListQQfrpgZ2");
  // Glued to the listing root, "@host" would make the listing host a user name of another host.
  const std::string hostile = "<a href=\"@evil.example/next\">Next <img title=\"Continue\"></a>";
  EXPECT_EQ(NextPageUrl(hostile, base::Find(hostile, kContinueMarker, 0), kProfile, false), "");
}

}  // namespace
}  // namespace gavelscope::sites
