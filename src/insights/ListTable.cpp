// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "insights/ListTable.h"

#include <array>

#include "base/TextHelpers.h"
#include "hotitems/ItemCompare.h"
#include "hotitems/ItemListCtrl.h"
#include "insights/Statistics.h"
#include "sites/ListingLinks.h"

namespace gavelscope::insights {

namespace {

constexpr std::string_view kKeywordColumns[] = {"position", "keyword"};
constexpr std::string_view kAuctionColumns[] = {"position", "auction", "count_text", "count", "link"};
constexpr std::string_view kHistoryColumns[] = {"date_ended", "title", "price_text", "price", "currency",
                                                "bids_text",  "bids",  "site",       "link"};
constexpr std::string_view kQueryColumns[] = {"time_left", "time_left_seconds", "title", "price_text", "price",
                                              "currency",  "bids_text",         "bids",  "link"};

// Code points of Windows-1252's bytes 0x80 to 0x9F; the rest of the table is Latin-1.
constexpr std::array<char32_t, 32> kHighBytes = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                 0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                                 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

Cell Text(std::string_view text) {
  return Utf8FromWindows1252(text);
}

// The price, its currency and its bids, as the row's Site reads them.
void AddFigures(std::vector<Cell>& row, const hotitems::CHotItemRecord& record, sites::Site site) {
  const ItemFigures figures = FiguresOf(record, site);
  row.push_back(Text(record.GetPrice()));
  row.push_back(figures.price ? Cell(figures.price->amount) : Cell());
  row.push_back(figures.price ? Cell(std::string(CurrencyCode(figures.price->currency))) : Cell());
  row.push_back(Text(record.GetBids()));
  row.push_back(figures.bids);
}

}  // namespace

std::string_view ListName(ListKind list) {
  switch (list) {
    case ListKind::Keywords:
      return "keywords";
    case ListKind::Auctions:
      return "auctions";
    case ListKind::History:
      return "history";
    case ListKind::Query:
      return "query";
  }
  return {};
}

std::string_view SiteName(sites::Site site) {
  return site == sites::Site::USA ? "usa" : "uk";
}

std::span<const std::string_view> ColumnsOf(ListKind list) {
  switch (list) {
    case ListKind::Keywords:
      return kKeywordColumns;
    case ListKind::Auctions:
      return kAuctionColumns;
    case ListKind::History:
      return kHistoryColumns;
    case ListKind::Query:
      return kQueryColumns;
  }
  return {};
}

std::string Utf8FromWindows1252(std::string_view text) {
  std::string utf8;
  utf8.reserve(text.size());
  for (const char byte : text) {
    const auto c = static_cast<unsigned char>(byte);
    const char32_t point = c >= 0x80 && c <= 0x9F ? kHighBytes[c - 0x80] : c;
    if (point < 0x80) {
      utf8 += static_cast<char>(point);
    } else if (point < 0x800) {
      utf8 += static_cast<char>(0xC0 | (point >> 6));
      utf8 += static_cast<char>(0x80 | (point & 0x3F));
    } else {
      utf8 += static_cast<char>(0xE0 | (point >> 12));
      utf8 += static_cast<char>(0x80 | ((point >> 6) & 0x3F));
      utf8 += static_cast<char>(0x80 | (point & 0x3F));
    }
  }
  return utf8;
}

ListTable KeywordsTable(std::span<const keywords::KeywordRecordPtr> top100, sites::Site site) {
  ListTable table{ListKind::Keywords, site, std::nullopt, ColumnsOf(ListKind::Keywords), {}};
  long position = 0;
  for (const keywords::KeywordRecordPtr& record : top100) {
    table.rows.push_back({++position, Text(record ? record->GetKeyword() : std::string())});
  }
  return table;
}

ListTable KeywordsTable(const keywords::CCategoryTree& tree, sites::Site site) {
  const std::vector<keywords::TreeItem> roots = tree.RootItems();
  const auto top100 = roots.empty() ? nullptr : tree.GetItemData(roots.front());
  return top100 ? KeywordsTable(*top100, site) : KeywordsTable({}, site);
}

ListTable AuctionsTable(std::span<const auctions::AuctionListRow> rows, sites::Site site) {
  ListTable table{ListKind::Auctions, site, std::nullopt, ColumnsOf(ListKind::Auctions), {}};
  long position = 0;
  for (const auctions::AuctionListRow& row : rows) {
    const std::optional<long> count = ReadCount(row.count);
    table.rows.push_back(
        {++position, Text(row.name), Text(row.count), count ? Cell(*count) : Cell(),
         row.record ? Text(sites::ViewLink(row.record->GetLink(), sites::ListingView::Current)) : Cell()});
  }
  return table;
}

ListTable HistoryTable(std::span<const std::shared_ptr<const hotitems::CHotItemRecord>> rows, sites::Site site) {
  ListTable table{ListKind::History, site, std::nullopt, ColumnsOf(ListKind::History), {}};
  const hotitems::CHotItemRecord empty;
  for (const auto& pointer : rows) {
    const hotitems::CHotItemRecord& record = pointer ? *pointer : empty;
    const sites::Site own = HistorySiteOf(record);
    std::vector<Cell> row{Text(record.GetEnding()), Text(record.GetTitle())};
    AddFigures(row, record, own);
    row.push_back(std::string(SiteName(own)));
    row.push_back(Text(hotitems::ItemPageLink(
        site == sites::Site::UK ? hotitems::ItemListVariant::HistoryUK : hotitems::ItemListVariant::HistoryUSA,
        record.GetItemLink())));
    table.rows.push_back(std::move(row));
  }
  return table;
}

ListTable QueryTable(std::span<const std::shared_ptr<const hotitems::CHotItemRecord>> rows, sites::Site site,
                     std::string queryName) {
  ListTable table{ListKind::Query, site, std::move(queryName), ColumnsOf(ListKind::Query), {}};
  const hotitems::CHotItemRecord empty;
  for (const auto& pointer : rows) {
    const hotitems::CHotItemRecord& record = pointer ? *pointer : empty;
    // The query list sorts its first column by these seconds, read from the trimmed, upper-cased text.
    std::string timeLeft(base::TrimWhiteSpace(record.GetEnding()));
    for (char& c : timeLeft) c = (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c;
    std::vector<Cell> row{Text(record.GetEnding()), hotitems::TimeLeftSeconds(timeLeft), Text(record.GetTitle())};
    AddFigures(row, record, site);
    row.push_back(Text(record.GetItemLink()));
    table.rows.push_back(std::move(row));
  }
  return table;
}

}  // namespace gavelscope::insights
