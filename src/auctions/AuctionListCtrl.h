// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "auctions/AuctionRecord.h"
#include "base/Browser.h"
#include "base/ObservableControl.h"
#include "base/UserMessages.h"
#include "net/NetOptions.h"
#include "sites/ListingLinks.h"

namespace gavelscope::auctions {

// The auction list of one Site, headless: rows of sub-category name (column 0) and count text
// (column 1), each with its record, the selection mark, and every command of the view.
class CAuctionListCtrl : public base::ObservableControl {
 public:
  struct Row {
    std::string name;
    std::string count;
    std::shared_ptr<const CAuctionRecord> record;
  };

  CAuctionListCtrl(base::IBrowser& browser, base::IUserMessages& messages);

  void ClearRows();
  // Inserts at `index` (at the end when beyond it); returns where the row went.
  std::size_t InsertRow(std::size_t index, Row row);
  std::size_t RowCount() const;
  Row GetRow(std::size_t row) const;
  int GetSelectionMark() const;
  void SetSelectionMark(int row);

  // Largest count first, by the count text's leading number ("25,487" counts as 25, "" as 0);
  // rows of equal count keep their order.
  void SortByCount();
  // The list keeps the order of the count threads' sort: a header click changes nothing.
  void OnHeaderClick(int /*column*/) {}
  void SearchNext(std::string_view word);
  std::string ExportText() const;
  net::NetResult ExportRows(const std::filesystem::path& file);

  // The marked row's listing page, in a view; nothing without a marked row.
  void OpenView(sites::ListingView view);
  void OnDoubleClick() { OpenView(sites::ListingView::Current); }
  // A right click on a row (-1: none) selects it; true when the menu is to be shown.
  bool ContextMenuAt(int row);

 private:
  base::IBrowser& m_browser;
  base::IUserMessages& m_messages;
  mutable std::mutex m_mutex;
  std::vector<Row> m_rows;
  int m_mark = -1;
};

// The number a count text starts with, read as C's atoi reads it.
int CountValue(std::string_view count);

}  // namespace gavelscope::auctions
