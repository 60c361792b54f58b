// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "base/TextHelpers.h"

#include <gtest/gtest.h>

namespace gavelscope::base {
namespace {

TEST(TextHelpers, FindGivesTheFirstIndexAtOrAfterFromAndNothingFromOutsideTheText) {
  const struct {
    std::string_view text, needle;
    int from, expected;
  } rows[] = {
      {"abcabc", "bc", 2, 4}, {"abcabc", "x", 0, -1}, {"abcabc", "a", -1, -1}, {"abc", "", 4, -1}, {"abc", "", 3, 3}};
  for (const auto& row : rows)
    EXPECT_EQ(Find(row.text, row.needle, row.from), row.expected) << row.text << " " << row.from;
}

TEST(TextHelpers, ExtractBetweenTakesTheFirstBThenTheLastBMinusA) {
  const struct {
    int a, b;
    std::string_view expected;
  } rows[] = {{2, 5, "234"}, {3, -1, ""}, {-1, 3, "012"}, {6, 4, ""}, {8, 12, "6789"}, {11, 13, "89"}};
  for (const auto& row : rows)
    EXPECT_EQ(ExtractBetween("0123456789", row.a, row.b), row.expected) << row.a << " " << row.b;
}

TEST(TextHelpers, LastIndexOfCharBeforeSeeksTheNeedlesFirstCharacterBeforeTheLimit) {
  const struct {
    std::string_view text, needle;
    int pos, expected;
  } rows[] = {{"<i>text", "<b>", 5, 0}, {"ab<", "<", 2, -1},    {"ab<cd<e", "<", 0, 5}, {"a<b<", "<", -1, 1},
              {"a<b<", "<", 4, 1},      {"abcdef", "<", 4, -1}, {"<", "<", -1, 0}};
  for (const auto& row : rows)
    EXPECT_EQ(LastIndexOfCharBefore(row.text, row.needle, row.pos), row.expected) << row.text << " " << row.pos;
}

TEST(TextHelpers, ReplaceAllGoesLeftToRightWithoutRescanning) {
  const struct {
    std::string_view text, from, to, expected;
  } rows[] = {{"a&amp;b&amp;&amp;c", "&amp;", "&", "a&b&&c"},
              {"</B>$5</B>", "</B>", "", "$5"},
              {"aaaa", "aa", "a", "aa"},
              {"x.com/y.com", ".com", ".co.uk", "x.co.uk/y.co.uk"},
              {"abc", "", "x", "abc"}};
  for (const auto& row : rows) {
    std::string text(row.text);
    ReplaceAll(text, row.from, row.to);
    EXPECT_EQ(text, row.expected) << row.text;
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

}  // namespace
}  // namespace gavelscope::base
