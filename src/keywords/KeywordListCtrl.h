// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "base/Browser.h"
#include "base/ListControl.h"
#include "base/UserMessages.h"
#include "keywords/KeyWordRecord.h"

namespace gavelscope::keywords {

// The sort orders a keyword's search page can be opened in, in menu order.
enum class SortOrder { EndingFirst, NewlyListed, LowestPriced, HighestPrice };
inline constexpr std::array<SortOrder, 4> kSortOrders{SortOrder::EndingFirst, SortOrder::NewlyListed,
                                                      SortOrder::LowestPriced, SortOrder::HighestPrice};

// The search link followed directly by the order's suffix.
std::string SortedLink(std::string_view searchLink, SortOrder order);

// The keyword list of one Site, headless: one row per keyword record, with the selection mark, the
// search, and the pages a row opens. The rows share the records with the category tree.
class CKeywordListCtrl : public base::CListControl<KeywordRecordPtr> {
 public:
  CKeywordListCtrl(base::IBrowser& browser, base::IUserMessages& messages);

  // The marked keyword's search page, as it is or in a sort order.
  void OnDoubleClick();
  void OpenSorted(SortOrder order);

 private:
  std::string SearchText(const KeywordRecordPtr& row) const override { return row ? row->GetKeyword() : std::string(); }

  base::IBrowser& m_browser;
};

}  // namespace gavelscope::keywords
