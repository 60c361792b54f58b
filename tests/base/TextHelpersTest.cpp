// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "base/TextHelpers.h"

#include <gtest/gtest.h>

namespace gavelscope::base {
namespace {

struct FindCase {
  const char* name;
  std::string_view text;
  std::string_view needle;
  int from;
  int expected;
};

void PrintTo(const FindCase& c, std::ostream* os) {
  *os << c.name;
}

class FindRules : public ::testing::TestWithParam<FindCase> {};

TEST_P(FindRules, ReturnsFirstIndexAtOrAfterFrom) {
  const FindCase& c = GetParam();
  EXPECT_EQ(Find(c.text, c.needle, c.from), c.expected);
}

INSTANTIATE_TEST_SUITE_P(TextHelpers, FindRules,
                         ::testing::Values(FindCase{"FromStart", "abcabc", "bc", 0, 1},
                                           FindCase{"FromMiddle", "abcabc", "bc", 2, 4},
                                           FindCase{"NotFound", "abcabc", "x", 0, -1},
                                           FindCase{"FromMinusOneFindsNothing", "abcabc", "a", -1, -1},
                                           FindCase{"FromLengthFindsNothing", "abcabc", "c", 6, -1},
                                           FindCase{"FromBeyondLength", "abc", "", 4, -1},
                                           FindCase{"EmptyNeedleAtLength", "abc", "", 3, 3}),
                         [](const auto& info) { return std::string(info.param.name); });

struct ExtractCase {
  const char* name;
  int a;
  int b;
  std::string_view expected;
};

void PrintTo(const ExtractCase& c, std::ostream* os) {
  *os << c.name;
}

class ExtractBetweenRules : public ::testing::TestWithParam<ExtractCase> {};

TEST_P(ExtractBetweenRules, TakesFirstBThenLastBMinusA) {
  const ExtractCase& c = GetParam();
  EXPECT_EQ(ExtractBetween("0123456789", c.a, c.b), c.expected);
}

INSTANTIATE_TEST_SUITE_P(TextHelpers, ExtractBetweenRules,
                         ::testing::Values(ExtractCase{"Inside", 2, 5, "234"}, ExtractCase{"BMinusOne", 3, -1, ""},
                                           ExtractCase{"BMinusOneANegative", -5, -1, ""},
                                           ExtractCase{"ANegativeActsAsZero", -1, 3, "012"},
                                           ExtractCase{"AEqualsB", 4, 4, ""}, ExtractCase{"AAfterB", 6, 4, ""},
                                           ExtractCase{"WholeText", 0, 10, "0123456789"},
                                           ExtractCase{"BBeyondEndKeepsLastBMinusA", 8, 12, "6789"},
                                           ExtractCase{"FarBeyondEnd", 0, 100, "0123456789"},
                                           ExtractCase{"BothBeyondEnd", 11, 13, "89"}),
                         [](const auto& info) { return std::string(info.param.name); });

struct LastIndexCase {
  const char* name;
  std::string_view text;
  std::string_view needle;
  int pos;
  int expected;
};

void PrintTo(const LastIndexCase& c, std::ostream* os) {
  *os << c.name;
}

class LastIndexOfCharBeforeRules : public ::testing::TestWithParam<LastIndexCase> {};

TEST_P(LastIndexOfCharBeforeRules, SearchesFirstNeedleCharacterBeforeLimit) {
  const LastIndexCase& c = GetParam();
  EXPECT_EQ(LastIndexOfCharBefore(c.text, c.needle, c.pos), c.expected);
}

INSTANTIATE_TEST_SUITE_P(TextHelpers, LastIndexOfCharBeforeRules,
                         ::testing::Values(LastIndexCase{"LastBeforePos", "<a><b>x</b>", "<b>", 6, 3},
                                           LastIndexCase{"OnlyFirstCharacterCounts", "<i>text", "<b>", 5, 0},
                                           LastIndexCase{"CharacterAtPosIsNotSeen", "ab<", "<", 2, -1},
                                           LastIndexCase{"PosZeroSearchesWholeText", "ab<cd<e", "<", 0, 5},
                                           LastIndexCase{"PosMinusOneSkipsLastCharacter", "a<b<", "<", -1, 1},
                                           LastIndexCase{"PosAtLengthSkipsLastCharacter", "a<b<", "<", 4, 1},
                                           LastIndexCase{"PosBeyondLength", "a<b<", "<", 40, 1},
                                           LastIndexCase{"NoOccurrence", "abcdef", "<", 4, -1},
                                           LastIndexCase{"OneCharacterTextSearchedWhole", "<", "<", -1, 0}),
                         [](const auto& info) { return std::string(info.param.name); });

struct ReplaceAllCase {
  const char* name;
  std::string_view text;
  std::string_view from;
  std::string_view to;
  std::string_view expected;
};

void PrintTo(const ReplaceAllCase& c, std::ostream* os) {
  *os << c.name;
}

class ReplaceAllRules : public ::testing::TestWithParam<ReplaceAllCase> {};

TEST_P(ReplaceAllRules, ReplacesLeftToRightWithoutRescanning) {
  const ReplaceAllCase& c = GetParam();
  std::string text(c.text);
  ReplaceAll(text, c.from, c.to);
  EXPECT_EQ(text, c.expected);
}

INSTANTIATE_TEST_SUITE_P(TextHelpers, ReplaceAllRules,
                         ::testing::Values(ReplaceAllCase{"ShorterInPlace", "a&amp;b&amp;&amp;c", "&amp;", "&",
                                                          "a&b&&c"},
                                           ReplaceAllCase{"RemovedAtBothEnds", "</B>$5</B>", "</B>", "", "$5"},
                                           ReplaceAllCase{"SameLength", "1-2--3", "-", "0", "102003"},
                                           ReplaceAllCase{"ReplacedTextNotRescanned", "aaaa", "aa", "a", "aa"},
                                           ReplaceAllCase{"Longer", "x.com/y.com", ".com", ".co.uk", "x.co.uk/y.co.uk"},
                                           ReplaceAllCase{"Absent", "plain", "&amp;", "&", "plain"},
                                           ReplaceAllCase{"WholeText", "&amp;", "&amp;", "", ""},
                                           ReplaceAllCase{"EmptyNeedleChangesNothing", "abc", "", "x", "abc"}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(DecodeEntities, ReplacesTheFixedListInOrder) {
  std::string text = "&#34;Tom&#39;s&#38;Jerry&quot; <b>big</b> de<wbr>al</wbr> &amp; more";
  DecodeEntities(text);
  EXPECT_EQ(text, "\"Tom's&Jerry\" big deal & more");
}

TEST(DecodeEntities, AmpersandEntityBeforeNumericReferenceYieldsTheReference) {
  std::string text = "Rock &amp;#39;n&amp;#39; Roll";
  DecodeEntities(text);
  EXPECT_EQ(text, "Rock &#39;n&#39; Roll");
}

TEST(DecodeEntities, TagsWithoutAnAmpersandAreStillStripped) {
  std::string text = "<b>NEW</b> Lamp";
  DecodeEntities(text);
  EXPECT_EQ(text, "NEW Lamp");
}

TEST(DecodeEntities, LeavesOtherEntitiesAndTagsInPlace) {
  std::string text = "<i>a</i> &lt;&gt;&nbsp; <B>caps</B>";
  DecodeEntities(text);
  EXPECT_EQ(text, "<i>a</i> &lt;&gt;&nbsp; <B>caps</B>");
}

TEST(ContainsNoCase, MatchesAcrossCase) {
  EXPECT_TRUE(ContainsNoCase("Vintage LEGO Sets", "lego"));
  EXPECT_TRUE(ContainsNoCase("abc", ""));
  EXPECT_FALSE(ContainsNoCase("Vintage", "vintages"));
  // Single-byte upper-casing leaves bytes above 127 as they are.
  EXPECT_TRUE(
      ContainsNoCase("\xA3"
                     "5 Caf\xE9",
                     "CAF\xE9"));
  EXPECT_FALSE(ContainsNoCase("caf\xE9", "CAF\xC9"));
}

}  // namespace
}  // namespace gavelscope::base
