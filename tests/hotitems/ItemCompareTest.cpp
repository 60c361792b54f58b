// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
//
// The texts of an item: its history line, and how its cells compare.
#include "hotitems/ItemCompare.h"

#include <gtest/gtest.h>

#include <clocale>

#include "hotitems/HotItemRecord.h"

namespace gavelscope::hotitems {
namespace {

TEST(ItemCompare, NumberTextsAreDigitsPlusSignsAndALeadingMinusAndNumbersAreReadFromTheStart) {
  for (const char* text : {"1984", "+5+", "-5"}) EXPECT_TRUE(IsNumberText(text)) << text;
  for (const char* text : {"-", "5-", "12.50", ""}) EXPECT_FALSE(IsNumberText(text)) << text;
  EXPECT_EQ(LeadingNumber(" 12.5abc"), 12.5);
  EXPECT_EQ(LeadingNumber("-3"), -3);
  EXPECT_EQ(LeadingNumber("abc"), 0);
}

TEST(ItemCompare, TimeLeftInSeconds) {
  EXPECT_EQ(TimeLeftSeconds("2D 05H 30M"), 192600);
  EXPECT_EQ(TimeLeftSeconds("1D 2H"), 93600);
  EXPECT_EQ(TimeLeftSeconds("45M"), 2700);
  EXPECT_EQ(TimeLeftSeconds(""), 0);
}

// Found by fuzzing the listing scan: a page's time left of "777777777777777d" overflowed the
// query list's sort key. Counts are held within a billion, so such rows sort after every real one.
TEST(ItemCompare, TimeLeftWithHugeCountsStaysInRange) {
  EXPECT_EQ(TimeLeftSeconds("777777777777777D"), 1'000'000'000L * 86400);
  EXPECT_EQ(TimeLeftSeconds("1D 99999999999999999999H 99999999999999999999M"), 86400 + 1'000'000'000L * (3600 + 60));
  EXPECT_EQ(TimeLeftSeconds("-99999999999999999999D"), -1'000'000'000L * 86400);
  EXPECT_GT(TimeLeftSeconds("777777777777777D"), TimeLeftSeconds("9D 23H 59M"));
}

TEST(ItemCompare, DatesFollowTheLocalesDayAndMonthOrderAndTheCLocaleWritesMonthFirst) {
  EXPECT_EQ(ParseDateText("07/03/2005", DateOrder::DayFirst), ParseDateText("2005-03-07", DateOrder::MonthFirst));
  EXPECT_EQ(ParseDateText("07/03/2005", DateOrder::MonthFirst), ParseDateText("2005-07-03", DateOrder::DayFirst));
  EXPECT_EQ(ParseDateText("29.02.2004", DateOrder::DayFirst),
            ParseDateText("2004-02-28", DateOrder::DayFirst).value() + 1);
  for (const char* rejected : {"29/02/2005", "13/13/2005", "07/03", "07/03/2005 x", "07/03-2005", "soon", ""}) {
    EXPECT_FALSE(ParseDateText(rejected, DateOrder::DayFirst)) << rejected;
  }
  std::setlocale(LC_TIME, "C");
  EXPECT_EQ(DateOrderFromLocale(), DateOrder::MonthFirst);
}

TEST(HistoryLine, ParsesFiveFieldsEachEndedByItsSeparatorAndTrimsTheDate) {
  const std::pair<const char*, std::vector<std::string>> lines[] = {
      {"L~|~ \t07/03/2005 \r~|~T~|~GBP 5.00~|~31~|~", {"L", "07/03/2005", "T", "GBP 5.00", "31"}},
      // Once a separator is missing, that field and every later one are empty.
      {"L~|~D~|~T~|~P~|~B", {"L", "D", "T", "P", ""}},
      {"A~|~B~|~C", {"A", "B", "", "", ""}},
      {"", {"", "", "", "", ""}}};
  for (const auto& [line, fields] : lines) {
    const CHotItemRecord r = ParseHistoryLine(line);
    EXPECT_EQ((std::vector{r.GetItemLink(), r.GetEnding(), r.GetTitle(), r.GetPrice(), r.GetBids()}), fields) << line;
  }
}

TEST(HistoryLine, PoundsMeanTheUKSiteAndOnlyMoreThanThirtyBidsAreKept) {
  EXPECT_TRUE(IsSiteUK(ParseHistoryLine("L~|~D~|~T~|~GBP 5.00~|~31~|~")));
  EXPECT_FALSE(IsSiteUK(ParseHistoryLine("L~|~D~|~T~|~$5.00 gbp~|~31~|~")));
  const std::pair<const char*, bool> rows[] = {{"31", true}, {"30", false}, {"-", false}, {"", false}};
  for (auto [bids, kept] : rows) {
    EXPECT_EQ(IsHistoryWorthy(ParseHistoryLine(std::string("L~|~D~|~T~|~P~|~") + bids + "~|~")), kept) << bids;
  }
}

TEST(HistoryLine, FormatsDayFirstAndRoundTrips) {
  const std::string line = FormatHistoryLine(ParseHistoryLine("L~|~x~|~a ~ b | c~|~$23.50~|~41~|~"), {7, 3, 2005});
  EXPECT_EQ(line, "L~|~07/03/2005~|~a ~ b | c~|~$23.50~|~41~|~\r\n");
  EXPECT_EQ(ParseHistoryLine(line.substr(0, line.size() - 2)).GetTitle(), "a ~ b | c");
}

}  // namespace
}  // namespace gavelscope::hotitems
