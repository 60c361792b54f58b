// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "keywords/CategoryTree.h"

#include <gtest/gtest.h>

#include "keywords/CategoryList.h"
#include "keywords/KeywordListCtrl.h"
#include "support/RecordingBrowser.h"
#include "support/RecordingMessages.h"
#include "support/TempFolder.h"

namespace gavelscope::keywords {
namespace {

class CategoryTreeTest : public ::testing::Test {
 protected:
  // Loads list lines the way a keyword thread does, then derives the Top 100 list.
  void Load(std::initializer_list<std::string_view> lines) {
    CategoryLoadState state = BeginCatalogue(m_tree);
    for (std::string_view line : lines) ParseCategoryLine(m_tree, line, state);
    m_tree.BuildTop100();
  }
  std::vector<std::string> Top100() const {
    std::vector<std::string> keywords;
    for (const auto& record : *m_tree.GetItemData(m_tree.RootItems()[0])) keywords.push_back(record->GetKeyword());
    return keywords;
  }
  TreeItem Root(std::size_t i) const { return m_tree.RootItems()[i]; }

  testing::RecordingBrowser m_browser;
  testing::RecordingMessages m_messages;
  CKeywordListCtrl m_list{m_browser, m_messages};
  CCategoryTree m_tree{0, m_list, m_browser, m_messages};
};

TEST_F(CategoryTreeTest, Top100TakesEachSubCategoryTopKeywordOnce) {
  Load({"~CAT~A~|~LA~|~", "~KEYWORD~category word~|~S~|~",                  // a category's own keywords never count
        "~SUBCAT~A1~|~L1~|~", "~KEYWORD~*** No Known Keywords ***~|~S~|~",  // never taken, even first
        "~SUBCAT~A2~|~L2~|~", "~KEYWORD~lamp~|~S2~|~vase~|~S~|~",           //
        "~SUBCAT~A3~|~L3~|~", "~KEYWORD~lamp~|~S3~|~",                      // the first "lamp" stays
        "~SUBCAT~~|~L4~|~",                                                 // no name: passed over
        "~SUBCAT~A5~|~L5~|~", "~KEYWORD~Lamp~|~S5~|~",                      // case counts
        "~CAT~B~|~LB~|~",                                                   // no sub-categories
        "~CAT~C~|~LC~|~", "~SUBCAT~C1~|~L6~|~", "~KEYWORD~odd~|~S6"});      // an empty array: skipped
  EXPECT_EQ(Top100(), (std::vector<std::string>{"lamp", "Lamp"}));
  EXPECT_EQ(m_tree.GetItemData(Root(0))->at(0)->GetSearchLink(), "S2");
  // The list shows the Top 100 once it is built.
  ASSERT_EQ(m_list.RowCount(), 2U);
  EXPECT_EQ(m_list.RowAt(0)->GetKeyword(), "lamp");
}

TEST_F(CategoryTreeTest, Top100WalkStopsAtASubCategoryWithoutKeywords) {
  Load({"~CAT~A~|~LA~|~", "~SUBCAT~A1~|~L1~|~", "~KEYWORD~first~|~S~|~", "~SUBCAT~A2~|~L2~|~", "~SUBCAT~A3~|~L3~|~",
        "~KEYWORD~never~|~S~|~"});
  EXPECT_EQ(Top100(), std::vector<std::string>{"first"});
}

TEST_F(CategoryTreeTest, ExportWritesHeadingsThenNumberedKeywords) {
  Load({});
  const std::string headings = "\tTodays Top 100 Keywords\r\n\r\nPosition\t\t\tKeyword\r\n\r\n";
  EXPECT_EQ(m_tree.ExportText(), headings);
  m_tree.FreeCatalogue();
  Load({"~CAT~A~|~L~|~", "~SUBCAT~A1~|~L1~|~", "~KEYWORD~lamp~|~S~|~", "~SUBCAT~A2~|~L2~|~", "~KEYWORD~vase~|~S~|~"});
  EXPECT_EQ(m_tree.ExportText(), headings + "1\t\t\t\tlamp\r\n2\t\t\t\tvase\r\n");
}

TEST_F(CategoryTreeTest, ExportToAFileTellsTheUserOrKeepsTheOldFile) {
  Load({"~CAT~A~|~L~|~", "~SUBCAT~A1~|~L1~|~", "~KEYWORD~lamp~|~S~|~"});
  testing::TempFolder folder;
  ASSERT_TRUE(m_tree.Export(folder / "top.txt"));
  EXPECT_EQ(testing::ReadFileBytes(folder / "top.txt"), m_tree.ExportText());
  ASSERT_EQ(m_messages.Messages().size(), 1U);
  EXPECT_EQ(m_messages.Messages()[0].text, "List Has Been Successfully Exported.");
  EXPECT_FALSE(m_tree.Export(folder / "missing-folder" / "top.txt"));
  EXPECT_EQ(m_messages.Messages().size(), 1U);
}

TEST_F(CategoryTreeTest, OnlySubCategoriesOfferEveryView) {
  Load({"~CAT~Art~|~http://l/Art/list/~|~", "~KEYWORD~art~|~S~|~", "~SUBCAT~Prints~|~http://l/Prints/list/x~|~",
        "~KEYWORD~etching~|~S~|~"});
  EXPECT_EQ(m_tree.ContextMenuFor(Root(0)), (std::array<bool, 4>{true, false, false, false}));
  EXPECT_EQ(m_tree.ContextMenuFor(Root(1)), (std::array<bool, 4>{true, false, false, false}));
  const TreeItem prints = m_tree.ChildItems(Root(1))[0];
  EXPECT_EQ(m_tree.ContextMenuFor(prints), (std::array<bool, 4>{true, true, true, true}));
  // The hit item is selected and its keywords shown.
  EXPECT_EQ(m_tree.GetSelectedItem(), prints);
  EXPECT_EQ(m_list.RowAt(0)->GetKeyword(), "etching");
  EXPECT_EQ(m_tree.ContextMenuFor(kNoItem), (std::array<bool, 4>{false, false, false, false}));
  EXPECT_EQ(m_tree.GetSelectedItem(), prints);

  m_tree.OnDoubleClick();
  m_tree.OpenView(sites::ListingView::GoingGone);
  EXPECT_EQ(m_browser.Opened(), (std::vector<std::string>{"http://l/Prints/list/x", "http://l/Prints/going/all/x"}));
}

TEST_F(CategoryTreeTest, ItemsWithoutKeywordsOpenNothingAndKeepTheList) {
  Load({"~CAT~A~|~L~|~", "~SUBCAT~A1~|~L1~|~", "~KEYWORD~lamp~|~S~|~", "~CAT~Empty~|~L2~|~"});
  m_tree.OnItemClicked(Root(2));
  m_tree.OnDoubleClick();
  EXPECT_TRUE(m_browser.Opened().empty());
  EXPECT_EQ(m_list.RowAt(0)->GetKeyword(), "lamp");
}

TEST_F(CategoryTreeTest, FreeingForgetsItemsAndTheirAttributes) {
  Load({"~CAT~A~|~L~|~"});
  const TreeItem category = Root(1);
  m_tree.SetItemBold(category, true);
  m_tree.FreeCatalogue();
  EXPECT_EQ(m_tree.ItemCount(), 0U);
  // A new load reuses the handles; nothing of the old attributes shows through.
  const TreeItem plain = m_tree.InsertRootItem("plain");
  EXPECT_EQ(plain, Root(0));
  EXPECT_EQ(m_tree.GetItemColor(plain), kNoColour);
  EXPECT_FALSE(m_tree.HasAttributes(category));
  EXPECT_FALSE(m_tree.GetItemBold(plain));
}

TEST(SearchingMarker, SplitsTheNameFromTheMarker) {
  EXPECT_EQ(SearchingMarkerAt("Antiques  -  Searching"), 8U);
  EXPECT_EQ(SearchingMarkerAt("Antiques - Searching"), std::string_view::npos);
}

}  // namespace
}  // namespace gavelscope::keywords
