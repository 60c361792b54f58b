// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "insights/ListTable.h"
#include "sites/SiteProfile.h"
#include "store/Snapshot.h"

namespace gavelscope::store {

// What the store answers. Times are the snapshots' own, ISO 8601 in UTC ("2026-03-01T06:00:00Z").

// One recorded snapshot and how many rows of each kind it holds.
struct SnapshotInfo {
  std::int64_t id = 0;
  std::string time;
  sites::Site site = sites::Site::USA;
  std::int64_t auctions = 0;  // sub-category counts
  std::int64_t keywords = 0;  // Top 100 keywords
  std::int64_t queries = 0;   // query recordings
};

enum class AuctionStatus { Kept, Appeared, Vanished };
std::string_view StatusName(AuctionStatus status);  // "kept", "appeared", "vanished"

// One sub-category between the first and the last snapshot compared.
struct AuctionTrendRow {
  std::string auction;  // its name in the last snapshot that lists it
  std::string link;
  std::optional<long> first;  // its count, none when not listed or without a number
  std::optional<long> last;
  long change = 0;                // last - first, a missing count taken as 0
  std::optional<double> percent;  // change / first in percent, to two decimals; none when first is none or 0
  AuctionStatus status = AuctionStatus::Kept;  // appeared: not listed first; vanished: not listed last
};

struct AuctionTrend {
  sites::Site site = sites::Site::USA;
  std::int64_t snapshots = 0;         // how many were looked at: the first, the last and those between
  std::optional<std::string> from;    // the first one's time; none without snapshots
  std::optional<std::string> to;      // the last one's
  std::vector<AuctionTrendRow> rows;  // largest change first
};

// A sub-category is the same one in both lists when its link is (its name when it has no link); of
// two rows with the same key in one list the first counts. Rows are ranked by change, largest growth
// first; equal changes by name, then link.
std::vector<AuctionTrendRow> CompareAuctions(std::span<const AuctionCount> first, std::span<const AuctionCount> last);
std::string AuctionKey(std::string_view link, std::string_view name);
// The row's count as the trends read it: none below 0.
std::optional<long> CountOf(const AuctionCount& row);

// The sub-categories that grew most between the first and the last of a Site's snapshots, with their
// count in each snapshot: the line chart of the Insights window.
struct AuctionSeries {
  std::string auction;
  std::string link;
  std::vector<std::optional<long>> counts;  // one per time, none where not listed or without a number
};

struct AuctionHistory {
  sites::Site site = sites::Site::USA;
  std::vector<std::string> times;     // every snapshot's, oldest first; none with fewer than two
  std::vector<AuctionSeries> series;  // largest growth first; only those that grew
};

struct KeywordPlace {
  std::string keyword;
  long position = 0;
};

struct KeywordMove {
  std::string keyword;
  long from = 0;    // its position in the earlier list
  long to = 0;      // in the later one
  long change = 0;  // from - to: a climb is positive
};

struct KeywordTrend {
  sites::Site site = sites::Site::USA;
  std::optional<std::string> from;    // the earlier snapshot's time; none with fewer than two
  std::optional<std::string> to;      // the later one's; none without snapshots
  std::vector<KeywordPlace> entered;  // in the later list only, by its position there
  std::vector<KeywordPlace> left;     // in the earlier list only, by its position there
  std::vector<KeywordMove> moves;     // in both at other positions: largest climb first
};

// The Top 100 lists compared, positions counting from 1; a keyword listed twice counts where it is
// first.
void CompareKeywords(std::span<const std::string> earlier, std::span<const std::string> later, KeywordTrend& trend);

// One recording of a query.
struct QueryPoint {
  std::int64_t snapshot = 0;
  std::string time;
  sites::Site site = sites::Site::USA;
  std::int64_t rows = 0;
  std::map<insights::Currency, double> medians;  // median price of each currency that priced a row
  std::optional<double> meanBids;                // none when its statistics cannot be read
};

struct QueryTrend {
  std::string query;                 // the query file's name
  std::vector<QueryPoint> points;    // oldest first
  std::optional<std::string> since;  // the time of the recording before the last; none with fewer than two
  // The last recording's rows whose item link the one before did not have, in its order, in the
  // columns of insights::ColumnsOf(ListKind::Query).
  std::vector<std::vector<insights::Cell>> newItems;
};

}  // namespace gavelscope::store
