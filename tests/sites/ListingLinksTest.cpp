// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "sites/ListingLinks.h"

#include <gtest/gtest.h>

namespace gavelscope::sites {
namespace {

constexpr std::string_view kLink = "http://listings.ebay.com/Books/Fiction/list/index.html";

TEST(ViewLink, SwapsTheListSegmentForEachView) {
  EXPECT_EQ(ViewLink(kLink, ListingView::Current), kLink);
  EXPECT_EQ(ViewLink(kLink, ListingView::NewToday), "http://listings.ebay.com/Books/Fiction/newtoday/all/index.html");
  EXPECT_EQ(ViewLink(kLink, ListingView::EndingToday),
            "http://listings.ebay.com/Books/Fiction/endtoday/all/index.html");
  EXPECT_EQ(ViewLink(kLink, ListingView::GoingGone), "http://listings.ebay.com/Books/Fiction/going/all/index.html");
}

TEST(ViewLink, ReplacesEveryOccurrenceWithoutRescanning) {
  EXPECT_EQ(ViewLink("http://h/list/a/list/b", ListingView::GoingGone), "http://h/going/all/a/going/all/b");
  // "newtoday/all/" holds no "list/", but a replacement that rescanned would still loop on "list/list/".
  EXPECT_EQ(ViewLink("list/list/", ListingView::NewToday), "newtoday/all/newtoday/all/");
}

TEST(ViewLink, LeavesLinksWithoutTheSegmentAlone) {
  EXPECT_EQ(ViewLink("http://h/Books/index.html", ListingView::EndingToday), "http://h/Books/index.html");
  EXPECT_EQ(ViewLink("http://h/Books/ListingItemList/all", ListingView::NewToday),
            "http://h/Books/ListingItemList/all");
}

}  // namespace
}  // namespace gavelscope::sites
