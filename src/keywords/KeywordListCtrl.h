// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <array>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "base/Browser.h"
#include "base/ObservableControl.h"
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
class CKeywordListCtrl : public base::ObservableControl {
 public:
  CKeywordListCtrl(base::IBrowser& browser, base::IUserMessages& messages);

  // Replaces the rows with the array's records, in array order.
  void Fill(const KeywordArray& array);
  void DeleteAllItems();
  std::size_t RowCount() const;
  std::string RowText(std::size_t row) const;
  KeywordRecordPtr RowRecord(std::size_t row) const;
  int GetSelectionMark() const;
  // A click on a row (or -1 for none) moves the selection mark there.
  void SetSelectionMark(int row);

  // Selects the next row after the mark whose keyword holds `word`, ignoring case; no wrap-around.
  // Tells "Item Not Found !" when there is none; says nothing when the list is empty.
  void FindNext(std::string_view word);

  // The mark's search page, as it is or in a sort order.
  void OnDoubleClick();
  void OpenSorted(SortOrder order);
  // A right click on a row (-1: below the rows) selects it; true when the menu is to be shown.
  bool ContextMenuAt(int row);

 private:
  KeywordRecordPtr MarkedRecord() const;

  base::IBrowser& m_browser;
  base::IUserMessages& m_messages;
  mutable std::mutex m_mutex;
  KeywordArray m_rows;
  int m_mark = -1;
};

}  // namespace gavelscope::keywords
