// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <deque>
#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "base/Browser.h"
#include "base/ObservableControl.h"
#include "base/PageSource.h"
#include "base/ThreadOwner.h"
#include "base/UserMessages.h"
#include "hotitems/HotItemRecord.h"
#include "hotitems/ItemCompare.h"
#include "net/NetOptions.h"
#include "sites/ItemPage.h"

namespace gavelscope::hotitems {

enum class ItemListVariant { HistoryUK, HistoryUSA, QueryResults };

// A list of hot items, headless: rows of four texts (date ended or time left, title, price, bids)
// with their records, the sort column and order its header remembers, the selection mark, and every
// command the view offers. Safe to call from any thread.
class CItemListCtrl : public base::ObservableControl {
 public:
  static constexpr int kColumnCount = 4;
  using RecordPtr = std::shared_ptr<CHotItemRecord>;

  struct RowData {
    std::vector<std::string> texts;  // what each column shows
    RecordPtr data;                  // the row's record, once attached
  };

  CItemListCtrl(ItemListVariant variant, base::IBrowser& browser, base::IUserMessages& messages,
                base::IPageSource& pages, DateOrder dateOrder);
  ~CItemListCtrl();

  ItemListVariant variant() const { return m_variant; }

  // Rows. An index beyond the end inserts at the end; a negative one inserts nothing (-1).
  int InsertItem(int index, std::string text);
  bool SetItemText(int row, int column, std::string text);
  bool SetItemData(int row, RecordPtr record);
  RecordPtr GetItemData(int row) const;
  std::string GetItemText(int row, int column) const;
  int GetItemCount() const;
  bool DeleteItem(int row);
  void DeleteAllItems();
  // Drops every row together with its record.
  void ClearRecords();

  // Sorting, remembered by the header; a header click sorts by that column, reversing the order
  // when it is already the sort column.
  void SortItems(int column, bool ascending);
  void OnHeaderClick(int column);
  int SortColumn() const;
  bool SortAscending() const;

  int GetSelectionMark() const;
  void SetSelectionMark(int row);
  // The next row after the mark whose title holds `word`, ignoring case; no wrap-around.
  void FindNext(std::string_view word);

  std::string ExportText() const;
  net::NetResult ExportList(const std::filesystem::path& file);

  // The marked row's item page, or a page linked from it (fetched on a worker thread).
  void OpenItemPage();
  void OpenLinkedPage(sites::LinkedPage which);
  // A right click on a row (-1: none) selects it; true when the menu is to be shown.
  bool ContextMenuAt(int row);
  // Stops and joins the linked-page workers.
  void Shutdown() { m_workers.StopAndJoinAll(); }

 private:
  std::string SiteLink(std::string link) const;

  const ItemListVariant m_variant;
  base::IBrowser& m_browser;
  base::IUserMessages& m_messages;
  base::IPageSource& m_pages;
  const DateOrder m_dateOrder;

  mutable std::mutex m_mutex;
  // A deque: query jobs insert each row at their own row count, near the front, and a vector would
  // move every row behind it for each one.
  std::deque<RowData> m_rows;
  int m_mark = -1;
  int m_nSortColumn = -1;
  bool m_bSortAscending = true;
  base::ThreadOwner m_workers;
};

}  // namespace gavelscope::hotitems
