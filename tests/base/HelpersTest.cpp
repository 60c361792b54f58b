// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include <gtest/gtest.h>

#include <atomic>
#include <tuple>

#include "base/Archive.h"
#include "base/ReadinessEvent.h"
#include "base/TextHelpers.h"
#include "base/ThreadOwner.h"

namespace gavelscope::base {
namespace {

TEST(TextHelpers, FindGivesTheFirstIndexAtOrAfterFromAndNothingFromOutsideTheText) {
  const std::tuple<std::string_view, std::string_view, int, int> rows[] = {
      {"abcabc", "bc", 2, 4}, {"abcabc", "x", 0, -1}, {"abcabc", "a", -1, -1}, {"abc", "", 4, -1}, {"abc", "", 3, 3}};
  for (const auto& [text, needle, from, expected] : rows)
    EXPECT_EQ(Find(text, needle, from), expected) << text << " " << from;
}

TEST(TextHelpers, ExtractBetweenTakesTheFirstBThenTheLastBMinusA) {
  const std::tuple<int, int, std::string_view> rows[] = {{2, 5, "234"}, {3, -1, ""},     {-1, 3, "012"},
                                                         {6, 4, ""},    {8, 12, "6789"}, {11, 13, "89"}};
  for (const auto& [a, b, expected] : rows) EXPECT_EQ(ExtractBetween("0123456789", a, b), expected) << a << " " << b;
}

TEST(TextHelpers, LastIndexOfCharBeforeSeeksTheNeedlesFirstCharacterBeforeTheLimit) {
  const std::tuple<std::string_view, std::string_view, int, int> rows[] = {
      {"<i>text", "<b>", 5, 0}, {"ab<", "<", 2, -1},    {"ab<cd<e", "<", 0, 5}, {"a<b<", "<", -1, 1},
      {"a<b<", "<", 4, 1},      {"abcdef", "<", 4, -1}, {"<", "<", -1, 0}};
  for (const auto& [text, needle, pos, expected] : rows)
    EXPECT_EQ(LastIndexOfCharBefore(text, needle, pos), expected) << text << " " << pos;
}

TEST(TextHelpers, ReplaceAllGoesLeftToRightWithoutRescanning) {
  const std::tuple<std::string, std::string_view, std::string_view, std::string_view> rows[] = {
      {"a&amp;b&amp;&amp;c", "&amp;", "&", "a&b&&c"},
      {"</B>$5</B>", "</B>", "", "$5"},
      {"aaaa", "aa", "a", "aa"},
      {"x.com/y.com", ".com", ".co.uk", "x.co.uk/y.co.uk"},
      {"abc", "", "x", "abc"}};
  for (auto [text, from, to, expected] : rows) {
    ReplaceAll(text, from, to);
    EXPECT_EQ(text, expected);
  }
}

TEST(TextHelpers, DecodeEntitiesReplacesTheFixedListInOrderAndNothingElse) {
  const std::pair<std::string, std::string_view> rows[] = {
      {"&#34;Tom&#39;s&#38;Jerry&quot; <b>big</b> de<wbr>al</wbr> &amp; more", "\"Tom's&Jerry\" big deal & more"},
      // "&amp;" goes after the numeric references, so what it yields stays a reference.
      {"Rock &amp;#39;n&amp;#39; Roll", "Rock &#39;n&#39; Roll"},
      {"<b>NEW</b> Lamp", "NEW Lamp"},
      {"<i>a</i> &lt;&gt;&nbsp; <B>caps</B>", "<i>a</i> &lt;&gt;&nbsp; <B>caps</B>"}};
  for (auto [text, expected] : rows) {
    DecodeEntities(text);
    EXPECT_EQ(text, expected);
  }
}

TEST(TextHelpers, ContainsNoCaseUpperCasesOnlyAscii) {
  EXPECT_TRUE(ContainsNoCase("Vintage LEGO Sets", "lego"));
  EXPECT_TRUE(ContainsNoCase("abc", ""));
  EXPECT_FALSE(ContainsNoCase("Vintage", "vintages"));
  // Single-byte upper-casing leaves bytes above 127 as they are.
  EXPECT_TRUE(ContainsNoCase("\xA3\x35 Caf\xE9", "CAF\xE9"));
  EXPECT_FALSE(ContainsNoCase("caf\xE9", "CAF\xC9"));
}

TEST(Archive, WideStringsLoadAsSingleBytes) {
  CArchive archive = CArchive::ForLoading(std::string("\xFF\xFE\xFF\x03\x41\0\xA3\0\x3A\x26", 10));
  std::string text;
  ASSERT_TRUE(archive.ReadString(text));
  EXPECT_EQ(text, "A\xA3?");
}

TEST(Archive, TruncatedInputFailsWithoutReadingPastIt) {
  for (std::string bytes : {std::string("\x05\x61\x62"), std::string("\xFF\x10"),
                            std::string("\xFF\xFF\xFF\xFF\xFF\xFF\x7F"), std::string("\xFF\xFE\xFF\x05\x61\0", 6)}) {
    CArchive archive = CArchive::ForLoading(bytes);
    std::string text;
    EXPECT_FALSE(archive.ReadString(text));
    EXPECT_TRUE(archive.failed());
    std::int32_t number = 0;
    EXPECT_FALSE(archive.ReadInt32(number));
  }
}

TEST(ThreadOwner, StopWakesWaitersAndJoinsThem) {
  ReadinessEvent never;
  std::atomic<int> woken{0};
  ThreadOwner owner;
  for (int i = 0; i < 3; ++i) {
    ASSERT_TRUE(owner.Start([&](std::stop_token stop) {
      if (!never.Wait(stop)) ++woken;
    }));
  }
  owner.StopAndJoinAll();
  EXPECT_EQ(woken.load(), 3);
  EXPECT_EQ(owner.RunningCount(), 0U);
  // Nothing new starts once the owner has shut down.
  EXPECT_FALSE(owner.Start([](std::stop_token) {}));
}

}  // namespace
}  // namespace gavelscope::base
