// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "insights/Statistics.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include "base/TextHelpers.h"

namespace gavelscope::insights {

namespace {

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

// Digits in groups of three after the first comma ("1,234"), or plain ("1234"); then optionally a
// point and at least one digit. Anything after that, or a stray comma, and the text is no amount:
// "5,00" is a euro price, not five hundred.
std::optional<double> ReadAmount(std::string_view text) {
  std::string digits;
  std::size_t i = 0;
  std::size_t group = 0;
  bool grouped = false;
  for (; i < text.size(); ++i) {
    if (IsDigit(text[i])) {
      digits += text[i];
      ++group;
    } else if (text[i] == ',' && group > 0 && (grouped ? group == 3 : group <= 3)) {
      grouped = true;
      group = 0;
    } else {
      break;
    }
  }
  if (digits.empty() || (grouped && group != 3)) return std::nullopt;
  if (i < text.size() && text[i] == '.') {
    const std::size_t point = i++;
    while (i < text.size() && IsDigit(text[i])) ++i;
    if (i == point + 1) return std::nullopt;
    digits += text.substr(point, i - point);
  }
  if (i != text.size()) return std::nullopt;
  double amount = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), amount);
  if (error != std::errc() || end != digits.data() + digits.size() || !std::isfinite(amount)) return std::nullopt;
  return amount;
}

// The histogram of sorted, non-negative amounts. The edges grow by one factor from the smallest
// positive amount to the largest; a 0 has no logarithm, so it falls in the first bucket, which then
// starts at 0.
std::vector<HistogramBucket> Histogram(const std::vector<double>& sorted) {
  const double min = sorted.front();
  const double max = sorted.back();
  if (min == max) return {HistogramBucket{min, max, static_cast<long>(sorted.size())}};
  const auto firstPositive = std::upper_bound(sorted.begin(), sorted.end(), 0.0);
  // Only a caller's own figures can be all at or below 0 and unequal; no logarithm spans them.
  if (firstPositive == sorted.end()) return {HistogramBucket{min, max, static_cast<long>(sorted.size())}};
  const double low = *firstPositive;
  // Through the logarithms, so that no quotient of extreme amounts overflows.
  const double logLow = std::log(low);
  const double step = (std::log(max) - logLow) / kHistogramBuckets;
  std::vector<double> edges(kHistogramBuckets + 1);
  edges.front() = min;
  edges.back() = max;
  for (int k = 1; k < kHistogramBuckets; ++k) {
    edges[static_cast<std::size_t>(k)] =
        std::clamp(std::exp(logLow + step * k), edges[static_cast<std::size_t>(k) - 1], max);
  }
  std::vector<HistogramBucket> buckets;
  for (std::size_t k = 0; k < kHistogramBuckets; ++k) buckets.push_back(HistogramBucket{edges[k], edges[k + 1], 0});
  for (const double amount : sorted) {
    // The inner edges at or below the amount say its bucket; max lies on or above all of them.
    const auto inner = std::upper_bound(edges.begin() + 1, edges.end() - 1, amount);
    ++buckets[static_cast<std::size_t>(inner - (edges.begin() + 1))].count;
  }
  return buckets;
}

// The mean by running update: a sum of many large amounts could overflow where their mean cannot.
double Mean(const std::vector<double>& values) {
  double mean = 0;
  std::size_t n = 0;
  for (const double value : values) mean += (value - mean) / static_cast<double>(++n);
  return mean;
}

}  // namespace

std::string_view CurrencyCode(Currency currency) {
  return currency == Currency::USD ? "USD" : "GBP";
}

std::optional<Money> ReadPrice(std::string_view priceText, sites::Site site) {
  const std::string_view text = base::TrimWhiteSpace(priceText);
  const bool usa = site == sites::Site::USA;
  std::size_t mark = 0;
  if (usa && text.starts_with('$')) {
    mark = 1;
  } else if (!usa && text.starts_with('\xA3')) {
    mark = 1;
  } else if (!usa && text.starts_with("GBP")) {
    mark = 3;
  } else {
    return std::nullopt;
  }
  const std::optional<double> amount = ReadAmount(base::TrimWhiteSpace(text.substr(mark)));
  if (!amount) return std::nullopt;
  return Money{*amount, usa ? Currency::USD : Currency::GBP};
}

std::optional<long> ReadCount(std::string_view countText) {
  const std::string_view text = base::TrimWhiteSpace(countText);
  long count = 0;
  bool anyDigit = false;
  for (const char c : text) {
    if (c == ',') continue;
    if (!IsDigit(c)) break;
    anyDigit = true;
    if (count > (std::numeric_limits<long>::max() - (c - '0')) / 10) return std::nullopt;
    count = count * 10 + (c - '0');
  }
  if (!anyDigit) return std::nullopt;
  return count;
}

long ReadBids(std::string_view bidsText) {
  long bids = 0;
  for (const char c : base::TrimWhiteSpace(bidsText)) {
    if (!IsDigit(c)) break;
    // A count beyond any real auction's stays at the largest number rather than wrapping round.
    if (bids > (std::numeric_limits<long>::max() - (c - '0')) / 10) return std::numeric_limits<long>::max();
    bids = bids * 10 + (c - '0');
  }
  return bids;
}

sites::Site HistorySiteOf(const hotitems::CHotItemRecord& record) {
  return hotitems::IsSiteUK(record) || record.GetPrice().find('\xA3') != std::string::npos ? sites::Site::UK
                                                                                           : sites::Site::USA;
}

ItemFigures FiguresOf(const hotitems::CHotItemRecord& record, sites::Site site) {
  return ItemFigures{ReadPrice(record.GetPrice(), site), ReadBids(record.GetBids())};
}

double Quantile(std::span<const double> sorted, double p) {
  if (sorted.empty()) return 0;
  const double rank = std::clamp(p, 0.0, 1.0) * static_cast<double>(sorted.size() - 1);
  const auto below = static_cast<std::size_t>(std::floor(rank));
  const std::size_t above = std::min(below + 1, sorted.size() - 1);
  return sorted[below] + (rank - static_cast<double>(below)) * (sorted[above] - sorted[below]);
}

ListStatistics Summarise(std::span<const ItemFigures> items) {
  ListStatistics statistics;
  statistics.count = static_cast<long>(items.size());
  std::map<Currency, std::vector<double>> amounts;
  std::vector<double> bids;
  for (const ItemFigures& item : items) {
    if (item.price) amounts[item.price->currency].push_back(item.price->amount);
    bids.push_back(static_cast<double>(item.bids));
    if (item.bids >= 1) ++statistics.withBids;
    statistics.bids.max = std::max(statistics.bids.max, item.bids);
  }
  for (auto& [currency, values] : amounts) {
    std::sort(values.begin(), values.end());
    PriceSummary& summary = statistics.currencies[currency];
    summary.count = static_cast<long>(values.size());
    summary.min = values.front();
    summary.q1 = Quantile(values, 0.25);
    summary.median = Quantile(values, 0.5);
    summary.q3 = Quantile(values, 0.75);
    summary.max = values.back();
    summary.mean = Mean(values);
    summary.histogram = Histogram(values);
  }
  std::sort(bids.begin(), bids.end());
  statistics.bids.median = Quantile(bids, 0.5);
  statistics.bids.mean = Mean(bids);
  return statistics;
}

std::vector<ItemFigures> HistoryFigures(std::span<const std::shared_ptr<const hotitems::CHotItemRecord>> rows) {
  std::vector<ItemFigures> figures;
  figures.reserve(rows.size());
  for (const auto& row : rows) figures.push_back(row ? FiguresOf(*row, HistorySiteOf(*row)) : ItemFigures{});
  return figures;
}

std::vector<ItemFigures> QueryFigures(std::span<const std::shared_ptr<const hotitems::CHotItemRecord>> rows,
                                      sites::Site site) {
  std::vector<ItemFigures> figures;
  figures.reserve(rows.size());
  for (const auto& row : rows) figures.push_back(row ? FiguresOf(*row, site) : ItemFigures{});
  return figures;
}

}  // namespace gavelscope::insights
