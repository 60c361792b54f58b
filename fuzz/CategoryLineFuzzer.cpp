// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
//
// The category list files come from the vendor's web server, one line at a time.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "FuzzFakes.h"
#include "FuzzLines.h"
#include "keywords/CategoryList.h"
#include "keywords/CategoryTree.h"
#include "keywords/KeywordListCtrl.h"

namespace gavelscope::fuzz {
namespace {

void VisitItem(keywords::CCategoryTree& tree, keywords::TreeItem item) {
  tree.ContextMenuFor(item);
  for (sites::ListingView view : keywords::kMenuViews) tree.OpenView(view);
  for (keywords::TreeItem child : tree.ChildItems(item)) VisitItem(tree, child);
}

}  // namespace
}  // namespace gavelscope::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace gavelscope;
  fuzz::NullBrowser browser;
  fuzz::NullMessages messages;
  keywords::CKeywordListCtrl list(browser, messages);
  keywords::CCategoryTree tree(1, list, browser, messages);
  keywords::CategoryLoadState state = keywords::BeginCatalogue(tree);
  fuzz::ForEachLine(std::string_view(reinterpret_cast<const char*>(data), size),
                    [&](std::string_view line) { keywords::ParseCategoryLine(tree, line, state); });
  // What the keyword thread and the views do with a loaded list.
  tree.BuildTop100();
  (void)tree.Top100ExportText();
  for (keywords::TreeItem root : tree.RootItems()) fuzz::VisitItem(tree, root);
  return 0;
}
