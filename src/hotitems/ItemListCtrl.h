// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "base/Browser.h"
#include "base/ListControl.h"
#include "base/PageSource.h"
#include "base/ThreadOwner.h"
#include "base/UserMessages.h"
#include "hotitems/HotItemRecord.h"
#include "hotitems/ItemCompare.h"
#include "net/NetOptions.h"
#include "sites/ItemPage.h"

namespace gavelscope::hotitems {

enum class ItemListVariant { HistoryUK, HistoryUSA, QueryResults };

// The item page a row of that list opens: the UK history list opens its items on the UK host,
// whatever host the history line names.
std::string ItemPageLink(ItemListVariant variant, std::string link);

// A list of hot items, headless: one row per record, shown as four cells (date ended or time left,
// title, price, bids), with the sort column and order its header remembers, the selection mark, and
// every command the view offers. Safe to call from any thread.
class CItemListCtrl : public base::CListControl<std::shared_ptr<const CHotItemRecord>>, public base::IExportableList {
 public:
  static constexpr int kColumnCount = 4;
  using RecordPtr = std::shared_ptr<const CHotItemRecord>;

  CItemListCtrl(ItemListVariant variant, base::IBrowser& browser, base::IUserMessages& messages,
                base::IPageSource& pages, DateOrder dateOrder);
  ~CItemListCtrl();

  ItemListVariant variant() const { return m_variant; }

  // What a row shows in a column: the record's ending, title, price and bids.
  static std::string CellText(const CHotItemRecord& record, int column);
  // Empty beyond the rows or the columns.
  std::string CellText(std::size_t row, int column) const;

  // Sorting, remembered by the header; a header click sorts by that column, reversing the order
  // when it is already the sort column.
  void SortItems(int column, bool ascending);
  void OnHeaderClick(int column);
  int SortColumn() const;
  bool SortAscending() const;

  std::string ExportText() const override;
  base::Outcome Export(const std::filesystem::path& file) override;

  // The marked row's item page, or a page linked from it (fetched on a worker thread).
  void OpenItemPage();
  void OpenLinkedPage(sites::LinkedPage which);
  void OnDoubleClick() { OpenItemPage(); }
  // Stops and joins the linked-page workers.
  void Shutdown() { m_workers.StopAndJoinAll(); }

 private:
  std::string SearchText(const RecordPtr& row) const override { return row ? row->GetTitle() : std::string(); }

  const ItemListVariant m_variant;
  base::IBrowser& m_browser;
  base::IPageSource& m_pages;
  const DateOrder m_dateOrder;

  mutable std::mutex m_sortMutex;
  int m_nSortColumn = -1;
  bool m_bSortAscending = true;
  base::ThreadOwner m_workers;
};

}  // namespace gavelscope::hotitems
