// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "query/QueryFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <limits>
#include <optional>
#include <random>
#include <sstream>

#include "support/TempFolder.h"

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

// A short name as an archive string.
std::string Name(std::string_view name) {
  return static_cast<char>(name.size()) + std::string(name);
}

std::string ClassRecord(std::uint16_t schema, std::string_view name) {
  return Le16(0xFFFF) + Le16(schema) + Le16(static_cast<std::uint16_t>(name.size())) + std::string(name);
}

const std::string kCategoryClass = ClassRecord(4, "CCategoryNameObject");

// A query with nothing chosen and page depth 1, claiming `count` categories.
std::string EmptyQuery(std::int32_t count) {
  return ClassRecord(2, "CMySettings") + Le32(count) + Repeat(Le32(0), 4) + std::string(1, '\0') + Repeat(Le32(0), 9) +
         Repeat(Le32(-1), 12) + Le32(1) + Repeat(Le32(0), 4) + Le32(1);
}

CMySettings EmptySettings() {
  CMySettings settings;
  settings.SetPageDepth(1);
  return settings;
}

// What a failed load must leave alone.
CMySettings Sentinel() {
  CMySettings settings;
  settings.SetKeywords("untouched");
  settings.SetCategories({"Stamps"});
  return settings;
}

TEST(QueryFile, EmptyQueryIs146Bytes) {
  const std::string bytes = SaveQueryBytes(EmptySettings());
  EXPECT_EQ(bytes.size(), 146U);
  EXPECT_EQ(bytes, EmptyQuery(0));
  CMySettings loaded = Sentinel();
  std::string error;
  ASSERT_TRUE(LoadQueryBytes(bytes, loaded, error)) << error;
  EXPECT_EQ(loaded, EmptySettings());
}

TEST(QueryFile, KeywordLengthChoosesThePrefixAndShiftsTheFieldsAfterIt) {
  for (const auto& [length, prefix] : {std::pair<std::size_t, std::string>{254, "\xFE"},
                                       std::pair<std::size_t, std::string>{255, std::string("\xFF\xFF\x00", 3)}}) {
    CMySettings settings = EmptySettings();
    settings.SetKeywords(std::string(length, 'k'));
    settings.SetPageDepth(0x01020304);
    const std::string bytes = SaveQueryBytes(settings);
    const std::size_t k = prefix.size() + length;
    ASSERT_EQ(bytes.size(), 145 + k) << length;
    EXPECT_EQ(bytes.substr(37, prefix.size()), prefix) << length;
    EXPECT_EQ(bytes.substr(37 + k, 12), Repeat(Le32(0), 3)) << length;
    EXPECT_EQ(bytes.substr(141 + k), Le32(0x01020304)) << length;
  }
}

TEST(QueryFile, CategoriesShareOneClassRecordAndFollowThePageDepth) {
  CMySettings settings = EmptySettings();
  settings.SetCategories({"Toys", "Dolls"});
  const std::string bytes = SaveQueryBytes(settings);
  EXPECT_EQ(bytes.substr(17, 4), Le32(2));
  EXPECT_EQ(bytes.substr(146), kCategoryClass + Name("Toys") + Le16(0x8003) + Name("Dolls"));
}

TEST(QueryFile, EqualNamesAreEachWrittenInFull) {
  CMySettings settings = EmptySettings();
  settings.SetCategories({"Toys", "Toys", "Toys"});
  EXPECT_EQ(SaveQueryBytes(settings).substr(146),
            kCategoryClass + Name("Toys") + Repeat(Le16(0x8003) + Name("Toys"), 2));
}

struct LoadCase {
  const char* name;
  std::string bytes;
  // No value: the load must fail.
  std::optional<Names> categories;
};

void PrintTo(const LoadCase& c, std::ostream* os) {
  *os << c.name;
}

class QueryFileTags : public ::testing::TestWithParam<LoadCase> {};

TEST_P(QueryFileTags, LoadOrFailCleanly) {
  const LoadCase& c = GetParam();
  CMySettings loaded = Sentinel();
  std::string error;
  const bool ok = LoadQueryBytes(c.bytes, loaded, error);
  if (!c.categories) {
    EXPECT_FALSE(ok);
    EXPECT_FALSE(error.empty());
    EXPECT_EQ(loaded, Sentinel());
    return;
  }
  ASSERT_TRUE(ok) << error;
  CMySettings expected = EmptySettings();
  expected.SetCategories(*c.categories);
  EXPECT_EQ(loaded, expected);
}

const std::string kToys = kCategoryClass + Name("Toys");
const std::string kBigTag = Le16(0x7FFF);
const std::string kLongName(65534, 'n');
const std::string kLongCategory = kCategoryClass + "\xFF" + Le16(0xFFFF) + Le32(65534) + kLongName;

INSTANTIATE_TEST_SUITE_P(
    QueryFile, QueryFileTags,
    ::testing::Values(
        LoadCase{"SavedPair", EmptyQuery(2) + kToys + Le16(0x8003) + Name("Dolls"), Names{"Toys", "Dolls"}},
        LoadCase{"ObjectReferenceRepeatsAName", EmptyQuery(2) + kToys + Le16(0x0004), Names{"Toys", "Toys"}},
        LoadCase{"NullIsSkippedAndTakesNoIndex",
                 EmptyQuery(4) + Le16(0) + kToys + Le16(0x8003) + Name("Dolls") + Le16(0x0005),
                 Names{"Toys", "Dolls", "Dolls"}},
        LoadCase{"LongTagClassReference", EmptyQuery(2) + kToys + kBigTag + Le32(0x80000003) + Name("Dolls"),
                 Names{"Toys", "Dolls"}},
        LoadCase{"LongTagObjectReference", EmptyQuery(2) + kToys + kBigTag + Le32(4), Names{"Toys", "Toys"}},
        LoadCase{"LongTagZeroIsNull", EmptyQuery(2) + kBigTag + Le32(0) + kToys, Names{"Toys"}},
        LoadCase{"RepeatedClassRecordTakesTheNextIndex",
                 EmptyQuery(4) + kToys + kCategoryClass + Name("Dolls") + Le16(0x8005) + Name("Bears") + Le16(6),
                 Names{"Toys", "Dolls", "Bears", "Dolls"}},
        LoadCase{"AnySchemaIsAccepted",
                 ClassRecord(0xBEEF, "CMySettings") + EmptyQuery(1).substr(17) + ClassRecord(0, "CCategoryNameObject") +
                     Name("Toys"),
                 Names{"Toys"}},
        LoadCase{"NegativeCountReadsNoCategories", EmptyQuery(-1) + kToys, Names{}},
        LoadCase{"TrailingDataIsIgnored", EmptyQuery(1) + kToys + "trailing", Names{"Toys"}},
        LoadCase{"WrongSettingsClass", ClassRecord(2, "CMySettingz") + EmptyQuery(0).substr(17), std::nullopt},
        LoadCase{"NullSettings", Le16(0) + EmptyQuery(0).substr(17), std::nullopt},
        LoadCase{"SettingsAsReference", Le16(1) + EmptyQuery(0).substr(17), std::nullopt},
        LoadCase{"SettingsOfUnreadClass", Le16(0x8001) + EmptyQuery(0).substr(17), std::nullopt},
        LoadCase{"WrongCategoryClass", EmptyQuery(1) + ClassRecord(4, "CCategoryNameObjecT") + Name("Toys"),
                 std::nullopt},
        LoadCase{"SettingsClassForACategory", EmptyQuery(1) + Le16(0x8001) + Name("Toys"), std::nullopt},
        LoadCase{"SettingsObjectForACategory", EmptyQuery(1) + Le16(0x0002), std::nullopt},
        LoadCase{"ClassNameOf64Characters",
                 EmptyQuery(1) + Le16(0xFFFF) + Le16(4) + Le16(64) + std::string(64, 'C') + Name("Toys"), std::nullopt},
        LoadCase{"UnreadClassIndex", EmptyQuery(1) + Le16(0x8003) + Name("Toys"), std::nullopt},
        LoadCase{"ClassReferenceToAnObject", EmptyQuery(2) + kToys + Le16(0x8004) + Name("Dolls"), std::nullopt},
        LoadCase{"LongTagUnreadClass", EmptyQuery(2) + kToys + kBigTag + Le32(0x80000009) + Name("Dolls"),
                 std::nullopt},
        LoadCase{"UnreadObjectIndex", EmptyQuery(2) + kToys + Le16(0x0005), std::nullopt},
        LoadCase{"ObjectReferenceToAClassRecord", EmptyQuery(2) + kToys + Le16(0x0003), std::nullopt},
        LoadCase{"LongTagUnreadObject", EmptyQuery(2) + kToys + kBigTag + Le32(0x7FFFFFFF), std::nullopt},
        LoadCase{"FewerCategoriesThanCounted", EmptyQuery(3) + kToys + Le16(0x8003) + Name("Dolls"), std::nullopt},
        // Each entry is a scan job, however few bytes it takes.
        LoadCase{"AThousandEntries", EmptyQuery(1000) + kToys + Repeat(Le16(0x0004), 999), Names(1000, "Toys")},
        LoadCase{"MoreEntriesThanAThousand", EmptyQuery(1001) + kToys + Repeat(Le16(0x0004), 1000), std::nullopt},
        // Within the entry cap, references still must not copy a long name into gigabytes.
        LoadCase{"ReferencesToALongNameWithinTheBound", EmptyQuery(201) + kLongCategory + Repeat(Le16(0x0004), 200),
                 Names(201, kLongName)},
        LoadCase{"ReferencesToALongNameBeyondTheBound", EmptyQuery(301) + kLongCategory + Repeat(Le16(0x0004), 300),
                 std::nullopt}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(QueryFile, EveryTruncatedFileFailsCleanly) {
  CMySettings settings = EmptySettings();
  settings.SetKeywords(std::string(300, 'k'));
  settings.SetCategories({"Toys", std::string(260, 'n'), ""});
  const std::string bytes = SaveQueryBytes(settings);
  for (std::size_t length = 0; length < bytes.size(); ++length) {
    CMySettings loaded = Sentinel();
    std::string error;
    ASSERT_FALSE(LoadQueryBytes(bytes.substr(0, length), loaded, error)) << length;
    ASSERT_EQ(loaded, Sentinel()) << length;
  }
}

TEST(MySettingsSetters, MinusOneLeavesTheObjectUnchanged) {
  CMySettings settings;
  settings.SetBidsGreaterThan(-1);
  settings.SetBidsLessThan(-1);
  settings.SetBidsRange(-1, 5);
  settings.SetPriceGreaterThan(-1);
  settings.SetPriceLessThan(-1);
  settings.SetPriceRange(5, -1);
  settings.SetDaysGreaterThan(-1);
  settings.SetDaysLessThan(-1);
  settings.SetDaysRange(-1, -1);
  EXPECT_EQ(settings, CMySettings{});
  settings.SetBidsGreaterThan(7);
  settings.SetBidsGreaterThan(-1);
  EXPECT_EQ(settings.m_nBidsGreater, 7);
}

// The lines of DescribeSettings that differ from a new object's.
std::string ChangedFields(const CMySettings& settings) {
  std::istringstream actual(DescribeSettings(settings));
  std::istringstream fresh(DescribeSettings(CMySettings{}));
  std::string changed;
  for (std::string line, before; std::getline(actual, line) && std::getline(fresh, before);) {
    if (line != before) changed += line + "\n";
  }
  return changed;
}

TEST(MySettingsSetters, EachSetterTouchesOnlyItsOwnFieldsAndZeroIsARealBound) {
  const std::vector<std::pair<std::function<void(CMySettings&)>, std::string>> rows = {
      {[](auto& s) { s.SetBidsGreaterThan(0); }, "m_bBidFilter: 1\nm_bBidsGreater: 1\nm_nBidsGreater: 0\n"},
      {[](auto& s) { s.SetBidsLessThan(0); }, "m_bBidFilter: 1\nm_bBidsLess: 1\nm_nBidsLess: 0\n"},
      {[](auto& s) { s.SetBidsRange(0, 9); }, "m_bBidFilter: 1\nm_bBidsRange: 1\nm_nBidsFrom: 0\nm_nBidsTo: 9\n"},
      {[](auto& s) { s.SetPriceGreaterThan(0); }, "m_bPriceFilter: 1\nm_bPriceGreater: 1\nm_nPriceGreater: 0\n"},
      {[](auto& s) { s.SetPriceLessThan(0); }, "m_bPriceFilter: 1\nm_bPriceLess: 1\nm_nPriceLess: 0\n"},
      {[](auto& s) { s.SetPriceRange(0, 9); }, "m_bPriceFilter: 1\nm_bPriceRange: 1\nm_nPriceFrom: 0\nm_nPriceTo: 9\n"},
      {[](auto& s) { s.SetDaysGreaterThan(0); }, "m_bDaysFilter: 1\nm_bDaysGreater: 1\nm_nDaysGreater: 0\n"},
      {[](auto& s) { s.SetDaysLessThan(0); }, "m_bDaysFilter: 1\nm_bDaysLess: 1\nm_nDaysLess: 0\n"},
      {[](auto& s) { s.SetDaysRange(0, 9); }, "m_bDaysFilter: 1\nm_bDaysRange: 1\nm_nDaysFrom: 0\nm_nDaysTo: 9\n"},
      {[](auto& s) { s.SetKeywords(" \t lamp, vase\r\n"); }, "m_strKeywords: lamp, vase\n"},
      {[](auto& s) { s.SetCountry(1); }, "m_bInternational: 1\n"},
      {[](auto& s) { s.SetPageDepth(5); }, "m_nPageDepth: 5\n"},
      {[](auto& s) { s.SetAscending(0); }, "m_bAscending: 0\n"},
      {[](auto& s) { s.SetSortByPrice(1); }, "m_bSortPrice: 1\n"},
      {[](auto& s) { s.SetSortByBids(1); }, "m_bSortBids: 1\n"},
      {[](auto& s) { s.SetSortByTitle(1); }, "m_bSortTitle: 1\n"},
      {[](auto& s) { s.SetSortByDateEnded(1); }, "m_bSortDateEnded: 1\n"},
  };
  for (const auto& [set, changed] : rows) {
    CMySettings settings;
    set(settings);
    EXPECT_EQ(ChangedFields(settings), changed);
  }
}

std::string RandomText(std::mt19937& rng, std::size_t length) {
  std::uniform_int_distribution<int> byte(0, 255);
  std::string text(length, '\0');
  for (char& c : text) c = static_cast<char>(byte(rng));
  return text;
}

CMySettings RandomSettings(std::mt19937& rng, std::size_t keywordLength) {
  std::uniform_int_distribution<std::int32_t> any(std::numeric_limits<std::int32_t>::min(),
                                                  std::numeric_limits<std::int32_t>::max());
  constexpr std::int32_t kSpecial[] = {-1, 0, 1, std::numeric_limits<std::int32_t>::min()};
  std::uniform_int_distribution<int> pick(0, 5);
  const auto value = [&]() -> std::int32_t {
    const int choice = pick(rng);
    return choice < 4 ? kSpecial[choice] : any(rng);
  };
  CMySettings s;
  for (std::int32_t* field :
       {&s.m_bBidFilter,    &s.m_bDaysFilter,  &s.m_bPriceFilter, &s.m_bInternational, &s.m_nPageDepth,
        &s.m_bBidsGreater,  &s.m_bBidsLess,    &s.m_bBidsRange,   &s.m_bPriceGreater,  &s.m_bPriceLess,
        &s.m_bPriceRange,   &s.m_bDaysGreater, &s.m_bDaysLess,    &s.m_bDaysRange,     &s.m_nBidsGreater,
        &s.m_nBidsLess,     &s.m_nBidsFrom,    &s.m_nBidsTo,      &s.m_nPriceGreater,  &s.m_nPriceLess,
        &s.m_nPriceFrom,    &s.m_nPriceTo,     &s.m_nDaysGreater, &s.m_nDaysLess,      &s.m_nDaysFrom,
        &s.m_nDaysTo,       &s.m_bAscending,   &s.m_bSortPrice,   &s.m_bSortBids,      &s.m_bSortTitle,
        &s.m_bSortDateEnded}) {
    *field = value();
  }
  s.m_strKeywords = RandomText(rng, keywordLength);
  std::uniform_int_distribution<int> count(0, 40);
  std::uniform_int_distribution<std::size_t> nameLength(0, 300);
  for (int i = count(rng); i > 0; --i) {
    const bool repeat = !s.m_categories.empty() && pick(rng) == 0;
    s.m_categories.push_back(repeat ? s.m_categories.front() : RandomText(rng, nameLength(rng)));
  }
  return s;
}

TEST(QueryFile, RandomSettingsSurviveARoundTrip) {
  std::mt19937 rng(20261123);
  std::uniform_int_distribution<std::size_t> shortLength(0, 300);
  for (int i = 0; i < 300; ++i) {
    const std::size_t keywordLength = i == 0 ? 70000 : i == 1 ? 65534 : i == 2 ? 65533 : shortLength(rng);
    const CMySettings original = RandomSettings(rng, keywordLength);
    CMySettings loaded;
    std::string error;
    ASSERT_TRUE(LoadQueryBytes(SaveQueryBytes(original), loaded, error)) << i << ": " << error;
    ASSERT_EQ(loaded, original) << i;
  }
}

TEST(QueryFile, AQueryGoesToItsFileAndBackAndFailuresNameThePath) {
  testing::TempFolder folder;
  QuerySpec query;
  query.site = sites::Site::USA;
  query.keywords = " lamp, vase ";
  query.pageDepth = 4;
  query.categories = {"Toys", "Dolls"};
  query.bids = FilterSpec::Between(2, 9);
  query.price = FilterSpec::LessThan(100);
  query.sort = SortColumn::Title;
  query.ascending = false;
  const auto file = folder / "toys.sbqry";
  ASSERT_TRUE(SaveQueryFile(file, query));
  EXPECT_EQ(testing::ReadFileBytes(file), SaveQueryBytes(SettingsFromQuery(query)));
  QuerySpec loaded;
  ASSERT_TRUE(LoadQueryFile(file, loaded));
  query.keywords = "lamp, vase";
  EXPECT_EQ(loaded, query);

  const auto nowhere = folder / "missing" / "q.sbqry";
  EXPECT_EQ(SaveQueryFile(nowhere, query).error, "No such file or directory");
  EXPECT_EQ(LoadQueryFile(nowhere, loaded).error, "Cannot Load File : " + nowhere.string());
  EXPECT_EQ(LoadQueryFile(folder.path(), loaded).error, "Cannot Load File : " + folder.path().string());
  testing::WriteFileBytes(file, SaveQueryBytes(SettingsFromQuery(query)).substr(0, 150));
  EXPECT_EQ(LoadQueryFile(file, loaded).error, "Cannot Load File : " + file.string());
  EXPECT_EQ(loaded, query);
}

TEST(QueryFile, AFileIsReadAsTheScanReadsItsFlags) {
  // A group flag that is clear means any value, whatever test flag is set; of several test flags
  // the first counts; every bound is kept; a bound of -1 is never written.
  CMySettings settings = EmptySettings();
  settings.m_bBidsLess = 1;
  settings.m_nBidsLess = 7;
  settings.SetPriceLessThan(50);
  settings.SetPriceGreaterThan(10);
  settings.m_bSortPrice = settings.m_bSortTitle = 1;
  const QuerySpec query = QueryFromSettings(settings);
  EXPECT_EQ(query.bids, (FilterSpec{FilterSpec::Test::Any, -1, 7, -1, -1}));
  EXPECT_EQ(query.price, (FilterSpec{FilterSpec::Test::Greater, 10, 50, -1, -1}));
  EXPECT_EQ(query.sort, SortColumn::Title);
  QuerySpec unset;
  unset.bids = FilterSpec::Between(-1, 5);
  EXPECT_EQ(SettingsFromQuery(unset).m_bBidFilter, 0);
}

TEST(QueryFile, DescriptionListsFieldsInDeclarationOrderThenCategories) {
  CMySettings settings = EmptySettings();
  settings.SetBidsGreaterThan(3);
  settings.SetKeywords("lamp");
  settings.SetCategories({"Toys", "Dolls"});
  const std::string text = DescribeSettings(settings);
  EXPECT_EQ(text.substr(0, 37), "m_bBidFilter: 1\nm_bDaysFilter: 0\nm_bP");
  EXPECT_NE(text.find("\nm_bInternational: 0\nm_strKeywords: lamp\nm_nPageDepth: 1\nm_bBidsGreater: 1\n"),
            std::string::npos);
  EXPECT_NE(text.find("\nm_bDaysRange: 0\nm_nBidsGreater: 3\nm_nBidsLess: -1\n"), std::string::npos);
  EXPECT_TRUE(
      text.ends_with("\nm_bAscending: 1\nm_bSortPrice: 0\nm_bSortBids: 0\nm_bSortTitle: 0\n"
                     "m_bSortDateEnded: 0\ncategory: Toys\ncategory: Dolls\n"));
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 34);
}

}  // namespace
}  // namespace gavelscope::query
