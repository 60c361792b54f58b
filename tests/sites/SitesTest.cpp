// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
//
// The scanners of the sites' pages, and which addresses count as the sites'.
#include <gtest/gtest.h>

#include <tuple>

#include "base/TextHelpers.h"
#include "net/AddressCheck.h"
#include "sites/AuctionScan.h"
#include "sites/CategoryAnchors.h"
#include "sites/ItemPage.h"
#include "sites/ListingLinks.h"
#include "sites/ListingScan.h"
#include "sites/SiteAddresses.h"

namespace gavelscope::sites {
namespace {

using Texts = std::vector<std::string>;

const Profile kProfile = CompiledProfile();

TEST(CategoryAnchors, ReadsBoldAnchorsFollowedByACountInPageOrder) {
  const std::tuple<std::string, Texts, Texts> rows[] = {
      // The cut stops three characters before the anchor text, so the closing "/" goes too.
      {"<html><a href=\"http://listings.ebay.com/Books/list/\"><b>Books</b></a> (1,234)<br>"
       "<a href=\"http://listings.ebay.com/Toys/list/\"><b>Toys &amp; Hobbies</b></a> (55)</html>",
       {"Books", "Toys & Hobbies"},
       {"http://listings.ebay.com/Books/list", "http://listings.ebay.com/Toys/list"}},
      // Both backward searches stop at the last '<': an inner <b> starts the name, and the anchor is
      // taken to begin at the outer <b>, which leaves no room for a link.
      {"<a href=\"http://h/Art/\"><b>Art &amp; <b>Craft</b></a> (7)", {"Craft"}, {""}},
      {"<html><a href=\"http://h/x/\">plain</a> (3)</html>", {}, {}}};
  for (const auto& [page, expectedNames, expectedLinks] : rows) {
    Texts names, links;
    ParseCategoryAnchors(page, names, links);
    EXPECT_EQ(names, expectedNames) << page;
    EXPECT_EQ(links, expectedLinks) << page;
  }
}

std::string Sub(const std::string& name, const std::string& count, const std::string& id = "1") {
  return "<a href=\"http://listings.ebay.com/Art/S" + id + "/ListingItemList/list/\">" + name + "</a> (" + count +
         ")<br>";
}

const std::string kArt = "<a href=\"/Art/list/\"><b>Art</b></a> (100)<br>";

// Each row as name=count, and the first row's link.
Texts ScanAuctions(const std::string& page, const Texts& links = {"/Art/list"}, std::string* firstLink = nullptr) {
  Texts rows;
  for (const AuctionRow& row : ScanAuctionRows(page, links, "listings.ebay.com", ".ebay.com")) {
    if (firstLink && rows.empty()) *firstLink = row.link;
    rows.push_back(row.name + "=" + row.count);
  }
  return rows;
}

TEST(AuctionScan, ReadsTheSubCategoriesAfterEachCategoryUntilTheFirstOtherLink) {
  const std::string page = kArt + Sub("Prints", "1,234") + Sub("Paintings &amp; Oils", "340", "2") +
                           "<a href=\"http://pages.ebay.com/help\">help</a>" + Sub("Later", "7", "9");
  std::string link;
  EXPECT_EQ(ScanAuctions(page, {"/Art/list"}, &link), (Texts{"Prints=1,234", "Paintings & Oils=340"}));
  EXPECT_EQ(link, "http://listings.ebay.com/Art/S1/ListingItemList/list/");
  // A count without its ")" is empty and ends the category.
  EXPECT_EQ(ScanAuctions(kArt + Sub("Prints", "12") +
                         "<a href=\"http://listings.ebay.com/T/ListingItemList/\">Tools</a> (477 <br></html>"),
            (Texts{"Prints=12", "Tools="}));
}

TEST(AuctionScan, CategoriesListedOutOfPageOrderAreStillFoundAndMissingOnesAddNothing) {
  const std::string music = "<a href=\"/Music/list/\"><b>Music</b></a> (9)<br>";
  const std::string page = kArt + Sub("Prints", "12") + "<a href=\"http://listings.ebay.com/Art/list/\">more</a>" +
                           music + Sub("Vinyl", "3", "7") + "<a href=\"http://listings.ebay.com/Music/\">more</a>";
  EXPECT_EQ(ScanAuctions(page, {"/Music/list", "/Art/list"}), (Texts{"Vinyl=3", "Prints=12"}));
  EXPECT_EQ(ScanAuctions(page, {"/Art/list", "/Nowhere/list", "/Music/list"}), (Texts{"Prints=12", "Vinyl=3"}));
}

std::string UsaRow(const std::string& item, const std::string& picture, const std::string& title,
                   const std::string& price, const std::string& bids, const std::string& time) {
  const std::string link = "http://cgi.ebay.com/ws/eBayISAPI.dll?ViewItem&amp;category=1&amp;item=" + item;
  return "<table><tr>\n<td width=\"70\"><a href=\"" + link + "\">" + picture + "</a></td>\n<td><a href=\"" + link +
         "\">" + title + "</a></td>\n<td align=\"right\"><span class=\"price\">" + price +
         "</span></td>\n<td align=\"center\" width=\"50\">" + bids + "</td>\n<td align=\"right\">" + time +
         "</td>\n</tr></table>\n";
}

// Each row's fields as title|price|bids|time left, scanned as a query scans a page.
Texts ScanRows(const std::string& page, bool uk, std::string* firstLink = nullptr) {
  const SiteConfig& site = kProfile.site(uk ? Site::UK : Site::USA);
  Texts rows;
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
  EXPECT_EQ(ScanRows(page, false, &link),
            (Texts{"Lamp & Shade|$1,234.56|-|23h 59m", "Vase|AU $10.00|7|3d 04h", "Bowl|$5.00|12|"}));
  EXPECT_EQ(link, "http://cgi.ebay.com/ws/eBayISAPI.dll?ViewItem&category=1&item=1");
}

TEST(ListingScan, ReadsUkRowsWithThePoundByteAndTheTimeCellAfterAnIcon) {
  const std::string link = "http://cgi.ebay.co.uk/ws/eBayISAPI.dll?ViewItem&amp;category=1&amp;item=9";
  const std::string page =
      "<tr>\n<td><a href=\"" + link + "\"><img alt=\"Listing has pictures\"></a></td>\n<td><a href=\"" + link +
      "\">Tea Set</a></td>\n<td align=\"right\"><b>\xA3\x31\x32.50</b></td>\n<td align=\"center\">4</td>\n"
      "<td align=\"center\"></td>\n<td align=\"right\">2d 10h</td>\n</tr>";
  EXPECT_EQ(ScanRows(page, true), Texts{"Tea Set|\xA3\x31\x32.50|4|2d 10h"});
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
            (Texts{"http://listings.ebay.com/Art/A/ListingItemList/QQsosortpropertyZ1",
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

TEST(ViewLink, SwapsEveryListSegmentForTheViewsOwnAndLeavesLinksWithoutOneAlone) {
  constexpr std::string_view kLink = "http://listings.ebay.com/Books/Fiction/list/index.html";
  const std::tuple<std::string_view, ListingView, std::string_view> rows[] = {
      {kLink, ListingView::Current, kLink},
      {kLink, ListingView::NewToday, "http://listings.ebay.com/Books/Fiction/newtoday/all/index.html"},
      {kLink, ListingView::EndingToday, "http://listings.ebay.com/Books/Fiction/endtoday/all/index.html"},
      {kLink, ListingView::GoingGone, "http://listings.ebay.com/Books/Fiction/going/all/index.html"},
      {"http://h/list/a/list/b", ListingView::GoingGone, "http://h/going/all/a/going/all/b"},
      // The segment is matched case and all: "ItemList/" is no "list/".
      {"http://h/Books/ListingItemList/all", ListingView::NewToday, "http://h/Books/ListingItemList/all"}};
  for (const auto& [link, view, expected] : rows) EXPECT_EQ(ViewLink(link, view), expected) << link;
}

TEST(LinkedPage, FindsEachMarkersLinkOrNothing) {
  const std::string page =
      "<a href=\"http://x/seller?a=1&amp;b=2\"><b>View seller's other items</b></a> Bid History: 5"
      " <a href=\"http://cgi.ebay.com/bids?i=1&amp;x=2\">bids</a><a href=\"http://feedback.ebay.com/f\">Read feedback "
      "comments</a>";
  EXPECT_EQ(LinkedPageUrl(page, LinkedPage::BidHistory, false), "http://cgi.ebay.com/bids?i=1&x=2");
  EXPECT_EQ(LinkedPageUrl(page, LinkedPage::BidHistory, true), "http://cgi.ebay.co.uk/bids?i=1&x=2");
  EXPECT_EQ(LinkedPageUrl(page, LinkedPage::SellersOtherItems, false), "http://x/seller?a=1&b=2");
  EXPECT_EQ(LinkedPageUrl(page, LinkedPage::SellerFeedback, false), "http://feedback.ebay.com/f");
  EXPECT_EQ(LinkedPageUrl("no markers here", LinkedPage::SellerFeedback, false), "");
  EXPECT_EQ(LinkedPageUrl("History without a link", LinkedPage::BidHistory, false), "");
  EXPECT_EQ(LinkedPageUrl("History <a href=\"http://cut", LinkedPage::BidHistory, false), "");
}

TEST(SiteAddresses, OnlyPlainWebAddressesOfTheSitesHostsPass) {
  // Each address, whether it is a listing page of Site USA, and whether it is on the sites.
  const std::tuple<const char*, bool, bool> rows[] = {
      {"http://listings.ebay.com/Art/A/ListingItemListQQfrpgZ2", true, true},
      {"HTTP://Listings.EBAY.com/Art/", true, true},
      {"https://listings.ebay.com/Art/", true, true},
      {"http://cgi.ebay.co.uk/ws/eBayISAPI.dll?ViewItem&item=1", false, true},
      {"http://listings.ebay.com@evil.example/next?page=2", false, false},
      {"http://evil@listings.ebay.com/Art/", false, false},
      {"http://evil.example/listings.ebay.com/", false, false},
      {"http://cgi.ebay.com.evil.example/item", false, false},
      {"http://notebay.com/item", false, false},
      {"ftp://listings.ebay.com/Art/", false, false},
      {"listings.ebay.com/Art/", false, false},
      {"http://listings.ebay.com /Art/", false, false},
      {"http://evil.example\\@listings.ebay.com/", false, false}};
  for (const auto& [url, listingPage, sitePage] : rows) {
    EXPECT_EQ(IsListingPageAddress(url, kProfile.usa), listingPage) << url;
    EXPECT_EQ(IsSiteAddress(url, kProfile), sitePage) << url;
  }
  EXPECT_TRUE(net::IsAddressOnHost("http://listings.ebay.co.uk/Art/", "listings.ebay.co.uk"));
  EXPECT_FALSE(net::IsAddressOnHost("http://listings.ebay.co.uk/Art/", "listings.ebay.co"));
  EXPECT_FALSE(net::IsAddressOnHost("http://listings.ebay.co.uk/Art/", ""));
  EXPECT_FALSE(net::IsAddressUnderDomain("http://cgi.ebay.com/item", "ebay.com"));
}

}  // namespace
}  // namespace gavelscope::sites
