// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "auctions/AuctionThread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "support/RecordingBrowser.h"
#include "support/RecordingMessages.h"
#include "support/RecordingRunEvents.h"

namespace gavelscope::auctions {
namespace {

class AuctionThreadTest : public ::testing::Test {
 protected:
  void RunUSA() { CAuctionThreadUSA(sites::CompiledProfile(), m_categories, m_list, m_events).Run({}); }

  testing::RecordingBrowser m_browser;
  testing::RecordingMessages m_messages;
  CAuctionListCtrl m_list{m_browser, m_messages};
  sites::SiteCategories m_categories;
  testing::RecordingRunEvents m_events;
};

TEST_F(AuctionThreadTest, FillsAndSortsTheListFromTheHomePage) {
  m_categories.strHomePage =
      "<a href=\"/Art/list/\"><b>Art</b></a> (9)<br>"
      "<a href=\"http://listings.ebay.com/Art/A/ListingItemList/\">A</a> (12)"
      "<a href=\"http://listings.ebay.com/Art/B/ListingItemList/\">B</a> (340)"
      "<a href=\"http://listings.ebay.com/Art/C/ListingItemList/\">C</a> (5)<a href=\"http://x.ebay.com/\">x</a>";
  m_categories.arrCategoryLinks = {"/Art/list"};
  m_categories.ready.Set();
  m_list.InsertRow(0, {"stale", "1", nullptr});
  RunUSA();
  ASSERT_EQ(m_list.RowCount(), 3U);
  EXPECT_EQ(m_list.RowAt(0).name, "B");
  EXPECT_EQ(m_list.RowAt(0).record->GetLink(), "http://listings.ebay.com/Art/B/ListingItemList/");
  EXPECT_EQ(m_list.RowAt(2).count, "5");
  EXPECT_TRUE(m_list.IsRedrawOn());
  EXPECT_EQ(m_events.finished, 1);
}

TEST_F(AuctionThreadTest, EmptyPageGivesAnEmptyListAndStillCompletes) {
  m_categories.ready.Set();
  RunUSA();
  EXPECT_EQ(m_list.RowCount(), 0U);
  EXPECT_EQ(m_events.finished, 1);
}

TEST_F(AuctionThreadTest, StopEndsTheWaitForCategories) {
  m_list.InsertRow(0, {"kept", "1", nullptr});
  std::jthread thread([this](std::stop_token stop) {
    CAuctionThreadUSA(sites::CompiledProfile(), m_categories, m_list, m_events).Run(stop);
  });
  thread.request_stop();
  thread.join();
  EXPECT_EQ(m_list.RowCount(), 1U);
  EXPECT_EQ(m_events.finished, 1);
}

}  // namespace
}  // namespace gavelscope::auctions
