// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "hotitems/ItemListCtrl.h"

#include <algorithm>
#include <optional>

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
    : CListControl(messages), m_variant(variant), m_browser(browser), m_pages(pages), m_dateOrder(dateOrder) {}

CItemListCtrl::~CItemListCtrl() {
  Shutdown();
}

std::string CItemListCtrl::CellText(const CHotItemRecord& record, int column) {
  switch (column) {
    case kDateColumn:
      return record.GetEnding();
    case kTitleColumn:
      return record.GetTitle();
    case kPriceColumn:
      return record.GetPrice();
    case kBidsColumn:
      return record.GetBids();
    default:
      return {};
  }
}

std::string CItemListCtrl::CellText(std::size_t row, int column) const {
  const RecordPtr record = RowAt(row);
  return record ? CellText(*record, column) : std::string();
}

int CItemListCtrl::SortColumn() const {
  std::lock_guard lock(m_sortMutex);
  return m_nSortColumn;
}

bool CItemListCtrl::SortAscending() const {
  std::lock_guard lock(m_sortMutex);
  return m_bSortAscending;
}

void CItemListCtrl::OnHeaderClick(int column) {
  bool ascending = true;
  {
    std::lock_guard lock(m_sortMutex);
    if (column == m_nSortColumn) ascending = !m_bSortAscending;
  }
  SortItems(column, ascending);
}

void CItemListCtrl::SortItems(int column, bool ascending) {
  if (column < 0 || column >= kColumnCount) return;
  const bool query = m_variant == ItemListVariant::QueryResults;
  {
    std::lock_guard lock(m_sortMutex);
    m_nSortColumn = column;
    m_bSortAscending = ascending;
  }
  const auto keyOf = [&](const RecordPtr& record) {
    SortKey key;
    key.text = std::string(base::TrimWhiteSpace(record ? CellText(*record, column) : std::string()));
    if (query) UpperCase(key.text);
    if (column == kDateColumn && query) {
      key.number = static_cast<double>(TimeLeftSeconds(key.text));
      return key;
    }
    if (column == kPriceColumn) {
      if (query) {
        for (std::string_view mark : kQueryPriceMarks) base::ReplaceAll(key.text, mark, "");
        key.text = std::string(base::TrimWhiteSpace(key.text));
      } else {
        for (std::string_view mark : kHistoryPriceMarks) base::ReplaceAll(key.text, mark, "");
      }
      key.number = LeadingNumber(key.text);
      return key;
    }
    if (column == kBidsColumn) base::ReplaceAll(key.text, "-", "0");
    key.number = LeadingNumber(key.text);
    key.isNumber = IsNumberText(key.text);
    key.date = ParseDateText(key.text, m_dateOrder);
    return key;
  };
  const auto compare = [&](const SortKey& a, const SortKey& b) {
    if (column == kDateColumn) return query ? CompareNumbers(a.number, b.number) : CompareDates(a, b);
    if (column == kPriceColumn) return CompareNumbers(a.number, b.number);
    // Only the first text decides how the pair is compared.
    if (a.text.empty() || b.text.empty()) return CompareText(a.text, b.text);
    if (a.isNumber) return CompareNumbers(a.number, b.number);
    if (a.date) return CompareDates(a, b);
    return CompareText(a.text, b.text);
  };
  // A stable merge sort stays within bounds even where the mixed rules are not a strict order.
  SortRows(keyOf,
           [&](const SortKey& a, const SortKey& b) { return ascending ? compare(a, b) < 0 : compare(b, a) < 0; });
}

std::string CItemListCtrl::ExportText() const {
  std::string text = "\tHot Items History List\r\n\r\nDate Ended\t\t\tBids\t\t\tPrice\t\t\tItem Title\r\n\r\n";
  const CHotItemRecord empty;
  ForEachRow([&](const RecordPtr& row) {
    const CHotItemRecord& record = row ? *row : empty;
    text += record.GetEnding() + "\t\t\t" + record.GetBids() + "\t\t\t" + record.GetPrice() + "\t\t\t" +
            record.GetTitle() + "\r\n";
  });
  return text;
}

base::Outcome CItemListCtrl::Export(const std::filesystem::path& file) {
  return base::ExportToFile(file, ExportText(), m_messages);
}

std::string ItemPageLink(ItemListVariant variant, std::string link) {
  if (variant == ItemListVariant::HistoryUK) base::ReplaceAll(link, ".com", ".co.uk");
  return link;
}

void CItemListCtrl::OpenItemPage() {
  if (const RecordPtr record = MarkedRow()) m_browser.OpenUrlInBrowser(ItemPageLink(m_variant, record->GetItemLink()));
}

void CItemListCtrl::OpenLinkedPage(sites::LinkedPage which) {
  // The link is taken now: the row may be cleared before the worker runs.
  const RecordPtr record = MarkedRow();
  if (!record) return;
  m_workers.Start([this, which, itemLink = record->GetItemLink()](std::stop_token stop) {
    const std::string page = m_pages.GetPageText(itemLink, stop);
    if (stop.stop_requested()) return;
    const std::string link = sites::LinkedPageUrl(page, which, m_variant == ItemListVariant::HistoryUK);
    if (!link.empty()) m_browser.OpenUrlInBrowser(link);
  });
}

}  // namespace gavelscope::hotitems
