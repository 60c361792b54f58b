// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "auctions/AuctionListCtrl.h"

#include <gtest/gtest.h>

#include "support/RecordingBrowser.h"
#include "support/RecordingMessages.h"

namespace gavelscope::auctions {
namespace {

class AuctionListTest : public ::testing::Test {
 protected:
  void Fill(std::initializer_list<std::pair<const char*, const char*>> rows) {
    for (const auto& [name, count] : rows) {
      m_list.AppendRow({name, count, std::make_shared<CAuctionRecord>(std::string("http://l/") + name + "/list/")});
    }
  }
  std::vector<std::string> Order() const {
    std::vector<std::string> order;
    for (const AuctionListRow& row : m_list.Rows()) order.push_back(row.name);
    return order;
  }

  testing::RecordingBrowser m_browser;
  testing::RecordingMessages m_messages;
  CAuctionListCtrl m_list{m_browser, m_messages};
};

TEST_F(AuctionListTest, SortsByLeadingNumberLargestFirstKeepingTies) {
  Fill({{"a", "12"}, {"b", "340"}, {"c", "5"}, {"d", "25,487"}, {"e", ""}, {"f", " 12"}, {"g", "x9"}});
  m_list.SortByCount();
  EXPECT_EQ(Order(), (std::vector<std::string>{"b", "d", "a", "f", "c", "e", "g"}));
  m_list.OnHeaderClick(1);
  EXPECT_EQ(Order(), (std::vector<std::string>{"b", "d", "a", "f", "c", "e", "g"}));
}

TEST_F(AuctionListTest, ExportWritesHeadingsThenRows) {
  const std::string headings = "\t\t\tTodays Auctions\r\n\r\nPosition\tCount\tAuction\r\n\r\n";
  EXPECT_EQ(m_list.ExportText(), headings);
  Fill({{"Prints", "1,234"}, {"Oils", ""}});
  EXPECT_EQ(m_list.ExportText(), headings + "1\t\t1,234\t\tPrints\r\n2\t\t\t\tOils\r\n");
}

TEST_F(AuctionListTest, MarkedRowOpensItsListingInEachView) {
  Fill({{"Prints", "1"}});
  m_list.OnDoubleClick();
  EXPECT_TRUE(m_browser.Opened().empty());
  EXPECT_FALSE(m_list.ContextMenuAt(1));
  ASSERT_TRUE(m_list.ContextMenuAt(0));
  m_list.OnDoubleClick();
  m_list.OpenView(sites::ListingView::EndingToday);
  EXPECT_EQ(m_browser.Opened(), (std::vector<std::string>{"http://l/Prints/list/", "http://l/Prints/endtoday/all/"}));
}

}  // namespace
}  // namespace gavelscope::auctions
