// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "query/QueryFile.h"

#include <gtest/gtest.h>

#include <optional>

namespace gavelscope::query {
namespace {

using Names = std::vector<std::string>;

std::string Le16(std::uint16_t word) {
  return {static_cast<char>(word & 0xFF), static_cast<char>(word >> 8)};
}

std::string Le32(std::uint32_t value) {
  return Le16(static_cast<std::uint16_t>(value & 0xFFFF)) + Le16(static_cast<std::uint16_t>(value >> 16));
}

std::string Repeat(const std::string& part, int times) {
  std::string all;
  for (int i = 0; i < times; ++i) all += part;
  return all;
}

// A name of fewer than 255 bytes as an archive string.
std::string Name(const std::string& name) {
  return static_cast<char>(name.size()) + name;
}

std::string ClassRecord(std::uint16_t schema, std::string_view name) {
  return Le16(0xFFFF) + Le16(schema) + Le16(static_cast<std::uint16_t>(name.size())) + std::string(name);
}

const std::string kCategoryClass = ClassRecord(4, "CCategoryNameObject");

// A query with nothing chosen and page depth 1, claiming `count` categories: the count, four group
// flags, the keywords, nine test flags, twelve bounds, ascending, four sort flags, the page depth.
std::string EmptyQuery(std::int32_t count, const std::string& keywords = std::string(1, '\0')) {
  return ClassRecord(2, "CMySettings") + Le32(count) + Repeat(Le32(0), 4) + keywords + Repeat(Le32(0), 9) +
         Repeat(Le32(-1), 12) + Le32(1) + Repeat(Le32(0), 4) + Le32(1);
}

CMySettings EmptySettings(const std::string& keywords = "", const Names& categories = {}) {
  CMySettings settings;
  settings.SetPageDepth(1);
  settings.SetKeywords(keywords);
  settings.SetCategories(categories);
  return settings;
}

// What a failed load must leave alone.
const CMySettings kSentinel = EmptySettings("untouched", {"Stamps"});

struct FileCase {
  const char* name;
  std::string bytes;
  // The categories of the query it holds; no value: the load must fail.
  std::optional<Names> categories;
  // Whether saving what it holds writes these very bytes.
  bool saved = false;
  std::string keywords{};
};

void PrintTo(const FileCase& c, std::ostream* os) {
  *os << c.name;
}

class QueryFileBytes : public ::testing::TestWithParam<FileCase> {};

TEST_P(QueryFileBytes, LoadOrFailCleanly) {
  const FileCase& c = GetParam();
  CMySettings loaded = kSentinel;
  std::string error;
  const bool ok = LoadQueryBytes(c.bytes, loaded, error);
  if (!c.categories) {
    EXPECT_FALSE(ok);
    EXPECT_FALSE(error.empty());
    EXPECT_EQ(loaded, kSentinel);
    return;
  }
  ASSERT_TRUE(ok) << error;
  EXPECT_EQ(loaded, EmptySettings(c.keywords, *c.categories));
  EXPECT_TRUE(!c.saved || SaveQueryBytes(loaded) == c.bytes);
}

const std::string kToys = kCategoryClass + Name("Toys");
const std::string kBigTag = Le16(0x7FFF);
const std::string kLongName(65534, 'n');
const std::string kLongCategory = kCategoryClass + "\xFF" + Le16(0xFFFF) + Le32(65534) + kLongName;
const std::optional<Names> kFails;
const std::string k254(254, 'k');
const std::string k255(255, 'k');
const std::string kOdd("\0\xFF", 2);

INSTANTIATE_TEST_SUITE_P(
    QueryFile, QueryFileBytes,
    ::testing::Values(
        // A string's length takes a byte up to 254, then 0xFF and a word, then 0xFF 0xFFFF and a long.
        FileCase{"KeywordsOf254Bytes", EmptyQuery(0, "\xFE" + k254), Names{}, true, k254},
        FileCase{"KeywordsOf255Bytes", EmptyQuery(0, "\xFF" + Le16(255) + k255), Names{}, true, k255},
        FileCase{"KeywordsOf65534Bytes", EmptyQuery(0, "\xFF" + Le16(0xFFFF) + Le32(65534) + kLongName), Names{}, true,
                 kLongName},
        // The categories share one class record; equal names are each written in full.
        FileCase{
            "SavedCategories",
            EmptyQuery(4) + kToys + Le16(0x8003) + Name("") + Le16(0x8003) + Name(kOdd) + Le16(0x8003) + Name("Toys"),
            Names{"Toys", "", kOdd, "Toys"}, true},
        FileCase{"NullIsSkippedAndTakesNoIndex",
                 EmptyQuery(4) + Le16(0) + kToys + Le16(0x8003) + Name("Dolls") + Le16(0x0005),
                 Names{"Toys", "Dolls", "Dolls"}},
        FileCase{
            "LongTags",
            EmptyQuery(4) + kBigTag + Le32(0) + kToys + kBigTag + Le32(0x80000003) + Name("Dolls") + kBigTag + Le32(4),
            Names{"Toys", "Dolls", "Toys"}},
        FileCase{"RepeatedClassRecordTakesTheNextIndex",
                 EmptyQuery(4) + kToys + kCategoryClass + Name("Dolls") + Le16(0x8005) + Name("Bears") + Le16(6),
                 Names{"Toys", "Dolls", "Bears", "Dolls"}},
        FileCase{"AnySchemaIsAccepted",
                 ClassRecord(0xBEEF, "CMySettings") + EmptyQuery(1).substr(17) + ClassRecord(0, "CCategoryNameObject") +
                     Name("Toys"),
                 Names{"Toys"}},
        FileCase{"NegativeCountReadsNoCategories", EmptyQuery(-1) + kToys, Names{}},
        FileCase{"TrailingDataIsIgnored", EmptyQuery(1) + kToys + "trailing", Names{"Toys"}},
        FileCase{"WrongSettingsClass", ClassRecord(2, "CMySettingz") + EmptyQuery(0).substr(17), kFails},
        FileCase{"NullSettings", Le16(0) + EmptyQuery(0).substr(17), kFails},
        FileCase{"WrongCategoryClass", EmptyQuery(1) + ClassRecord(4, "CCategoryNameObjecT") + Name("Toys"), kFails},
        FileCase{"SettingsObjectForACategory", EmptyQuery(1) + Le16(0x0002), kFails},
        FileCase{"ClassNameOf64Characters",
                 EmptyQuery(1) + Le16(0xFFFF) + Le16(4) + Le16(64) + std::string(64, 'C') + Name("Toys"), kFails},
        FileCase{"UnreadClassIndex", EmptyQuery(1) + Le16(0x8003) + Name("Toys"), kFails},
        FileCase{"UnreadObjectIndex", EmptyQuery(2) + kToys + Le16(0x0005), kFails},
        FileCase{"ClassReferenceToAnObject", EmptyQuery(2) + kToys + Le16(0x8004) + Name("Dolls"), kFails},
        FileCase{"ObjectReferenceToAClassRecord", EmptyQuery(2) + kToys + Le16(0x0003), kFails},
        // Each entry is a scan job, however few bytes it takes.
        FileCase{"AThousandEntries", EmptyQuery(1000) + kToys + Repeat(Le16(0x0004), 999), Names(1000, "Toys")},
        FileCase{"MoreEntriesThanAThousand", EmptyQuery(1001) + kToys + Repeat(Le16(0x0004), 1000), kFails},
        // Within the entry cap, references still must not copy a long name into gigabytes.
        FileCase{"ReferencesToALongNameWithinTheBound", EmptyQuery(201) + kLongCategory + Repeat(Le16(0x0004), 200),
                 Names(201, kLongName)},
        FileCase{"ReferencesToALongNameBeyondTheBound", EmptyQuery(301) + kLongCategory + Repeat(Le16(0x0004), 300),
                 kFails}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(QueryFile, EveryTruncatedFileFailsCleanly) {
  const std::string bytes = SaveQueryBytes(EmptySettings(std::string(300, 'k'), {"Toys", std::string(260, 'n'), ""}));
  for (std::size_t length = 0; length < bytes.size(); ++length) {
    CMySettings loaded = kSentinel;
    std::string error;
    ASSERT_FALSE(LoadQueryBytes(bytes.substr(0, length), loaded, error)) << length;
    ASSERT_EQ(loaded, kSentinel) << length;
  }
}

// Each filter setter and sort choice in turn; a mistaken setter shows as a changed query.
TEST(QueryFile, AQueryKeepsItsChoicesAndIsReadAsTheScanReadsTheFlags) {
  const FilterSpec tests[] = {FilterSpec::GreaterThan(0), FilterSpec::LessThan(7), FilterSpec::Between(0, 9)};
  const SortColumn sorts[] = {SortColumn::DateEnded, SortColumn::Title, SortColumn::Price, SortColumn::Bids};
  for (int i = 0; i < 4; ++i) {
    QuerySpec query;
    query.site = i % 2 == 0 ? sites::Site::USA : sites::Site::UK;
    query.keywords = "lamp, vase";
    query.pageDepth = 4 + i;
    query.categories = {"Toys", "Dolls"};
    query.bids = tests[i % 3];
    query.days = tests[(i + 1) % 3];
    query.price = tests[(i + 2) % 3];
    query.sort = sorts[i];
    query.ascending = i % 2 == 0;
    EXPECT_EQ(QueryFromSettings(SettingsFromQuery(query)), query) << i;
  }
  // A bound of -1 is never written.
  QuerySpec unset;
  unset.bids = FilterSpec::Between(-1, 5);
  unset.days = FilterSpec::Between(5, -1);
  unset.price = FilterSpec::GreaterThan(-1);
  EXPECT_EQ(SettingsFromQuery(unset), SettingsFromQuery(QuerySpec{}));

  // A group flag that is clear means any value, whatever test flag is set; of several test flags
  // the first counts; every bound is kept.
  CMySettings settings = EmptySettings();
  settings.m_bBidsLess = 1;
  settings.m_nBidsLess = 7;
  settings.SetPriceLessThan(50);
  settings.SetPriceGreaterThan(10);
  settings.m_bSortPrice = settings.m_bSortTitle = 1;
  const QuerySpec read = QueryFromSettings(settings);
  EXPECT_EQ(read.bids, (FilterSpec{FilterSpec::Test::Any, -1, 7, -1, -1}));
  EXPECT_EQ(read.price, (FilterSpec{FilterSpec::Test::Greater, 10, 50, -1, -1}));
  EXPECT_EQ(read.sort, SortColumn::Title);
}

}  // namespace
}  // namespace gavelscope::query
