// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <string>

#include "insights/ListTable.h"
#include "insights/Statistics.h"

namespace gavelscope::insights {

// RFC 4180: a header row of the column names, then one record a row; CR LF after every record; a
// field holding a comma, a quote, CR or LF is quoted, with its quotes doubled; an absent value is
// an empty field.
std::string CsvOf(const ListTable& table);
// {"list": ..., "site": ..., ["query": ...,] "rows": [{column: value, ...}, ...]}, one row a line,
// columns in order, absent values null.
std::string JsonOf(const ListTable& table);

// A list's statistics for reading: the counts, the bids, then each currency's figures with its
// histogram drawn in bars.
std::string StatisticsText(const ListStatistics& statistics);
// The same as one table of statistic,currency,from,to,value records (RFC 4180 as above): count,
// with_bids and the bids_* figures without a currency; min, q1, median, q3, max, mean and count per
// currency; a "bucket" record per histogram bucket with its edges and its count as the value.
std::string StatisticsCsv(const ListStatistics& statistics);
// {"count", "with_bids", "currencies": {"USD": {"min", "q1", "median", "q3", "max", "mean",
// "histogram": [{"from", "to", "count"}, ...]}, ...}, "bids": {"median", "mean", "max"}}.
std::string StatisticsJson(const ListStatistics& statistics);

}  // namespace gavelscope::insights
