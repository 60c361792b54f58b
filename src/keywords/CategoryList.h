// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <string>
#include <string_view>

#include "keywords/CategoryTree.h"

namespace gavelscope::keywords {

// Where the lines of a category list file go: the category and sub-category read last, and the
// listing link that the keywords that follow belong to.
struct CategoryLoadState {
  TreeItem category = kNoItem;
  TreeItem subcategory = kNoItem;
  std::string link;
  // What the load has taken so far, against the catalogue's limits.
  std::size_t items = 0;
  std::size_t keywords = 0;
  bool full = false;  // an item was passed over
};

struct LineEffect {
  bool category = false;
  bool subcategory = false;
};

// Starts a load: inserts the "Top 100 Keywords" item, which takes keyword lines met before any
// category line.
CategoryLoadState BeginCatalogue(CCategoryTree& tree);

// Applies one line of the list file:
//   ~CAT~name~|~link~|~        a category (a root item)
//   ~SUBCAT~name~|~link~|~     a sub-category of the category read last
//   ~KEYWORD~k1~|~s1~|~k2~|~s2~|~...   the keywords of the item read last, in rank order
// Each marker is handled on its own, so a line holding two is applied for both. A keyword pair
// without its closing separator ends the line's pairs and is dropped. Items beyond
// kMaxCatalogueItems are passed over, and keyword lines keep at most kMaxKeywordsPerItem keywords,
// kMaxCatalogueKeywords in the whole load.
LineEffect ParseCategoryLine(CCategoryTree& tree, std::string_view line, CategoryLoadState& state);

}  // namespace gavelscope::keywords
