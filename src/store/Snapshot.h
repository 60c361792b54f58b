// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "auctions/AuctionListCtrl.h"
#include "hotitems/HotItemRecord.h"
#include "insights/ListTable.h"
#include "insights/Statistics.h"
#include "keywords/CategoryTree.h"
#include "query/QueryDefinition.h"
#include "sites/SiteProfile.h"

namespace gavelscope::store {

// What one snapshot records: plain values, so that the store needs neither the run controller nor
// its threads. All text is UTF-8, as the lists' JSON output has it.

// One sub-category's row of a Site's auction list.
struct AuctionCount {
  std::string name;
  std::string link;           // its listing page; empty when the row had none
  std::string countText;      // the cell as the list shows it ("25,487")
  std::optional<long> count;  // insights::ReadCount of it: none when the cell holds no digits
};

// One run of a saved query.
struct QueryRecording {
  std::string name;  // the query file's name ("toys.sbqry"): what `trends query` looks for
  sites::Site site = sites::Site::UK;
  std::string settings;  // a JSON object of the query's settings (QuerySettingsJson)
  // The result rows, each in the columns of insights::ColumnsOf(ListKind::Query).
  std::vector<std::vector<insights::Cell>> rows;
  insights::ListStatistics statistics;  // insights::Summarise of the same rows
};

struct SnapshotData {
  sites::Site site = sites::Site::USA;
  std::chrono::sys_seconds time{};     // when it was taken, UTC
  std::vector<AuctionCount> auctions;  // in list order
  std::vector<std::string> keywords;   // the Top 100 keywords, position 1 first
  std::vector<QueryRecording> queries;
};

// The plain data of the run controller's lists, for a caller above the store (the command line, the
// window) to hand to ResearchStore::Record:
//   SnapshotOf(site, NowUtc(), controller.AuctionList(site).Rows(), controller.Tree(site))
//   QueryRecordingOf(file.filename().string(), settings, controller.QueryResults().Rows())
std::vector<AuctionCount> AuctionCountsOf(std::span<const auctions::AuctionListRow> rows);
std::vector<std::string> KeywordsOf(const keywords::CCategoryTree& tree);
// A Site's auction counts and keywords, without queries.
SnapshotData SnapshotOf(sites::Site site, std::chrono::sys_seconds time,
                        std::span<const auctions::AuctionListRow> auctions, const keywords::CCategoryTree& tree);
// What a recording kept, as the programs tell it: "snapshot 5: usa, 330 auction counts, 327
// keywords, 1 query (240 rows)".
std::string RecordedText(const SnapshotData& snapshot, std::int64_t id);
QueryRecording QueryRecordingOf(std::string name, const query::QueryDefinition& settings,
                                std::span<const std::shared_ptr<const hotitems::CHotItemRecord>> results);

// {"site", "keywords", "page_depth", "categories": [...], "bids", "price", "days" (each {"test":
// "any"|"greater"|"less"|"range", "greater", "less", "from", "to"}), "sort", "ascending"}.
std::string QuerySettingsJson(const query::QueryDefinition& settings);

// The current time to the second.
std::chrono::sys_seconds NowUtc();
// ISO 8601 in UTC to the second: "2026-03-01T06:00:00Z". Text of this form sorts as time does.
std::string TimeText(std::chrono::sys_seconds time);
// A day "YYYY-MM-DD" (or a time "YYYY-MM-DDTHH:MM:SSZ") as its first second; none for anything else.
std::optional<std::chrono::sys_seconds> ParseTime(std::string_view text);

}  // namespace gavelscope::store
