// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "insights/Statistics.h"

#include <gtest/gtest.h>

#include <climits>
#include <tuple>

namespace gavelscope::insights {
namespace {

using sites::Site;

TEST(Insights, PricesReadOnlyInTheSitesOwnCurrency) {
  const struct {
    std::string text;
    Site site;
    double amount;  // in the Site's own currency
  } read[] = {{"$1,234.56", Site::USA, 1234.56},
              {" \t$12 ", Site::USA, 12},
              {"$0.00", Site::USA, 0},
              {"\xA3" + std::string("12.50"), Site::UK, 12.5},
              {"GBP 1,200.00", Site::UK, 1200}};
  for (const auto& row : read) {
    const std::optional<Money> price = ReadPrice(row.text, row.site);
    ASSERT_TRUE(price) << row.text;
    EXPECT_DOUBLE_EQ(price->amount, row.amount);
    EXPECT_EQ(price->currency, row.site == Site::USA ? Currency::USD : Currency::GBP);
  }
  for (const char* text : {"GBP 1,200.00", "AU $3.00", "C $5.00", "$5,00", "$1,2345", "$12.50 Buy", "$", "$.5"}) {
    EXPECT_EQ(ReadPrice(text, Site::USA), std::nullopt) << text;
  }
  for (const char* text : {"$5.00", "EUR 5,00", ""}) EXPECT_EQ(ReadPrice(text, Site::UK), std::nullopt) << text;
}

TEST(Insights, CountsAndBidsReadAsWholeNumbers) {
  EXPECT_EQ(ReadCount("25,487"), 25487);
  EXPECT_EQ(ReadCount(" 12 "), 12);
  EXPECT_EQ(ReadCount(""), std::nullopt);
  EXPECT_EQ(ReadCount("-"), std::nullopt);
  EXPECT_EQ(ReadCount("99999999999999999999999"), std::nullopt);
  EXPECT_EQ(ReadBids("-"), 0);
  EXPECT_EQ(ReadBids(""), 0);
  EXPECT_EQ(ReadBids("7 bids"), 7);
  EXPECT_EQ(ReadBids("99999999999999999999999"), LONG_MAX);
}

ItemFigures Usd(double amount, long bids) {
  return {Money{amount, Currency::USD}, bids};
}

ItemFigures Gbp(double amount, long bids) {
  return {Money{amount, Currency::GBP}, bids};
}

// Figures worked out by hand: quartiles at rank p * (n - 1), between ranks on a straight line.
TEST(Insights, SummariesMatchFiguresWorkedOutByHand) {
  struct Expected {
    Currency currency;
    long count;
    double min, q1, median, q3, max, mean;
  };
  const struct {
    const char* name;
    std::vector<ItemFigures> items;
    long withBids;
    std::vector<Expected> currencies;
    BidsSummary bids;
  } rows[] = {
      {"one row", {Usd(10, 3)}, 1, {{Currency::USD, 1, 10, 10, 10, 10, 10, 10}}, {3, 3, 3}},
      {"odd count", {Usd(7, 0), Usd(1, 5), Usd(3, 10)}, 2, {{Currency::USD, 3, 1, 2, 3, 5, 7, 11.0 / 3}}, {5, 5, 10}},
      {"even count",
       {Usd(4, 8), Usd(1, 1), Usd(3, 1), Usd(2, 2)},
       4,
       {{Currency::USD, 4, 1, 1.75, 2.5, 3.25, 4, 2.5}},
       {1.5, 3, 8}},
      {"two currencies",
       {Usd(5, 0), Gbp(4, 0), Gbp(2, 0), ItemFigures{std::nullopt, 2}},
       1,
       {{Currency::USD, 1, 5, 5, 5, 5, 5, 5}, {Currency::GBP, 2, 2, 2.5, 3, 3.5, 4, 3}},
       {0, 0.5, 2}},
      {"no priced rows", {ItemFigures{std::nullopt, 0}, ItemFigures{std::nullopt, 0}}, 0, {}, {0, 0, 0}},
      {"no rows", {}, 0, {}, {0, 0, 0}}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const ListStatistics s = Summarise(row.items);
    EXPECT_EQ(s.count, static_cast<long>(row.items.size()));
    EXPECT_EQ(s.withBids, row.withBids);
    ASSERT_EQ(s.currencies.size(), row.currencies.size());
    for (const Expected& e : row.currencies) {
      const PriceSummary& p = s.currencies.at(e.currency);
      EXPECT_EQ(p.count, e.count);
      EXPECT_EQ(std::vector({p.min, p.q1, p.median, p.q3, p.max}), std::vector({e.min, e.q1, e.median, e.q3, e.max}));
      EXPECT_DOUBLE_EQ(p.mean, e.mean);
    }
    EXPECT_EQ(s.bids.median, row.bids.median);
    EXPECT_DOUBLE_EQ(s.bids.mean, row.bids.mean);
    EXPECT_EQ(s.bids.max, row.bids.max);
  }
}

// Edges double from 1 to 1024 (r = 1024^(1/10) = 2); a 0 joins the first bucket, which then starts
// at 0; every price the same makes one bucket of equal edges.
TEST(Insights, HistogramEdgesGrowByOneFactorAndTakeZeroFirst) {
  for (const bool withZero : {false, true}) {
    std::vector<ItemFigures> items{Usd(1, 0), Usd(3, 0), Usd(1024, 0)};
    if (withZero) items.push_back(Usd(0, 0));
    const std::vector<HistogramBucket> buckets = Summarise(items).currencies.at(Currency::USD).histogram;
    ASSERT_EQ(buckets.size(), 10u);
    EXPECT_EQ(buckets.front().from, withZero ? 0.0 : 1.0);
    EXPECT_EQ(buckets.back().to, 1024.0);
    for (std::size_t k = 1; k < buckets.size(); ++k) {
      EXPECT_NEAR(buckets[k].from, 1 << k, 1e-9);
      EXPECT_EQ(buckets[k].from, buckets[k - 1].to);
    }
    std::vector<long> counts;
    for (const HistogramBucket& bucket : buckets) counts.push_back(bucket.count);
    EXPECT_EQ(counts, std::vector<long>({withZero ? 2 : 1, 1, 0, 0, 0, 0, 0, 0, 0, 1}));
  }
  const auto same = Summarise(std::vector{Usd(5, 0), Usd(5, 1)}).currencies.at(Currency::USD).histogram;
  ASSERT_EQ(same.size(), 1u);
  EXPECT_EQ(std::tuple(same[0].from, same[0].to, same[0].count), std::tuple(5.0, 5.0, 2L));
}

}  // namespace
}  // namespace gavelscope::insights
