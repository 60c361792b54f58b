// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
//
// The category tree, the list lines that build it, the keyword list it feeds, the thread that loads it.
#include "keywords/CategoryTree.h"

#include <gtest/gtest.h>

#include "keywords/CategoryList.h"
#include "keywords/KeyWordsThread.h"
#include "keywords/KeywordListCtrl.h"
#include "support/RecordingBrowser.h"
#include "support/RecordingMessages.h"
#include "support/RecordingRunEvents.h"
#include "support/SandboxFixture.h"

namespace gavelscope::keywords {
namespace {

// (listing link, search link, keyword) of a record.
using R = std::array<std::string, 3>;

class CategoryListTest : public ::testing::Test {
 protected:
  // Applies list lines the way a keyword thread does, to a new catalogue unless told to go on.
  void Load(std::initializer_list<std::string_view> lines, bool goOn = false) {
    if (!goOn) m_state = BeginCatalogue(m_tree);
    for (std::string_view line : lines) ParseCategoryLine(m_tree, line, m_state);
  }
  std::vector<R> Records(TreeItem item) const {
    std::vector<R> records;
    if (const auto array = m_tree.GetItemData(item)) {
      for (const auto& r : *array) records.push_back({r->GetListingLink(), r->GetSearchLink(), r->GetKeyword()});
    }
    return records;
  }
  TreeItem Root(std::size_t i) const { return m_tree.RootItems()[i]; }

  testing::RecordingBrowser m_browser;
  testing::RecordingMessages m_messages;
  CKeywordListCtrl m_list{m_browser, m_messages};
  CCategoryTree m_tree{0, m_list, m_browser, m_messages};
  CategoryLoadState m_state;
};

TEST_F(CategoryListTest, KeywordsBelongToTheItemReadLastAndBeforeAnyToTheTop100Item) {
  Load({"~KEYWORD~early~|~S0~|~", "~CAT~Art~|~L1~|~\r", "~KEYWORD~lamp~|~S1~|~vase~|~S2~|~\r", "~SUBCAT~Prints~|~L2~|~",
        "~KEYWORD~etching~|~S3~|~"});
  ASSERT_EQ(m_tree.RootItems().size(), 2U);
  EXPECT_EQ(m_tree.GetItemText(Root(0)), "Top 100 Keywords");
  EXPECT_EQ(Records(Root(0)), (std::vector<R>{{"", "S0", "early"}}));
  EXPECT_EQ(m_tree.GetItemText(Root(1)), "Art");
  EXPECT_EQ(Records(Root(1)), (std::vector<R>{{"L1", "S1", "lamp"}, {"L1", "S2", "vase"}}));
  const std::vector<TreeItem> children = m_tree.ChildItems(Root(1));
  ASSERT_EQ(children.size(), 1U);
  EXPECT_EQ(m_tree.GetItemText(children[0]), "Prints");
  EXPECT_EQ(Records(children[0]), (std::vector<R>{{"L2", "S3", "etching"}}));
  // Categories are red in the category font, sub-categories italic and not bold.
  EXPECT_EQ(m_tree.GetItemColor(Root(1)), 0xFF0000);
  FontDescription font;
  ASSERT_TRUE(m_tree.GetItemFont(Root(1), font));
  EXPECT_EQ(font, CategoryFont());
  ASSERT_TRUE(m_tree.GetItemFont(children[0], font));
  EXPECT_TRUE(font.italic && font.weight == 0);
}

TEST_F(CategoryListTest, MissingSeparatorsGiveEmptyFieldsAndANewKeywordLineReplacesAndReleasesTheLast) {
  Load({});
  EXPECT_TRUE(ParseCategoryLine(m_tree, "~CAT~Broken", m_state).category);
  EXPECT_EQ(m_tree.GetItemText(Root(1)), "");
  EXPECT_EQ(m_state.link, "");
  // A pair without its closing separator is the line's last, kept with no search link.
  Load({"~KEYWORD~one~|~S1~|~two~|~S2"}, true);
  EXPECT_EQ(Records(Root(1)), (std::vector<R>{{"", "S1", "one"}, {"", "", "two"}}));
  std::weak_ptr<const KeywordArray> first = m_tree.GetItemData(Root(1));
  Load({"~KEYWORD~lonely"}, true);
  EXPECT_TRUE(first.expired());
  EXPECT_TRUE(Records(Root(1)).empty());
}

TEST_F(CategoryListTest, ALineWithTwoMarkersIsAppliedForBoth) {
  Load({});
  const LineEffect effect = ParseCategoryLine(m_tree, "~CAT~A~|~L1~|~~SUBCAT~B~|~L2~|~", m_state);
  EXPECT_TRUE(effect.category && effect.subcategory);
  ASSERT_EQ(m_tree.ChildItems(Root(1)).size(), 1U);
  EXPECT_EQ(m_state.link, "L2");
}

using CategoryTreeTest = CategoryListTest;

TEST_F(CategoryTreeTest, Top100TakesEachSubCategoryTopKeywordOnceUntilOneHasNone) {
  Load({"~CAT~A~|~LA~|~", "~KEYWORD~category word~|~S~|~",                      // a category's own keywords never count
        "~SUBCAT~A1~|~L1~|~", "~KEYWORD~*** No Known Keywords ***~|~S~|~",      // never taken, even first
        "~SUBCAT~A2~|~L2~|~", "~KEYWORD~lamp~|~S2~|~vase~|~S~|~",               //
        "~SUBCAT~A3~|~L3~|~", "~KEYWORD~lamp~|~S3~|~",                          // the first "lamp" stays
        "~SUBCAT~~|~L4~|~",                                                     // no name: passed over
        "~SUBCAT~A5~|~L5~|~", "~KEYWORD~Lamp~|~S5~|~",                          // case counts
        "~CAT~B~|~LB~|~",                                                       // no sub-categories
        "~CAT~C~|~LC~|~", "~SUBCAT~C1~|~L6~|~", "~KEYWORD~odd",                 // an empty array: skipped
        "~SUBCAT~C2~|~L7~|~", "~SUBCAT~C3~|~L8~|~", "~KEYWORD~never~|~S~|~"});  // no keywords: the walk ends
  m_tree.BuildTop100();
  EXPECT_EQ(Records(Root(0)), (std::vector<R>{{"L2", "S2", "lamp"}, {"L5", "S5", "Lamp"}}));
  EXPECT_EQ(m_list.Rows(), *m_tree.GetItemData(Root(0))) << "the list shows the Top 100 once it is built";
}

// The menus, selection and opening of the real view are ControlViewsTest's.
TEST_F(CategoryTreeTest, AnItemWithoutKeywordsOpensNothingAndLeavesTheList) {
  Load({"~CAT~Art~|~http://l/Art/list/~|~", "~KEYWORD~art~|~S~|~", "~CAT~Empty~|~http://l/Empty/list/~|~"});
  // A category offers its current listing only; the hit item is selected and its keywords shown.
  EXPECT_EQ(m_tree.ContextMenuFor(Root(1)), (std::array{true, false, false, false}));
  m_tree.OnItemClicked(Root(2));
  m_tree.OnDoubleClick();
  EXPECT_EQ(m_list.RowAt(0)->GetKeyword(), "art");
  EXPECT_TRUE(m_browser.Opened().empty());
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

class KeyWordsThreadTest : public testing::SandboxTest {};

TEST_F(KeyWordsThreadTest, StepsTheProgressOncePerCategoryLineAndReportsTheRefreshDone) {
  testing::RecordingBrowser browser;
  testing::RecordingMessages messages;
  testing::RecordingRunEvents events;
  CKeywordListCtrl list{browser, messages};
  CCategoryTree tree{0, list, browser, messages};
  // The category list is exactly these lines.
  sites::Profile profile = sites::CompiledProfile();
  profile.vendor.webServer =
      testing::TextUrl("www.gavelscope.example",
                       "~CAT~A~|~LA~|~\r\n~SUBCAT~A1~|~L1~|~\r\n~KEYWORD~lamp~|~S~|~\r\n"
                       "~SUBCAT~A2~|~L2~|~\r\n~CAT~B~|~LB~|~\r\n~SUBCAT~B1~|~L3~|~\r\n~CAT~C~|~LC~|~\r\n");
  profile.uk.categoryListPath = "";
  CKeyWordsThreadUK thread(profile, SandboxNetOptions(), {tree, list, events});
  thread.SetLinePause(std::chrono::milliseconds(0));
  thread.Run({});
  EXPECT_EQ(events.steps, 3);
  EXPECT_EQ(tree.RootItems().size(), 4U);
  EXPECT_EQ(list.RowAt(0)->GetKeyword(), "lamp");
  EXPECT_TRUE(events.refreshDone);
  EXPECT_EQ(events.finished, 1);
  EXPECT_TRUE(tree.IsRedrawOn());
}

}  // namespace
}  // namespace gavelscope::keywords
