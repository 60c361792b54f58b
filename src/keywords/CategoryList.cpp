// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "keywords/CategoryList.h"

#include "base/TextHelpers.h"
#include "net/NetOptions.h"

namespace gavelscope::keywords {

using base::ExtractBetween;
using base::Find;

namespace {

constexpr std::string_view kSeparator = "~|~";
constexpr int kSeparatorLength = 3;

// name and link of a "MARKER name ~|~ link ~|~" line whose marker starts at p.
void ReadNameAndLink(std::string_view line, int p, int markerLength, std::string& name, std::string& link) {
  const int q = Find(line, kSeparator, p);
  name = ExtractBetween(line, p + markerLength, q);
  const int r = Find(line, kSeparator, q + kSeparatorLength);
  link = ExtractBetween(line, q + kSeparatorLength, r);
}

void Decorate(CCategoryTree& tree, TreeItem item, const FontDescription& font) {
  tree.SetItemColor(item, kCategoryColour);
  tree.SetItemFont(item, font);
}

}  // namespace

CategoryLoadState BeginCatalogue(CCategoryTree& tree) {
  CategoryLoadState state;
  state.category = tree.InsertRootItem(kTop100ItemText);
  Decorate(tree, state.category, CategoryFont());
  return state;
}

LineEffect ParseCategoryLine(CCategoryTree& tree, std::string_view line, CategoryLoadState& state) {
  LineEffect effect;
  std::string name;
  // Past the catalogue's limits, lines are read and passed over: the tree and its keywords stay at
  // what a list of honest size holds.
  const bool roomForItem = state.items < net::limits::kMaxCatalogueItems;
  const bool itemLine = Find(line, "~CAT~", 0) != -1 || Find(line, "~SUBCAT~", 0) != -1;
  // The keywords that follow a passed-over item are its own, not the last kept item's.
  if (itemLine && !roomForItem) state.full = true;
  if (const int p = Find(line, "~CAT~", 0); p != -1 && roomForItem) {
    ReadNameAndLink(line, p, 5, name, state.link);
    state.category = tree.InsertRootItem(name);
    Decorate(tree, state.category, CategoryFont());
    state.subcategory = kNoItem;
    effect.category = true;
    ++state.items;
  }
  if (const int p = Find(line, "~SUBCAT~", 0); p != -1 && roomForItem) {
    ReadNameAndLink(line, p, 8, name, state.link);
    state.subcategory = tree.InsertChildItem(state.category, name);
    Decorate(tree, state.subcategory, SubCategoryFont());
    effect.subcategory = true;
    ++state.items;
  }
  const bool roomForKeywords = !state.full && state.keywords < net::limits::kMaxCatalogueKeywords;
  if (const int p = Find(line, "~KEYWORD~", 0); p != -1 && roomForKeywords) {
    auto array = std::make_shared<KeywordArray>();
    int start = p + 9;
    int q = Find(line, kSeparator, p);
    while (q != -1 && array->size() < net::limits::kMaxKeywordsPerItem &&
           state.keywords < net::limits::kMaxCatalogueKeywords) {
      const int r = Find(line, kSeparator, q + kSeparatorLength);
      auto record = std::make_shared<CKeyWordRecord>();
      record->SetListingLink(state.link);
      record->SetKeyword(ExtractBetween(line, start, q));
      record->SetSearchLink(ExtractBetween(line, q + kSeparatorLength, r));
      array->push_back(std::move(record));
      ++state.keywords;
      // A pair without its closing separator is the line's last: its keyword stays, with no search
      // link, and the scan must not start again from near the line's beginning.
      if (r == -1) break;
      start = r + kSeparatorLength;
      q = Find(line, kSeparator, start);
    }
    tree.SetItemData(state.subcategory != kNoItem ? state.subcategory : state.category, std::move(array));
  }
  return effect;
}

}  // namespace gavelscope::keywords
