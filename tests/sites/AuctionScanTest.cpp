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

// Each row as name=count.
std::vector<std::string> Scan(const std::string& page, std::vector<std::string> links = {"/Art/list"}) {
  std::vector<std::string> rows;
  for (const AuctionRow& row : ScanAuctionRows(page, links, "listings.ebay.com", ".ebay.com")) {
    rows.push_back(row.name + "=" + row.count);
  }
  return rows;
}

TEST(AuctionScan, ReadsTheSubCategoriesAfterEachCategoryUntilTheFirstOtherLink) {
  const std::string page = kCategory + Sub("Prints", "1,234") + Sub("Paintings &amp; Oils", "340", "2") +
                           "<a href=\"http://pages.ebay.com/help\">help</a>" + Sub("Later", "7", "9");
  EXPECT_EQ(Scan(page), (std::vector<std::string>{"Prints=1,234", "Paintings & Oils=340"}));
  EXPECT_EQ(ScanAuctionRows(page, {"/Art/list"}, "listings.ebay.com", ".ebay.com")[0].link,
            "http://listings.ebay.com/Art/S1/ListingItemList/list/");
}

TEST(AuctionScan, CategoriesListedOutOfPageOrderAreStillFoundAndMissingOnesAddNothing) {
  const std::string music = "<a href=\"/Music/list/\"><b>Music</b></a> (9)<br>";
  const std::string page = kCategory + Sub("Prints", "12") + "<a href=\"http://listings.ebay.com/Art/list/\">more</a>" +
                           music + Sub("Vinyl", "3", "7") + "<a href=\"http://listings.ebay.com/Music/\">more</a>";
  EXPECT_EQ(Scan(page, {"/Music/list", "/Art/list"}), (std::vector<std::string>{"Vinyl=3", "Prints=12"}));
  EXPECT_EQ(Scan(page, {"/Art/list", "/Nowhere/list", "/Music/list"}),
            (std::vector<std::string>{"Prints=12", "Vinyl=3"}));
}

TEST(AuctionScan, CountWithoutItsParenthesisIsEmptyAndEndsTheCategory) {
  const auto rows = Scan(kCategory + Sub("Prints", "12") +
                         "<a href=\"http://listings.ebay.com/T/ListingItemList/\">Tools</a> (477 <br></html>");
  EXPECT_EQ(rows, (std::vector<std::string>{"Prints=12", "Tools="}));
}

}  // namespace
}  // namespace gavelscope::sites
