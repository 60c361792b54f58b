// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "hotitems/ItemListCtrl.h"

#include <algorithm>
#include <numeric>
#include <optional>

#include "base/ListCommands.h"
#include "base/TextHelpers.h"
#include "sites/ItemPage.h"

namespace gavelscope::hotitems {

namespace {

constexpr int kDateColumn = 0;
constexpr int kTitleColumn = 1;
constexpr int kPriceColumn = 2;
constexpr int kBidsColumn = 3;

// What a price loses before it is compared as a number.
constexpr std::string_view kHistoryPriceMarks[] = {"$", "GBP", "EUR", "AU", ","};
constexpr std::string_view kQueryPriceMarks[] = {"$", "\xA3", "GBP", "EUR", "AU", "US", "C", ","};

// One cell prepared once per sort, so that comparing two rows is cheap.
struct SortKey {
  std::string text;
  double number = 0;
  bool isNumber = false;
  std::optional<long> date;
};

void UpperCase(std::string& text) {
  for (char& c : text) c = (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c;
}

int CompareNumbers(double a, double b) {
  return a < b ? -1 : (a > b ? 1 : 0);
}

int CompareDates(const SortKey& a, const SortKey& b) {
  if (!a.date || !b.date) return CompareText(a.text, b.text);
  return *a.date < *b.date ? -1 : (*a.date > *b.date ? 1 : 0);
}

}  // namespace

CItemListCtrl::CItemListCtrl(ItemListVariant variant, base::IBrowser& browser, base::IUserMessages& messages,
                             base::IPageSource& pages, DateOrder dateOrder)
    : m_variant(variant), m_browser(browser), m_messages(messages), m_pages(pages), m_dateOrder(dateOrder) {}

CItemListCtrl::~CItemListCtrl() {
  Shutdown();
}

int CItemListCtrl::InsertItem(int index, std::string text) {
  if (index < 0) return -1;
  int at = 0;
  {
    std::lock_guard lock(m_mutex);
    at = std::min(index, static_cast<int>(m_rows.size()));
    RowData row{std::vector<std::string>(kColumnCount), nullptr};
    row.texts[0] = std::move(text);
    m_rows.insert(m_rows.begin() + at, std::move(row));
  }
  NotifyChanged();
  return at;
}

bool CItemListCtrl::SetItemText(int row, int column, std::string text) {
  {
    std::lock_guard lock(m_mutex);
    if (row < 0 || row >= static_cast<int>(m_rows.size()) || column < 0 || column >= kColumnCount) return false;
    m_rows[static_cast<std::size_t>(row)].texts[static_cast<std::size_t>(column)] = std::move(text);
  }
  NotifyChanged();
  return true;
}

bool CItemListCtrl::SetItemData(int row, RecordPtr record) {
  std::lock_guard lock(m_mutex);
  if (row < 0 || row >= static_cast<int>(m_rows.size())) return false;
  m_rows[static_cast<std::size_t>(row)].data = std::move(record);
  return true;
}

CItemListCtrl::RecordPtr CItemListCtrl::GetItemData(int row) const {
  std::lock_guard lock(m_mutex);
  if (row < 0 || row >= static_cast<int>(m_rows.size())) return nullptr;
  return m_rows[static_cast<std::size_t>(row)].data;
}

std::string CItemListCtrl::GetItemText(int row, int column) const {
  std::lock_guard lock(m_mutex);
  if (row < 0 || row >= static_cast<int>(m_rows.size()) || column < 0 || column >= kColumnCount) return {};
  return m_rows[static_cast<std::size_t>(row)].texts[static_cast<std::size_t>(column)];
}

int CItemListCtrl::GetItemCount() const {
  std::lock_guard lock(m_mutex);
  return static_cast<int>(m_rows.size());
}

bool CItemListCtrl::DeleteItem(int row) {
  {
    std::lock_guard lock(m_mutex);
    if (row < 0 || row >= static_cast<int>(m_rows.size())) return false;
    m_rows.erase(m_rows.begin() + row);
    if (m_mark >= static_cast<int>(m_rows.size())) m_mark = -1;
  }
  NotifyChanged();
  return true;
}

void CItemListCtrl::DeleteAllItems() {
  {
    std::lock_guard lock(m_mutex);
    m_rows.clear();
    m_mark = -1;
  }
  NotifyChanged();
}

void CItemListCtrl::ClearRecords() {
  // The records go with their rows; a linked-page worker has taken the link it needs already.
  DeleteAllItems();
}

int CItemListCtrl::SortColumn() const {
  std::lock_guard lock(m_mutex);
  return m_nSortColumn;
}

bool CItemListCtrl::SortAscending() const {
  std::lock_guard lock(m_mutex);
  return m_bSortAscending;
}

void CItemListCtrl::OnHeaderClick(int column) {
  bool ascending = true;
  {
    std::lock_guard lock(m_mutex);
    if (column == m_nSortColumn) ascending = !m_bSortAscending;
  }
  SortItems(column, ascending);
}

void CItemListCtrl::SortItems(int column, bool ascending) {
  if (column < 0 || column >= kColumnCount) return;
  const bool query = m_variant == ItemListVariant::QueryResults;
  {
    std::lock_guard lock(m_mutex);
    m_nSortColumn = column;
    m_bSortAscending = ascending;

    std::vector<SortKey> keys(m_rows.size());
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
      SortKey& key = keys[i];
      key.text = std::string(base::TrimWhiteSpace(m_rows[i].texts[static_cast<std::size_t>(column)]));
      if (query) UpperCase(key.text);
      if (column == kDateColumn && query) {
        key.number = static_cast<double>(TimeLeftSeconds(key.text));
        continue;
      }
      if (column == kPriceColumn) {
        if (query) {
          for (std::string_view mark : kQueryPriceMarks) base::ReplaceAll(key.text, mark, "");
          key.text = std::string(base::TrimWhiteSpace(key.text));
        } else {
          for (std::string_view mark : kHistoryPriceMarks) base::ReplaceAll(key.text, mark, "");
        }
        key.number = LeadingNumber(key.text);
        continue;
      }
      if (column == kBidsColumn) base::ReplaceAll(key.text, "-", "0");
      key.number = LeadingNumber(key.text);
      key.isNumber = IsNumberText(key.text);
      key.date = ParseDateText(key.text, m_dateOrder);
    }

    const auto compare = [&](const SortKey& a, const SortKey& b) {
      if (column == kDateColumn) return query ? CompareNumbers(a.number, b.number) : CompareDates(a, b);
      if (column == kPriceColumn) return CompareNumbers(a.number, b.number);
      // Only the first text decides how the pair is compared.
      if (a.text.empty() || b.text.empty()) return CompareText(a.text, b.text);
      if (a.isNumber) return CompareNumbers(a.number, b.number);
      if (a.date) return CompareDates(a, b);
      return CompareText(a.text, b.text);
    };
    std::vector<std::size_t> order(m_rows.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    // A stable merge sort stays within bounds even where the mixed rules are not a strict order.
    std::stable_sort(order.begin(), order.end(), [&](std::size_t x, std::size_t y) {
      return ascending ? compare(keys[x], keys[y]) < 0 : compare(keys[y], keys[x]) < 0;
    });
    std::deque<RowData> sorted;
    for (std::size_t index : order) sorted.push_back(std::move(m_rows[index]));
    m_rows.swap(sorted);
  }
  NotifyChanged();
}

int CItemListCtrl::GetSelectionMark() const {
  std::lock_guard lock(m_mutex);
  return m_mark;
}

void CItemListCtrl::SetSelectionMark(int row) {
  {
    std::lock_guard lock(m_mutex);
    m_mark = (row >= 0 && row < static_cast<int>(m_rows.size())) ? row : -1;
  }
  NotifyChanged();
}

void CItemListCtrl::FindNext(std::string_view word) {
  const auto rowCount = [this] { return m_rows.size(); };
  const auto textOf = [this](std::size_t row) { return m_rows[row].texts[kTitleColumn]; };
  if (base::FindNextAndMark(m_mutex, m_mark, word, rowCount, textOf, m_messages)) NotifyChanged();
}

std::string CItemListCtrl::ExportText() const {
  std::string text = "\tHot Items History List\r\n\r\nDate Ended\t\t\tBids\t\t\tPrice\t\t\tItem Title\r\n\r\n";
  std::lock_guard lock(m_mutex);
  const CHotItemRecord empty;
  for (const RowData& row : m_rows) {
    const CHotItemRecord& record = row.data ? *row.data : empty;
    text += record.GetEnding() + "\t\t\t" + record.GetBids() + "\t\t\t" + record.GetPrice() + "\t\t\t" +
            record.GetTitle() + "\r\n";
  }
  return text;
}

net::NetResult CItemListCtrl::ExportList(const std::filesystem::path& file) {
  return base::ExportToFile(file, ExportText(), m_messages);
}

std::string CItemListCtrl::SiteLink(std::string link) const {
  if (m_variant == ItemListVariant::HistoryUK) base::ReplaceAll(link, ".com", ".co.uk");
  return link;
}

void CItemListCtrl::OpenItemPage() {
  const RecordPtr record = GetItemData(GetSelectionMark());
  if (record) m_browser.OpenUrlInBrowser(SiteLink(record->GetItemLink()));
}

void CItemListCtrl::OpenLinkedPage(sites::LinkedPage which) {
  // The link is taken now: the row may be cleared before the worker runs.
  const RecordPtr record = GetItemData(GetSelectionMark());
  if (!record) return;
  m_workers.Start([this, which, itemLink = record->GetItemLink()](std::stop_token stop) {
    const std::string page = m_pages.GetPageText(itemLink, stop);
    if (stop.stop_requested()) return;
    const std::string link = sites::LinkedPageUrl(page, which, m_variant == ItemListVariant::HistoryUK);
    if (!link.empty()) m_browser.OpenUrlInBrowser(link);
  });
}

bool CItemListCtrl::ContextMenuAt(int row) {
  if (row < 0 || row >= GetItemCount()) return false;
  SetSelectionMark(row);
  return true;
}

}  // namespace gavelscope::hotitems
