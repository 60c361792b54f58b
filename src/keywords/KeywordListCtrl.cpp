// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "keywords/KeywordListCtrl.h"

#include "base/ListCommands.h"

namespace gavelscope::keywords {

std::string SortedLink(std::string_view searchLink, SortOrder order) {
  std::string link(searchLink);
  switch (order) {
    case SortOrder::EndingFirst:
      return link + "_W0QQsosortpropertyZ1";
    case SortOrder::NewlyListed:
      return link + "_W0QQsosortorderZ2QQsosortpropertyZ2";
    case SortOrder::LowestPriced:
      return link + "_W0QQsosortpropertyZ3";
    case SortOrder::HighestPrice:
      return link + "_W0QQsosortorderZ2QQsosortpropertyZ3";
  }
  return link;
}

CKeywordListCtrl::CKeywordListCtrl(base::IBrowser& browser, base::IUserMessages& messages)
    : m_browser(browser), m_messages(messages) {}

void CKeywordListCtrl::Fill(const KeywordArray& array) {
  {
    std::lock_guard lock(m_mutex);
    m_rows = array;
    m_mark = -1;
  }
  NotifyChanged();
}

void CKeywordListCtrl::DeleteAllItems() {
  Fill({});
}

std::size_t CKeywordListCtrl::RowCount() const {
  std::lock_guard lock(m_mutex);
  return m_rows.size();
}

std::string CKeywordListCtrl::RowText(std::size_t row) const {
  const KeywordRecordPtr record = RowRecord(row);
  return record ? record->GetKeyword() : std::string();
}

KeywordRecordPtr CKeywordListCtrl::RowRecord(std::size_t row) const {
  std::lock_guard lock(m_mutex);
  return row < m_rows.size() ? m_rows[row] : nullptr;
}

int CKeywordListCtrl::GetSelectionMark() const {
  std::lock_guard lock(m_mutex);
  return m_mark;
}

void CKeywordListCtrl::SetSelectionMark(int row) {
  {
    std::lock_guard lock(m_mutex);
    m_mark = (row >= 0 && static_cast<std::size_t>(row) < m_rows.size()) ? row : -1;
  }
  NotifyChanged();
}

void CKeywordListCtrl::FindNext(std::string_view word) {
  const auto rowCount = [this] { return m_rows.size(); };
  const auto textOf = [this](std::size_t row) { return m_rows[row]->GetKeyword(); };
  if (base::FindNextAndMark(m_mutex, m_mark, word, rowCount, textOf, m_messages)) NotifyChanged();
}

KeywordRecordPtr CKeywordListCtrl::MarkedRecord() const {
  std::lock_guard lock(m_mutex);
  return m_mark >= 0 ? m_rows[static_cast<std::size_t>(m_mark)] : nullptr;
}

void CKeywordListCtrl::OnDoubleClick() {
  if (const KeywordRecordPtr record = MarkedRecord()) m_browser.OpenUrlInBrowser(record->GetSearchLink());
}

void CKeywordListCtrl::OpenSorted(SortOrder order) {
  if (const KeywordRecordPtr record = MarkedRecord())
    m_browser.OpenUrlInBrowser(SortedLink(record->GetSearchLink(), order));
}

bool CKeywordListCtrl::ContextMenuAt(int row) {
  if (row < 0 || static_cast<std::size_t>(row) >= RowCount()) return false;
  SetSelectionMark(row);
  return true;
}

}  // namespace gavelscope::keywords
