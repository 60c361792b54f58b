// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "auctions/AuctionListCtrl.h"

#include <gtest/gtest.h>

#include <thread>

#include "auctions/AuctionThread.h"
#include "support/RecordingBrowser.h"
#include "support/RecordingMessages.h"
#include "support/RecordingRunEvents.h"

namespace gavelscope::auctions {
namespace {

using Names = std::vector<std::string>;

class AuctionListTest : public ::testing::Test {
 protected:
  void Fill(std::initializer_list<std::pair<const char*, const char*>> rows) {
    for (const auto& [name, count] : rows) {
      m_list.AppendRow({name, count, std::make_shared<CAuctionRecord>(std::string("http://l/") + name + "/list/")});
    }
  }
  Names Order() const {
    Names order;
    for (const AuctionListRow& row : m_list.Rows()) order.push_back(row.name);
    return order;
  }
  void RunUSA(std::stop_token stop = {}) {
    CAuctionThreadUSA(sites::CompiledProfile(), m_categories, m_list, m_events).Run(stop);
  }

  testing::RecordingBrowser m_browser;
  testing::RecordingMessages m_messages;
  CAuctionListCtrl m_list{m_browser, m_messages};
  sites::SiteCategories m_categories;
  testing::RecordingRunEvents m_events;
};

TEST_F(AuctionListTest, SortsByLeadingNumberLargestFirstKeepingTiesAndIgnoresHeaderClicks) {
  Fill({{"a", "12"}, {"b", "340"}, {"c", "5"}, {"d", "25,487"}, {"e", ""}, {"f", " 12"}, {"g", "x9"}});
  m_list.SortByCount();
  EXPECT_EQ(Order(), (Names{"b", "d", "a", "f", "c", "e", "g"}));
  m_list.OnHeaderClick(1);
  EXPECT_EQ(Order(), (Names{"b", "d", "a", "f", "c", "e", "g"}));
}

TEST_F(AuctionListTest, TheMarkedRowOpensItsListingInEachView) {
  Fill({{"Prints", "1"}});
  m_list.OnDoubleClick();
  EXPECT_TRUE(m_browser.Opened().empty());
  m_list.SetSelectionMark(0);
  m_list.OnDoubleClick();
  m_list.OpenView(sites::ListingView::EndingToday);
  EXPECT_EQ(m_browser.Opened(), (Names{"http://l/Prints/list/", "http://l/Prints/endtoday/all/"}));
}

// The thread that fills the list works on the same list.
class AuctionThreadTest : public AuctionListTest {};

TEST_F(AuctionThreadTest, FillsAndSortsTheListFromTheHomePageAndAnEmptyPageEmptiesIt) {
  m_categories.strHomePage =
      "<a href=\"/Art/list/\"><b>Art</b></a> (9)<br>"
      "<a href=\"http://listings.ebay.com/Art/A/ListingItemList/\">A</a> (12)"
      "<a href=\"http://listings.ebay.com/Art/B/ListingItemList/\">B</a> (340)"
      "<a href=\"http://listings.ebay.com/Art/C/ListingItemList/\">C</a> (5)<a href=\"http://x.ebay.com/\">x</a>";
  m_categories.arrCategoryLinks = {"/Art/list"};
  m_categories.ready.Set();
  Fill({{"stale", "1"}});
  RunUSA();
  EXPECT_EQ(Order(), (Names{"B", "A", "C"}));
  EXPECT_EQ(m_list.RowAt(0).record->GetLink(), "http://listings.ebay.com/Art/B/ListingItemList/");
  EXPECT_EQ(m_list.RowAt(2).count, "5");
  EXPECT_TRUE(m_list.IsRedrawOn());
  EXPECT_EQ(m_events.finished, 1);
  m_categories.strHomePage.clear();
  RunUSA();
  EXPECT_EQ(m_list.RowCount(), 0U);
  EXPECT_EQ(m_events.finished, 2);
}

TEST_F(AuctionThreadTest, AStopEndsTheWaitForCategoriesAndLeavesTheList) {
  Fill({{"kept", "1"}});
  std::jthread thread([this](std::stop_token stop) { RunUSA(stop); });
  thread.request_stop();
  thread.join();
  EXPECT_EQ(m_list.RowCount(), 1U);
  EXPECT_EQ(m_events.finished, 1);
}

}  // namespace
}  // namespace gavelscope::auctions
