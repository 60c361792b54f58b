// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "auctions/AuctionListCtrl.h"
#include "hotitems/HotItemRecord.h"
#include "keywords/CategoryTree.h"
#include "sites/SiteProfile.h"

namespace gavelscope::insights {

enum class ListKind { Keywords, Auctions, History, Query };
std::string_view ListName(ListKind list);     // "keywords", "auctions", "history", "query"
std::string_view SiteName(sites::Site site);  // "usa", "uk"

// A cell: absent, text (UTF-8), a whole number or an amount.
using Cell = std::variant<std::monostate, std::string, long, double>;

// A list as named columns, in the rows and the order of its text export, with its text decoded to
// UTF-8: what the CSV and JSON formats write.
struct ListTable {
  ListKind list = ListKind::Keywords;
  sites::Site site = sites::Site::USA;
  std::optional<std::string> query;  // the query file's name, for a query's results
  std::span<const std::string_view> columns;
  std::vector<std::vector<Cell>> rows;  // each as many cells as there are columns
};

// The column names of a list, in order.
std::span<const std::string_view> ColumnsOf(ListKind list);

// The keywords tab exports the Top 100 list: the tree's first item's keywords.
ListTable KeywordsTable(std::span<const keywords::KeywordRecordPtr> top100, sites::Site site);
ListTable KeywordsTable(const keywords::CCategoryTree& tree, sites::Site site);
ListTable AuctionsTable(std::span<const auctions::AuctionListRow> rows, sites::Site site);
// A Site's history list: each row's price read by the row's own Site, its link as the list opens it.
ListTable HistoryTable(std::span<const std::shared_ptr<const hotitems::CHotItemRecord>> rows, sites::Site site);
ListTable QueryTable(std::span<const std::shared_ptr<const hotitems::CHotItemRecord>> rows, sites::Site site,
                     std::string queryName);

// Windows-1252 text as UTF-8. The five bytes that table leaves undefined (0x81, 0x8D, 0x8F, 0x90,
// 0x9D) become the C1 controls of the same number, as web browsers decode them, so nothing is lost.
std::string Utf8FromWindows1252(std::string_view text);

}  // namespace gavelscope::insights
