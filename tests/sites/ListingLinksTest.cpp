// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "sites/ListingLinks.h"

#include <gtest/gtest.h>

namespace gavelscope::sites {
namespace {

constexpr std::string_view kLink = "http://listings.ebay.com/Books/Fiction/list/index.html";

TEST(ViewLink, SwapsEveryListSegmentForTheViewsOwnAndLeavesLinksWithoutOneAlone) {
  const struct {
    std::string_view link;
    ListingView view;
    std::string_view expected;
  } rows[] = {{kLink, ListingView::Current, kLink},
              {kLink, ListingView::NewToday, "http://listings.ebay.com/Books/Fiction/newtoday/all/index.html"},
              {kLink, ListingView::EndingToday, "http://listings.ebay.com/Books/Fiction/endtoday/all/index.html"},
              {kLink, ListingView::GoingGone, "http://listings.ebay.com/Books/Fiction/going/all/index.html"},
              {"http://h/list/a/list/b", ListingView::GoingGone, "http://h/going/all/a/going/all/b"},
              // The segment is matched case and all: "ItemList/" is no "list/".
              {"http://h/Books/ListingItemList/all", ListingView::NewToday, "http://h/Books/ListingItemList/all"}};
  for (const auto& row : rows) EXPECT_EQ(ViewLink(row.link, row.view), row.expected) << row.link;
}

}  // namespace
}  // namespace gavelscope::sites
