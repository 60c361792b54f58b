// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <span>
#include <string>

#include "store/Trends.h"

namespace gavelscope::store {

// How the store's answers are written: a layout to read, a CSV table (RFC 4180, as the lists' CSV) or
// one JSON object. Absent values are empty CSV fields and JSON nulls; times are the snapshots' own.
enum class Format { Text, Csv, Json };

// `snapshots`:
//   JSON {"snapshots": [{"id", "time", "site", "auctions", "keywords", "queries"}, ...]}, the last
//   three the number of rows of each kind; CSV id,time,site,auctions,keywords,queries.
std::string Render(std::span<const SnapshotInfo> snapshots, Format format);

// `trends auctions`:
//   JSON {"site", "snapshots", "from", "to", "rows": [{"auction", "link", "first", "last", "change",
//   "percent", "status"}, ...]}; CSV auction,link,first,last,change,percent,status.
std::string Render(const AuctionTrend& trend, Format format);

// `trends keywords`:
//   JSON {"site", "from", "to", "entered": [{"keyword", "position"}], "left": [{"keyword",
//   "position"}], "moves": [{"keyword", "from", "to", "change"}]}; CSV status,keyword,from,to,change
//   with status entered (no from), left (no to) or moved.
std::string Render(const KeywordTrend& trend, Format format);

// `trends query`:
//   JSON {"query", "snapshots": [{"snapshot", "time", "site", "rows", "median": {"USD": ..., "GBP":
//   ...}, "mean_bids"}], "since", "new_items": [{the query list's columns}, ...]}, "median" holding
//   the currencies that priced a row; CSV snapshot,time,site,rows,median_usd,median_gbp,mean_bids,
//   one record per recording (the new items are in the text and JSON forms).
std::string Render(const QueryTrend& trend, Format format);

}  // namespace gavelscope::store
