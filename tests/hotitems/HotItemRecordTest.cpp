// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "hotitems/HotItemRecord.h"

#include <gtest/gtest.h>

namespace gavelscope::hotitems {
namespace {

CHotItemRecord WithBids(const char* bids) {
  CHotItemRecord record;
  record.SetBids(bids);
  return record;
}

TEST(HistoryLine, ParsesTheFiveFieldsAndTheSite) {
  const CHotItemRecord record = ParseHistoryLine("L~|~07/03/2005~|~T~|~GBP 5.00~|~31~|~");
  EXPECT_EQ(record.GetItemLink(), "L");
  EXPECT_EQ(record.GetEnding(), "07/03/2005");
  EXPECT_EQ(record.GetTitle(), "T");
  EXPECT_EQ(record.GetPrice(), "GBP 5.00");
  EXPECT_EQ(record.GetBids(), "31");
  EXPECT_TRUE(IsSiteUK(record));
  EXPECT_FALSE(IsSiteUK(ParseHistoryLine("L~|~D~|~T~|~$5.00 gbp~|~31~|~")));
}

TEST(HistoryLine, TrimsTheDateAndEmptiesFieldsWithoutSeparator) {
  EXPECT_EQ(ParseHistoryLine("L~|~ \t07/03/2005 \r~|~T~|~P~|~B~|~").GetEnding(), "07/03/2005");
  const CHotItemRecord cut = ParseHistoryLine("L~|~D~|~T~|~P~|~B");
  EXPECT_EQ(cut.GetPrice(), "P");
  EXPECT_EQ(cut.GetBids(), "");
  // Once a separator is missing, every later field is empty too.
  const CHotItemRecord early = ParseHistoryLine("A~|~B~|~C");
  EXPECT_EQ(early.GetTitle(), "");
  EXPECT_EQ(early.GetPrice(), "");
  EXPECT_EQ(ParseHistoryLine("").GetItemLink(), "");
}

TEST(HistoryLine, OnlyMoreThanThirtyBidsAreKept) {
  EXPECT_TRUE(IsHistoryWorthy(WithBids("31")));
  EXPECT_FALSE(IsHistoryWorthy(WithBids("30")));
  EXPECT_FALSE(IsHistoryWorthy(WithBids("-")));
  EXPECT_FALSE(IsHistoryWorthy(WithBids("")));
}

TEST(HistoryLine, FormatsDayFirstAndRoundTrips) {
  CHotItemRecord record = ParseHistoryLine("L~|~x~|~a ~ b | c~|~$23.50~|~41~|~");
  const std::string line = FormatHistoryLine(record, {7, 3, 2005});
  EXPECT_EQ(line, "L~|~07/03/2005~|~a ~ b | c~|~$23.50~|~41~|~\r\n");
  EXPECT_EQ(ParseHistoryLine(line.substr(0, line.size() - 2)).GetTitle(), "a ~ b | c");
}

}  // namespace
}  // namespace gavelscope::hotitems
