// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "hotitems/ItemCompare.h"

#include <gtest/gtest.h>

#include <clocale>

namespace gavelscope::hotitems {
namespace {

TEST(ItemCompare, NumberTextsAreDigitsPlusSignsAndALeadingMinus) {
  EXPECT_TRUE(IsNumberText("1984"));
  EXPECT_TRUE(IsNumberText("+5+"));
  EXPECT_TRUE(IsNumberText("-5"));
  EXPECT_FALSE(IsNumberText("-"));
  EXPECT_FALSE(IsNumberText("5-"));
  EXPECT_FALSE(IsNumberText("12.50"));
  EXPECT_FALSE(IsNumberText(""));
}

TEST(ItemCompare, NumbersAreReadFromTheStart) {
  EXPECT_EQ(LeadingNumber(" 12.5abc"), 12.5);
  EXPECT_EQ(LeadingNumber("-3"), -3);
  EXPECT_EQ(LeadingNumber("abc"), 0);
  EXPECT_EQ(CompareNumber("950.00", "1200.00"), -1);
}

TEST(ItemCompare, TimeLeftInSeconds) {
  EXPECT_EQ(TimeLeftSeconds("2D 05H 30M"), 192600);
  EXPECT_EQ(TimeLeftSeconds("2H 30M"), 9000);
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

TEST(ItemCompare, DatesFollowTheLocalesDayAndMonthOrder) {
  EXPECT_EQ(ParseDateText("07/03/2005", DateOrder::DayFirst), ParseDateText("2005-03-07", DateOrder::MonthFirst));
  EXPECT_EQ(ParseDateText("07/03/2005", DateOrder::MonthFirst), ParseDateText("2005-07-03", DateOrder::DayFirst));
  EXPECT_EQ(CompareDate("07/03/2005", "06/04/2005", DateOrder::DayFirst), -1);
  EXPECT_EQ(CompareDate("07/03/2005", "06/04/2005", DateOrder::MonthFirst), 1);
  EXPECT_EQ(ParseDateText("29.02.2004", DateOrder::DayFirst).has_value(), true);
  for (const char* rejected : {"29/02/2005", "13/13/2005", "07/03", "07/03/2005 x", "07/03-2005", "soon", ""}) {
    EXPECT_FALSE(IsDateText(rejected, DateOrder::DayFirst)) << rejected;
  }
  // A text the locale rejects compares as text with anything.
  EXPECT_EQ(CompareDate("soon", "07/03/2005", DateOrder::DayFirst), 1);
}

TEST(ItemCompare, TheCLocaleWritesMonthFirst) {
  std::setlocale(LC_TIME, "C");
  EXPECT_EQ(DateOrderFromLocale(), DateOrder::MonthFirst);
}

}  // namespace
}  // namespace gavelscope::hotitems
