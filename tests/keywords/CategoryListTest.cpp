// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "keywords/CategoryList.h"

#include <gtest/gtest.h>

#include "keywords/KeywordListCtrl.h"
#include "support/RecordingBrowser.h"
#include "support/RecordingMessages.h"

namespace gavelscope::keywords {
namespace {

class CategoryListTest : public ::testing::Test {
 protected:
  void Apply(std::initializer_list<std::string_view> lines) {
    for (std::string_view line : lines) ParseCategoryLine(m_tree, line, m_state);
  }
  // (listing link, search link, keyword) of every record of an item.
  std::vector<std::array<std::string, 3>> Records(TreeItem item) const {
    std::vector<std::array<std::string, 3>> records;
    if (const auto array = m_tree.GetItemData(item)) {
      for (const auto& r : *array) records.push_back({r->GetListingLink(), r->GetSearchLink(), r->GetKeyword()});
    }
    return records;
  }

  testing::RecordingBrowser m_browser;
  testing::RecordingMessages m_messages;
  CKeywordListCtrl m_list{m_browser, m_messages};
  CCategoryTree m_tree{1, m_list, m_browser, m_messages};
  CategoryLoadState m_state = BeginCatalogue(m_tree);
};

TEST_F(CategoryListTest, CategoryThenKeywordsBuildTheModel) {
  Apply({"~CAT~Antiques~|~L1~|~\r", "~KEYWORD~lamp~|~S1~|~vase~|~S2~|~\r"});
  const std::vector<TreeItem> roots = m_tree.RootItems();
  ASSERT_EQ(roots.size(), 2U);
  EXPECT_EQ(m_tree.GetItemText(roots[0]), "Top 100 Keywords");
  EXPECT_EQ(m_tree.GetItemText(roots[1]), "Antiques");
  EXPECT_EQ(m_state.link, "L1");
  using R = std::array<std::string, 3>;
  EXPECT_EQ(Records(roots[1]), (std::vector<R>{{"L1", "S1", "lamp"}, {"L1", "S2", "vase"}}));
  EXPECT_EQ(m_tree.GetItemColor(roots[1]), 0xFF0000);
  FontDescription font;
  ASSERT_TRUE(m_tree.GetItemFont(roots[1], font));
  EXPECT_EQ(font, CategoryFont());
}

TEST_F(CategoryListTest, KeywordsAfterASubCategoryBelongToIt) {
  Apply({"~CAT~Art~|~L1~|~", "~SUBCAT~Prints~|~L2~|~", "~KEYWORD~etching~|~S1~|~"});
  const TreeItem art = m_tree.RootItems()[1];
  const std::vector<TreeItem> children = m_tree.ChildItems(art);
  ASSERT_EQ(children.size(), 1U);
  EXPECT_EQ(m_tree.GetItemText(children[0]), "Prints");
  EXPECT_EQ(Records(children[0]), (std::vector<std::array<std::string, 3>>{{"L2", "S1", "etching"}}));
  EXPECT_FALSE(m_tree.GetItemData(art));
  FontDescription font;
  ASSERT_TRUE(m_tree.GetItemFont(children[0], font));
  EXPECT_TRUE(font.italic);
  EXPECT_EQ(font.weight, 0);
}

TEST_F(CategoryListTest, KeywordsBeforeAnyCategoryGoToTheTop100Item) {
  Apply({"~KEYWORD~early~|~S0~|~"});
  EXPECT_EQ(Records(m_tree.RootItems()[0]), (std::vector<std::array<std::string, 3>>{{"", "S0", "early"}}));
}

TEST_F(CategoryListTest, PairWithoutClosingSeparatorEndsTheLine) {
  Apply({"~CAT~Art~|~L~|~", "~KEYWORD~one~|~S1~|~two~|~S2"});
  using R = std::array<std::string, 3>;
  EXPECT_EQ(Records(m_tree.RootItems()[1]), (std::vector<R>{{"L", "S1", "one"}}));
  Apply({"~KEYWORD~lonely"});
  EXPECT_TRUE(Records(m_tree.RootItems()[1]).empty());
}

TEST_F(CategoryListTest, SecondKeywordLineReplacesAndReleasesTheFirst) {
  Apply({"~CAT~Art~|~L~|~", "~KEYWORD~old~|~S1~|~"});
  const TreeItem art = m_tree.RootItems()[1];
  std::weak_ptr<const KeywordArray> first = m_tree.GetItemData(art);
  Apply({"~KEYWORD~new~|~S2~|~"});
  EXPECT_TRUE(first.expired());
  EXPECT_EQ(Records(art), (std::vector<std::array<std::string, 3>>{{"L", "S2", "new"}}));
}

TEST_F(CategoryListTest, MissingSeparatorsGiveEmptyFields) {
  const LineEffect effect = ParseCategoryLine(m_tree, "~CAT~Broken", m_state);
  EXPECT_TRUE(effect.category);
  EXPECT_EQ(m_tree.GetItemText(m_tree.RootItems()[1]), "");
  EXPECT_EQ(m_state.link, "");
}

TEST_F(CategoryListTest, ALineWithTwoMarkersIsAppliedForBoth) {
  const LineEffect effect = ParseCategoryLine(m_tree, "~CAT~A~|~L1~|~~SUBCAT~B~|~L2~|~", m_state);
  EXPECT_TRUE(effect.category);
  EXPECT_TRUE(effect.subcategory);
  ASSERT_EQ(m_tree.ChildItems(m_tree.RootItems()[1]).size(), 1U);
  EXPECT_EQ(m_state.link, "L2");
}

}  // namespace
}  // namespace gavelscope::keywords
