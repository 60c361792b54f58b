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

// Each row's fields as title|price|bids|time left, scanned as a query scans a page.
std::vector<std::string> ScanRows(const std::string& page, bool uk, std::string* firstLink = nullptr) {
  const sites::SiteConfig& site = kProfile.site(uk ? sites::Site::UK : sites::Site::USA);
  std::vector<std::string> rows;
  for (int s = base::Find(page, site.itemLinkPrefix, 0); s != -1 && rows.size() < 100;) {
    const ListingRow row = ParseRow(page, s, base::Find(page, ">", s), site, uk);
    if (firstLink && rows.empty()) *firstLink = row.link;
    rows.push_back(row.title + "|" + row.price + "|" + row.bids + "|" + row.timeLeft);
    s = row.s2;
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
  std::string link;
  // A picture's title attribute names the item; behind "Listing has pictures" the next link does.
  EXPECT_EQ(ScanRows(page, false, &link), (std::vector<std::string>{"Lamp & Shade|$1,234.56|-|23h 59m",
                                                                    "Vase|AU $10.00|7|3d 04h", "Bowl|$5.00|12|"}));
  EXPECT_EQ(link, "http://cgi.ebay.com/ws/eBayISAPI.dll?ViewItem&category=1&item=1");
}

TEST(ListingScan, ReadsUkRowsWithThePoundByteAndTheTimeCellAfterAnIcon) {
  const std::string link = "http://cgi.ebay.co.uk/ws/eBayISAPI.dll?ViewItem&amp;category=1&amp;item=9";
  const std::string page =
      "<tr>\n<td><a href=\"" + link + "\"><img alt=\"Listing has pictures\"></a></td>\n<td><a href=\"" + link +
      "\">Tea Set</a></td>\n<td align=\"right\"><b>\xA3\x31\x32.50</b></td>\n<td align=\"center\">4</td>\n"
      "<td align=\"center\"></td>\n<td align=\"right\">2d 10h</td>\n</tr>";
  EXPECT_EQ(ScanRows(page, true), std::vector<std::string>{"Tea Set|\xA3\x31\x32.50|4|2d 10h"});
}

TEST(ListingScan, PricesDropTheirCentsAndForeignOnesAreMinusOneDaysAndBidsReadTheirLeadingNumber) {
  EXPECT_EQ(ParsePrice("$1,234.56"), 1234);
  EXPECT_EQ(ParsePrice("\xA3\x31\x32.50"), 12);
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
