// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "sites/ItemPage.h"

#include <gtest/gtest.h>

namespace gavelscope::sites {
namespace {

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

}  // namespace
}  // namespace gavelscope::sites
