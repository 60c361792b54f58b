// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "query/QueryRun.h"

#include "sites/ListingScan.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <set>
#include <system_error>
#include <tuple>

#include "net/PageFetcher.h"
#include "sites/CategoryAnchors.h"
#include "support/RecordingBrowser.h"
#include "support/RecordingMessages.h"
#include "support/SandboxFixture.h"
#include "support/TempFolder.h"

namespace gavelscope::query {
namespace {

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
    QuerySpec query;
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

// Every item found appears `times` times.
void ExpectEachItemTimes(const hotitems::CItemListCtrl& results, std::size_t times) {
  ASSERT_GT(results.RowCount(), 0);
  std::multiset<std::string> links;
  for (std::size_t row = 0; row < results.RowCount(); ++row) links.insert(results.RowAt(row)->GetItemLink());
  for (const std::string& link : links) EXPECT_EQ(links.count(link), times);
}

TEST_F(QueryRunTest, ManyEntriesRunTheLimitAtOnceAndNeverLoseRows) {
  constexpr int kEntries = net::limits::kMaxQueryJobsAtOnce + 1;
  // No job ends before its first page is counted, so the first pages up to the limit come from as
  // many jobs running together.
  m_host->holdUntilPages = net::limits::kMaxQueryJobsAtOnce;
  auto run = NewRun(std::vector<std::string>(kEntries, "Antiques"), 1);
  run->RunQuery({});
  EXPECT_EQ(run->MostJobsAtOnce(), net::limits::kMaxQueryJobsAtOnce);
  for (const auto& job : run->jobs()) EXPECT_TRUE(job->IsFinished());
  // A page depth of 1 reads the first of each listing's three pages only.
  EXPECT_EQ(m_host->pages, kEntries * ListingsOf("Antiques"));
  ExpectEachItemTimes(m_host->results, kEntries);
}

TEST_F(QueryRunTest, AJobWithoutAThreadEndsWithNoRowsAndTheRunStillEndsAndSaysSo) {
  auto run = NewRun(std::vector<std::string>(4, "Antiques"), 1, SortColumn::Bids);
  int calls = 0;
  run->SetThreadStarter([&calls](std::function<void()> body) {
    if (++calls == 2 || calls == 3) {
      throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
    }
    return std::jthread(std::move(body));
  });
  run->RunQuery({});
  for (const auto& job : run->jobs()) EXPECT_TRUE(job->IsFinished());
  EXPECT_EQ(m_host->pages, 2 * ListingsOf("Antiques"));
  ExpectEachItemTimes(m_host->results, 2);
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
