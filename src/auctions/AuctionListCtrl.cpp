// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "auctions/AuctionListCtrl.h"

#include <algorithm>
#include <cstdlib>

#include "base/ListCommands.h"

namespace gavelscope::auctions {

int CountValue(std::string_view count) {
  return std::atoi(std::string(count).c_str());
}

CAuctionListCtrl::CAuctionListCtrl(base::IBrowser& browser, base::IUserMessages& messages)
    : m_browser(browser), m_messages(messages) {}

void CAuctionListCtrl::ClearRows() {
  {
    std::lock_guard lock(m_mutex);
    m_rows.clear();
    m_mark = -1;
  }
  NotifyChanged();
}

std::size_t CAuctionListCtrl::InsertRow(std::size_t index, Row row) {
  std::size_t at = 0;
  {
    std::lock_guard lock(m_mutex);
    at = std::min(index, m_rows.size());
    m_rows.insert(m_rows.begin() + static_cast<std::ptrdiff_t>(at), std::move(row));
  }
  NotifyChanged();
  return at;
}

std::size_t CAuctionListCtrl::RowCount() const {
  std::lock_guard lock(m_mutex);
  return m_rows.size();
}

CAuctionListCtrl::Row CAuctionListCtrl::GetRow(std::size_t row) const {
  std::lock_guard lock(m_mutex);
  return row < m_rows.size() ? m_rows[row] : Row{};
}

int CAuctionListCtrl::GetSelectionMark() const {
  std::lock_guard lock(m_mutex);
  return m_mark;
}

void CAuctionListCtrl::SetSelectionMark(int row) {
  {
    std::lock_guard lock(m_mutex);
    m_mark = (row >= 0 && static_cast<std::size_t>(row) < m_rows.size()) ? row : -1;
  }
  NotifyChanged();
}

void CAuctionListCtrl::SortByCount() {
  {
    std::lock_guard lock(m_mutex);
    std::stable_sort(m_rows.begin(), m_rows.end(),
                     [](const Row& a, const Row& b) { return CountValue(a.count) > CountValue(b.count); });
  }
  NotifyChanged();
}

void CAuctionListCtrl::SearchNext(std::string_view word) {
  const auto rowCount = [this] { return m_rows.size(); };
  const auto textOf = [this](std::size_t row) { return m_rows[row].name; };
  if (base::FindNextAndMark(m_mutex, m_mark, word, rowCount, textOf, m_messages)) NotifyChanged();
}

std::string CAuctionListCtrl::ExportText() const {
  std::string text = "\t\t\tTodays Auctions\r\n\r\nPosition\tCount\tAuction\r\n\r\n";
  std::lock_guard lock(m_mutex);
  for (std::size_t i = 0; i < m_rows.size(); ++i) {
    text += std::to_string(i + 1) + "\t\t" + m_rows[i].count + "\t\t" + m_rows[i].name + "\r\n";
  }
  return text;
}

net::NetResult CAuctionListCtrl::ExportRows(const std::filesystem::path& file) {
  return base::ExportToFile(file, ExportText(), m_messages);
}

void CAuctionListCtrl::OpenView(sites::ListingView view) {
  std::shared_ptr<const CAuctionRecord> record;
  {
    std::lock_guard lock(m_mutex);
    if (m_mark < 0) return;
    record = m_rows[static_cast<std::size_t>(m_mark)].record;
  }
  if (record) m_browser.OpenUrlInBrowser(sites::ViewLink(record->GetLink(), view));
}

bool CAuctionListCtrl::ContextMenuAt(int row) {
  if (row < 0 || static_cast<std::size_t>(row) >= RowCount()) return false;
  SetSelectionMark(row);
  return true;
}

}  // namespace gavelscope::auctions
