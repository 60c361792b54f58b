// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "keywords/KeywordListCtrl.h"

#include <gtest/gtest.h>

#include "support/RecordingBrowser.h"
#include "support/RecordingMessages.h"

namespace gavelscope::keywords {
namespace {

KeywordArray Records(std::initializer_list<const char*> keywords) {
  KeywordArray array;
  for (const char* keyword : keywords) {
    auto record = std::make_shared<CKeyWordRecord>();
    record->SetKeyword(keyword);
    record->SetSearchLink(std::string("http://search/") + keyword);
    array.push_back(record);
  }
  return array;
}

class KeywordListTest : public ::testing::Test {
 protected:
  testing::RecordingBrowser m_browser;
  testing::RecordingMessages m_messages;
  CKeywordListCtrl m_list{m_browser, m_messages};
};

TEST_F(KeywordListTest, SortedLinkAppendsTheOrdersSuffix) {
  EXPECT_EQ(SortedLink("L", SortOrder::EndingFirst), "L_W0QQsosortpropertyZ1");
  EXPECT_EQ(SortedLink("L", SortOrder::NewlyListed), "L_W0QQsosortorderZ2QQsosortpropertyZ2");
  EXPECT_EQ(SortedLink("L", SortOrder::LowestPriced), "L_W0QQsosortpropertyZ3");
  EXPECT_EQ(SortedLink("L", SortOrder::HighestPrice), "L_W0QQsosortorderZ2QQsosortpropertyZ3");
}

TEST_F(KeywordListTest, RowsOpenTheirSearchPage) {
  m_list.Assign(Records({"lamp", "vase"}));
  m_list.OnDoubleClick();
  EXPECT_TRUE(m_browser.Opened().empty());
  EXPECT_FALSE(m_list.ContextMenuAt(2));
  ASSERT_TRUE(m_list.ContextMenuAt(1));
  m_list.OpenSorted(SortOrder::HighestPrice);
  m_list.OnDoubleClick();
  EXPECT_EQ(m_browser.Opened(),
            (std::vector<std::string>{"http://search/vase_W0QQsosortorderZ2QQsosortpropertyZ3", "http://search/vase"}));
}

}  // namespace
}  // namespace gavelscope::keywords
