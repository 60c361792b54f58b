// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include <gtest/gtest.h>

#include "cli/Command.h"
#include "keywords/KeywordListCtrl.h"
#include "support/RecordingBrowser.h"
#include "support/RecordingMessages.h"

namespace gavelscope::cli {
namespace {

struct ItemCase {
  const char* name;
  std::string typed;
  int found;  // the item's place in tree order; -1 for none
};

void PrintTo(const ItemCase& c, std::ostream* os) {
  *os << c.name;
}

class KeywordsItem : public ::testing::TestWithParam<ItemCase> {};

TEST_P(KeywordsItem, IsTheExactNameElseAnyCaseFirstInTreeOrder) {
  testing::RecordingBrowser browser;
  testing::RecordingMessages messages;
  keywords::CKeywordListCtrl list{browser, messages};
  keywords::CCategoryTree tree{1, list, browser, messages};
  // In tree order: 0 Toys, 1 Toys > Dolls, 2 Toys > TOYS, 3 TOYS, 4 TOYS > Trains, 5 Café-Dolls.
  const keywords::TreeItem toys = tree.InsertRootItem("Toys");
  std::vector<keywords::TreeItem> items{toys, tree.InsertChildItem(toys, "Dolls"), tree.InsertChildItem(toys, "TOYS")};
  items.push_back(tree.InsertRootItem("TOYS"));
  items.push_back(tree.InsertChildItem(items.back(), "Trains"));
  items.push_back(tree.InsertRootItem("Caf\xE9-Dolls"));

  const ItemCase& c = GetParam();
  EXPECT_EQ(FindNamedItem(tree, c.typed), c.found < 0 ? keywords::kNoItem : items[static_cast<std::size_t>(c.found)]);
}

INSTANTIATE_TEST_SUITE_P(Cli, KeywordsItem,
                         ::testing::Values(ItemCase{"Exact", "Toys", 0},
                                           // Toys matches in another case, and comes first.
                                           ItemCase{"ExactBeatsAnEarlierOtherCase", "TOYS", 2},
                                           ItemCase{"OtherCaseTakesTheFirstInTreeOrder", "toys", 0},
                                           ItemCase{"OtherCaseSubCategory", "tRAINS", 4},
                                           // The names are Windows-1252: only ASCII letters fold.
                                           ItemCase{"AsciiFoldsAroundOtherBytes", "caf\xE9-dolls", 5},
                                           ItemCase{"OtherBytesMustMatch", "CAF\xC9-DOLLS", -1},
                                           ItemCase{"PrefixIsNoMatch", "Toy", -1}),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace gavelscope::cli
