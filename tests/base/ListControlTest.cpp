// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "base/ListControl.h"

#include <gtest/gtest.h>

#include "support/RecordingMessages.h"

namespace gavelscope::base {
namespace {

// The smallest list: each row is its own text.
class TextList : public CListControl<std::string> {
 public:
  explicit TextList(IUserMessages& messages) : CListControl(messages) {}
  void SortByText() {
    SortRows([](const std::string& row) { return row; }, std::less<std::string>());
  }

 private:
  std::string SearchText(const std::string& row) const override { return row; }
};

class ListControlTest : public ::testing::Test {
 protected:
  testing::RecordingMessages m_messages;
  TextList m_list{m_messages};
};

TEST_F(ListControlTest, FindNextStartsAfterTheMarkIgnoresCaseAndNeverWraps) {
  m_list.FindNext("lamp");
  EXPECT_TRUE(m_messages.Messages().empty()) << "an empty list says nothing";
  m_list.Assign({"Red Lamp", "vase", "LAMP shade", "bowl"});
  m_list.FindNext("lamp");
  EXPECT_EQ(m_list.SelectionMark(), 0);
  m_list.FindNext("lamp");
  EXPECT_EQ(m_list.SelectionMark(), 2);
  EXPECT_TRUE(m_messages.Messages().empty());
  m_list.FindNext("lamp");
  EXPECT_EQ(m_list.SelectionMark(), 2);
  ASSERT_EQ(m_messages.Messages().size(), 1U);
  EXPECT_EQ(m_messages.Messages()[0].text, "Item Not Found !");
  EXPECT_EQ(m_messages.Messages()[0].title, "Gavelscope");
}

TEST_F(ListControlTest, TheMarkStaysOnItsRowThroughInsertsAndSorts) {
  m_list.Assign({"c", "a", "d"});
  ASSERT_TRUE(m_list.ContextMenuAt(2));
  EXPECT_EQ(m_list.InsertRow(0, "e"), 0U);
  EXPECT_EQ(m_list.InsertRow(99, "b"), 4U);
  EXPECT_EQ(m_list.MarkedRow(), "d");
  m_list.SortByText();
  EXPECT_EQ(m_list.Rows(), (std::vector<std::string>{"a", "b", "c", "d", "e"}));
  EXPECT_EQ(m_list.SelectionMark(), 3);
  // Only rows answer a click; a click beside them leaves the mark.
  EXPECT_FALSE(m_list.ContextMenuAt(5));
  m_list.SetSelectionMark(5);
  m_list.SetSelectionMark(-1);
  EXPECT_EQ(m_list.MarkedRow(), "d");
}

}  // namespace
}  // namespace gavelscope::base
