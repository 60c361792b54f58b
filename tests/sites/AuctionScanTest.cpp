// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "sites/AuctionScan.h"

#include <gtest/gtest.h>

namespace gavelscope::sites {
namespace {

std::string Sub(const std::string& name, const std::string& count, const std::string& id = "1") {
  return "<a href=\"http://listings.ebay.com/Art/S" + id + "/ListingItemList/list/\">" + name + "</a> (" + count +
         ")<br>";
}

const std::string kCategory = "<a href=\"/Art/list/\"><b>Art</b></a> (100)<br>";

std::vector<std::string> Names(const std::vector<AuctionRow>& rows) {
  std::vector<std::string> names;
  for (const AuctionRow& row : rows) names.push_back(row.name + "=" + row.count);
  return names;
}

std::vector<AuctionRow> Scan(const std::string& page, std::vector<std::string> links = {"/Art/list"}) {
  return ScanAuctionRows(page, links, "listings.ebay.com", ".ebay.com");
}

TEST(AuctionScan, ReadsTheSubCategoriesAfterEachCategory) {
  const auto rows = Scan(kCategory + Sub("Prints", "12") + Sub("Paintings &amp; Oils", "340", "2") +
                         Sub("Posters", "5", "3") + "<a href=\"http://listings.ebay.com/Art/list/\">more...</a>");
  EXPECT_EQ(Names(rows), (std::vector<std::string>{"Prints=12", "Paintings & Oils=340", "Posters=5"}));
  EXPECT_EQ(rows[0].link, "http://listings.ebay.com/Art/S1/ListingItemList/list/");
}

TEST(AuctionScan, FirstOtherLinkEndsTheCategory) {
  const auto rows = Scan(kCategory + Sub("Prints", "1,234") + "<a href=\"http://pages.ebay.com/help\">help</a>" +
                         Sub("Later", "7", "9"));
  EXPECT_EQ(Names(rows), std::vector<std::string>{"Prints=1,234"});
}

TEST(AuctionScan, CategoryMissingFromThePageAddsNothing) {
  EXPECT_TRUE(Scan(kCategory + Sub("Prints", "12"), {"/Nowhere/list"}).empty());
  EXPECT_TRUE(Scan("", {"/Art/list"}).empty());
}

TEST(AuctionScan, CategoriesListedOutOfPageOrderAreStillFound) {
  const std::string music = "<a href=\"/Music/list/\"><b>Music</b></a> (9)<br>";
  const std::string page = kCategory + Sub("Prints", "12") + "<a href=\"http://listings.ebay.com/Art/list/\">more</a>" +
                           music + Sub("Vinyl", "3", "7") + "<a href=\"http://listings.ebay.com/Music/\">more</a>";
  EXPECT_EQ(Names(Scan(page, {"/Music/list", "/Art/list"})), (std::vector<std::string>{"Vinyl=3", "Prints=12"}));
  EXPECT_EQ(Names(Scan(page, {"/Art/list", "/Nowhere/list", "/Music/list"})),
            (std::vector<std::string>{"Prints=12", "Vinyl=3"}));
}

TEST(AuctionScan, CountWithoutItsParenthesisIsEmptyAndEndsTheCategory) {
  const auto rows = Scan(kCategory + Sub("Prints", "12") +
                         "<a href=\"http://listings.ebay.com/T/ListingItemList/\">Tools</a> (477 <br></html>");
  EXPECT_EQ(Names(rows), (std::vector<std::string>{"Prints=12", "Tools="}));
}

TEST(AuctionScan, PageEndingInsideASubCategoryLinkStops) {
  // Searches from -1 find the page's last tag; a scan that went on from there would never end.
  const auto rows = Scan(kCategory + "<a href=\"http://listings.ebay.com/T/ListingItemList/\">");
  EXPECT_EQ(rows.size(), 1U);
}

}  // namespace
}  // namespace gavelscope::sites
