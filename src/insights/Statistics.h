// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "hotitems/HotItemRecord.h"
#include "sites/SiteProfile.h"

namespace gavelscope::insights {

enum class Currency { USD, GBP };
std::string_view CurrencyCode(Currency currency);  // "USD", "GBP"

// A price as an amount of a currency.
struct Money {
  double amount = 0;
  Currency currency = Currency::USD;
};

// A price cell read by its Site's rules: the USA Site's "$1,234.56" is 1234.56 USD, the UK Site's
// "£12.50" or "GBP 12.50" (Windows-1252 text) 12.5 GBP. Anything else, another currency's price
// among them ("AU $3.00", "EUR 5,00"), has no amount.
std::optional<Money> ReadPrice(std::string_view priceText, sites::Site site);
// An auction count as a number: "25,487" is 25487; nothing when the cell holds no digits.
std::optional<long> ReadCount(std::string_view countText);
// A bid cell as a whole number: its leading digits, "-" (no bids) and text without digits 0.
long ReadBids(std::string_view bidsText);

// One item of a list as the statistics see it.
struct ItemFigures {
  std::optional<Money> price;
  long bids = 0;
};

// The figures of a list's rows: a history row's Site is its own (its price says which), a query's
// rows are all of the query's Site.
ItemFigures FiguresOf(const hotitems::CHotItemRecord& record, sites::Site site);
sites::Site HistorySiteOf(const hotitems::CHotItemRecord& record);

struct HistogramBucket {
  double from = 0;  // lower edge, included
  double to = 0;    // upper edge, included in the last bucket only
  long count = 0;
};

struct PriceSummary {
  long count = 0;  // rows priced in this currency
  double min = 0, q1 = 0, median = 0, q3 = 0, max = 0, mean = 0;
  // 10 buckets whose edges grow by one factor from min to max (all in one bucket of equal
  // edges when every price is the same).
  std::vector<HistogramBucket> histogram;
};

struct BidsSummary {
  double median = 0;
  double mean = 0;
  long max = 0;
};

struct ListStatistics {
  long count = 0;      // rows
  long withBids = 0;   // rows with at least one bid
  std::map<Currency, PriceSummary> currencies;  // only currencies that priced at least one row
  BidsSummary bids;    // over every row
};

inline constexpr int kHistogramBuckets = 10;

// Quantiles by linear interpolation between closest ranks over sorted values: the value at rank
// p * (n - 1), as spreadsheets' QUARTILE.INC and PERCENTILE.INC give it. `sorted` is not empty.
double Quantile(std::span<const double> sorted, double p);

ListStatistics Summarise(std::span<const ItemFigures> items);

// The figures of an item list's rows (an empty row has no price and no bids): a history list's rows
// each by its own Site, a query's by the query's.
std::vector<ItemFigures> HistoryFigures(std::span<const std::shared_ptr<const hotitems::CHotItemRecord>> rows);
std::vector<ItemFigures> QueryFigures(std::span<const std::shared_ptr<const hotitems::CHotItemRecord>> rows,
                                      sites::Site site);

}  // namespace gavelscope::insights
