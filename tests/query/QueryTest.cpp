// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
//
// Query files, read and written byte for byte, and query runs on the sandbox.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <optional>
#include <set>
#include <system_error>
#include <tuple>

#include "net/PageFetcher.h"
#include "query/QueryFile.h"
#include "query/QueryRun.h"
#include "sites/CategoryAnchors.h"
#include "sites/ListingScan.h"
#include "support/RecordingBrowser.h"
#include "support/RecordingMessages.h"
#include "support/SandboxFixture.h"
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
    const QueryDefinition query{.site = i % 2 == 0 ? sites::Site::USA : sites::Site::UK,
                          .keywords = "lamp, vase",
                          .pageDepth = 4 + i,
                          .categories = {"Toys", "Dolls"},
                          .bids = tests[i % 3],
                          .days = tests[(i + 1) % 3],
                          .price = tests[(i + 2) % 3],
                          .sort = sorts[i],
                          .ascending = i % 2 == 0};
    EXPECT_EQ(QueryFromSettings(SettingsFromQuery(query)), query) << i;
  }
  // A bound of -1 is never written.
  QueryDefinition unset;
  unset.bids = FilterSpec::Between(-1, 5);
  unset.days = FilterSpec::Between(5, -1);
  unset.price = FilterSpec::GreaterThan(-1);
  EXPECT_EQ(SettingsFromQuery(unset), SettingsFromQuery(QueryDefinition{}));

  // A group flag that is clear means any value, whatever test flag is set; of several test flags
  // the first counts; every bound is kept.
  CMySettings settings = EmptySettings();
  settings.m_bBidsLess = 1;
  settings.m_nBidsLess = 7;
  settings.SetPriceLessThan(50);
  settings.SetPriceGreaterThan(10);
  settings.m_bSortPrice = settings.m_bSortTitle = 1;
  const QueryDefinition read = QueryFromSettings(settings);
  EXPECT_EQ(read.bids, (FilterSpec{FilterSpec::Test::Any, -1, 7, -1, -1}));
  EXPECT_EQ(read.price, (FilterSpec{FilterSpec::Test::Greater, 10, 50, -1, -1}));
  EXPECT_EQ(read.sort, SortColumn::Title);
}

class NoPages : public base::IPageSource {
 public:
  std::string GetPageText(std::string_view, std::stop_token) override { return {}; }
};

// The main window as a query sees it, with the USA site's categories read from the sandbox; every
// query here is on the USA site, so they stand for both sites'.
class SandboxQueryHost : public IQueryHost {
 public:
  explicit SandboxQueryHost(const net::NetOptions& options) {
    usa.strHomePage = net::SharedSession(options).GetPageText(sites::CompiledProfile().usa.listingRoot, {});
    sites::ParseCategoryAnchors(usa.strHomePage, usa.arrCategoryNames, usa.arrCategoryLinks);
    usa.ready.Set();
  }
  bool IsQueryRunning() const override { return running; }
  void SetQueryRunning(bool value) override { running = value; }
  void IncrementPagesSearched() override {
    std::unique_lock lock(m_gate);
    ++pages;
    m_passed.notify_all();
    // Holds the first callers until `holdUntilPages` pages are counted, so that all of them are
    // running at one moment; a generous limit turns a run that can never get there into a failure.
    m_passed.wait_for(lock, std::chrono::seconds(30), [this] { return pages >= holdUntilPages; });
  }
  const sites::SiteCategories& SiteData(sites::Site) override { return usa; }
  hotitems::CItemListCtrl& QueryResults() override { return results; }
  base::IUserMessages& Messages() override { return messages; }

  sites::SiteCategories usa;
  std::atomic<bool> running{true};
  std::atomic<int> pages{0};
  int holdUntilPages = 0;
  testing::RecordingBrowser browser;
  testing::RecordingMessages messages;
  NoPages noPages;
  hotitems::CItemListCtrl results{hotitems::ItemListVariant::QueryResults, browser, messages, noPages,
                                  hotitems::DateOrder::DayFirst};

 private:
  std::mutex m_gate;
  std::condition_variable m_passed;
};

class QueryRunTest : public testing::SandboxTest {
 protected:
  void SetUp() override {
    SandboxTest::SetUp();
    m_options = SandboxNetOptions();
    m_host = std::make_unique<SandboxQueryHost>(m_options);
  }
  // A query of the named categories of the USA site, handed their links as the window hands them.
  std::unique_ptr<CInitialiseHotItemQueryThread> NewRun(const std::vector<std::string>& names, int depth,
                                                        SortColumn sort = SortColumn::None, bool ascending = true) {
    QueryDefinition query;
    query.site = sites::Site::USA;
    query.pageDepth = depth;
    query.categories = CategoryLinks(names, m_host->usa);
    query.sort = sort;
    query.ascending = ascending;
    auto run = std::make_unique<CInitialiseHotItemQueryThread>(*m_host, sites::CompiledProfile(), m_options, query);
    run->SetPollInterval(std::chrono::milliseconds(20));
    return run;
  }
  int ListingsOf(const std::string& name) const {
    const sites::SiteCategories& usa = m_host->usa;
    return static_cast<int>(
        BuildListingLinks(usa.strHomePage, CategoryLinks({name}, usa)[0], sites::CompiledProfile().usa).size());
  }

  void AddRow(const char* bids) {
    auto record = std::make_shared<hotitems::CHotItemRecord>();
    record->SetItemLink("L");
    record->SetBids(bids);
    m_host->results.AppendRow(record);
  }

  net::NetOptions m_options;
  std::unique_ptr<SandboxQueryHost> m_host;
};

TEST_F(QueryRunTest, AStoppedRunStillSortsButSaysNothing) {
  for (const char* bids : {"5", "-", "41"}) AddRow(bids);
  m_host->running = false;
  NewRun({"Antiques"}, 1, SortColumn::Bids, false)->RunQuery({});
  EXPECT_EQ(m_host->results.CellText(0, 3), "41");
  EXPECT_EQ(m_host->results.CellText(2, 3), "-");
  EXPECT_TRUE(m_host->messages.Messages().empty());
  EXPECT_EQ(m_host->pages, 0);
}

void ExpectEachItemTimes(const hotitems::CItemListCtrl& results, std::size_t times) {
  ASSERT_GT(results.RowCount(), 0);
  std::multiset<std::string> links;
  for (std::size_t row = 0; row < results.RowCount(); ++row) links.insert(results.RowAt(row)->GetItemLink());
  for (const std::string& link : links) EXPECT_EQ(links.count(link), times);
}

// Two entries get no thread: they end with no rows, and the rest still run the limit at once.
TEST_F(QueryRunTest, ManyEntriesRunTheLimitAtOnceAndAJobWithoutAThreadEndsWithNoRowsButNotTheRun) {
  constexpr int kStarted = net::limits::kMaxQueryJobsAtOnce + 1;
  // No job ends before its first page is counted, so the first pages up to the limit come from as
  // many jobs running together.
  m_host->holdUntilPages = net::limits::kMaxQueryJobsAtOnce;
  auto run = NewRun(std::vector<std::string>(kStarted + 2, "Antiques"), 1, SortColumn::Bids);
  // As the command line runs it: no look at the jobs would come within the test's time, so the run
  // ends with its last job, and only then (every job is finished below).
  run->SetPollInterval(std::chrono::hours(1));
  run->SetEndWithLastJob(true);
  int calls = 0;
  run->SetThreadStarter([&calls](std::function<void()> body) {
    if (++calls == 2 || calls == 3) {
      throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
    }
    return std::jthread(std::move(body));
  });
  run->RunQuery({});
  EXPECT_EQ(run->MostJobsAtOnce(), net::limits::kMaxQueryJobsAtOnce);
  for (const auto& job : run->jobs()) EXPECT_TRUE(job->IsFinished());
  // A page depth of 1 reads the first of each listing's three pages only.
  EXPECT_EQ(m_host->pages, kStarted * ListingsOf("Antiques"));
  ExpectEachItemTimes(m_host->results, kStarted);
  EXPECT_EQ(m_host->results.SortColumn(), 3);
  EXPECT_FALSE(m_host->running);
  ASSERT_EQ(m_host->messages.Messages().size(), 1U);
  EXPECT_EQ(m_host->messages.Messages()[0].text, "All data has been extracted from Ebay and is now ready for analysis");
  EXPECT_EQ(m_host->messages.Messages()[0].title, "Search Complete");
}

class QueryFaults : public QueryRunTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(QueryFaults, SpoiltListingPagesEndTheRunWithTheRowsThatArrived) {
  const std::string mode = GetParam();
  m_options.lowSpeedBytesPerSecond = 1000;
  m_options.lowSpeedTime = std::chrono::seconds(1);
  // The sandbox's listings have three pages: a larger depth ends where the continue marker stops.
  NewRun({"Antiques", "Art"}, 10)->RunQuery({});
  EXPECT_EQ(m_host->pages, 3 * (ListingsOf("Antiques") + ListingsOf("Art")));
  const int clean = m_host->results.RowCount();
  ASSERT_GT(clean, 0);
  m_host->results.Clear();
  m_host->running = true;

  // Every listing address of the home page now goes through the sandbox's fault mode.
  const std::string host = sites::CompiledProfile().usa.listingHost + "/";
  std::string& home = m_host->usa.strHomePage;
  for (std::size_t at = home.find(host); at != std::string::npos; at = home.find(host, at + 1)) {
    home.insert(at + host.size(), "_fault/" + mode + "/");
  }
  const auto started = std::chrono::steady_clock::now();
  auto run = NewRun({"Antiques", "Art"}, 10);
  run->RunQuery({});

  // Every listing is given up within the low-speed limit, not a real server's half minute.
  const int listings = std::max(ListingsOf("Antiques"), ListingsOf("Art"));
  EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(2 * listings + 5));
  for (const auto& job : run->jobs()) EXPECT_TRUE(job->IsFinished());
  // Rows read before a connection broke are kept; the rest of that listing is given up.
  const int found = m_host->results.RowCount();
  EXPECT_LT(found, clean);
  EXPECT_EQ(found > 0, mode == "cut" || mode == "reset");
  // Unreadable pages are no error of the user's: the run ends as any other does.
  ASSERT_EQ(m_host->messages.Messages().size(), 2U);
  EXPECT_EQ(m_host->messages.Messages()[1].title, "Search Complete");
}

INSTANTIATE_TEST_SUITE_P(EveryMode, QueryFaults, ::testing::Values("404", "500", "reset", "cut", "drip", "hang"));

TEST_F(QueryRunTest, PublishingAppendsHotRowsAndUploadsThem) {
  testing::TempFolder folder;
  const auto local = folder / "HotItemList.txt";
  const auto publish = [&] {
    return PublishHistory(m_host->results, local, sites::CompiledProfile(), m_options, {}, {});
  };
  EXPECT_FALSE(publish());
  testing::WriteFileBytes(local, "old~|~01/01/2005~|~t~|~$1~|~99~|~\r\n");
  for (const char* bids : {"31", "30"}) AddRow(bids);
  const net::NetResult published = publish();
  ASSERT_TRUE(published) << published.error;
  const std::string uploaded = testing::ReadFileBytes(Sandbox().ftpRoot() / "HotItemList.txt");
  EXPECT_TRUE(uploaded.starts_with("old~|~")) << uploaded;
  EXPECT_NE(uploaded.find("L~|~"), std::string::npos);
  EXPECT_EQ(uploaded.find("~|~30~|~"), std::string::npos);
}

TEST(FilterSpec, StrictBoundsInclusiveRangesAndBoundsNotGiven) {
  using F = FilterSpec;
  // "-" bids count as 0; a range with one bound given filters; a test without its bound takes all.
  const std::tuple<FilterSpec, std::int32_t, bool> rows[] = {
      {F::GreaterThan(5), 6, true},    {F::GreaterThan(5), 5, false},
      {F::LessThan(1), 0, true},       {F::LessThan(1), 1, false},
      {F::Between(10, 20), 10, true},  {F::Between(10, 20), 20, true},
      {F::Between(10, 20), 21, false}, {F::Between(-1, 5), 6, false},
      {F::Between(-1, 5), -1, true},   {F{}, -5, true},
      {F::GreaterThan(-1), -5, true},  {F::LessThan(-1), 1000, true},
      {F::Between(-1, -1), 1000, true}};
  for (const auto& [filter, value, passes] : rows) EXPECT_EQ(filter.Passes(value), passes) << value;
}

}  // namespace
}  // namespace gavelscope::query
