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

#include "net/PageFetcher.h"
#include "sites/CategoryAnchors.h"
#include "support/RecordingBrowser.h"
#include "support/RecordingMessages.h"
#include "support/SandboxFixture.h"
#include "support/TempFolder.h"

namespace gavelscope::query {
namespace {

using sites::Site;

class NoPages : public base::IPageSource {
 public:
  std::string GetPageText(std::string_view, std::stop_token) override { return {}; }
};

// The main window as a query sees it, with both sites' categories read from the sandbox.
class SandboxQueryHost : public IQueryHost {
 public:
  explicit SandboxQueryHost(const net::NetOptions& options) {
    net::SharedSession session(options);
    for (Site site : {Site::UK, Site::USA}) {
      sites::SiteCategories& data = site == Site::UK ? m_uk : m_usa;
      data.strHomePage = session.GetPageText(sites::CompiledProfile().site(site).listingRoot, {});
      sites::ParseCategoryAnchors(data.strHomePage, data.arrCategoryNames, data.arrCategoryLinks);
      data.ready.Set();
    }
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
  const sites::SiteCategories& SiteData(Site site) override { return site == Site::UK ? m_uk : m_usa; }
  hotitems::CItemListCtrl& QueryResults() override { return results; }
  base::IUserMessages& Messages() override { return messages; }

  // Sends every listing address of the USA home page through the sandbox's fault MODE.
  void SpoilUsaListings(const std::string& mode) {
    const std::string host = sites::CompiledProfile().usa.listingHost + "/";
    std::string& home = m_usa.strHomePage;
    for (std::size_t at = home.find(host); at != std::string::npos; at = home.find(host, at + 1)) {
      home.insert(at + host.size(), "_fault/" + mode + "/");
    }
  }

  std::string LinkOf(Site site, const std::string& name) const {
    const sites::SiteCategories& data = site == Site::UK ? m_uk : m_usa;
    for (std::size_t i = 0; i < data.arrCategoryNames.size(); ++i) {
      if (data.arrCategoryNames[i] == name) return data.arrCategoryLinks[i];
    }
    return name;
  }

  std::atomic<bool> running{true};
  std::atomic<int> pages{0};
  int holdUntilPages = 0;
  testing::RecordingBrowser browser;
  testing::RecordingMessages messages;
  NoPages noPages;
  std::mutex busy;
  hotitems::CItemListCtrl results{hotitems::ItemListVariant::QueryResults, browser, messages, noPages,
                                  hotitems::DateOrder::DayFirst};

 private:
  sites::SiteCategories m_uk;
  sites::SiteCategories m_usa;
  std::mutex m_gate;
  std::condition_variable m_passed;
};

// A query of the named categories of the USA site (the UK site's with `usa` false).
QuerySpec Query(const std::vector<std::string>& names, int depth, bool usa = true) {
  QuerySpec query;
  query.site = usa ? Site::USA : Site::UK;
  query.pageDepth = depth;
  query.categories = names;
  return query;
}

std::unique_ptr<CInitialiseHotItemQueryThread> NewRun(SandboxQueryHost& host, QuerySpec query,
                                                      const net::NetOptions& options) {
  for (std::string& name : query.categories) name = host.LinkOf(query.site, name);
  auto run = std::make_unique<CInitialiseHotItemQueryThread>(host, sites::CompiledProfile(), options, std::move(query));
  run->SetPollInterval(std::chrono::milliseconds(20));
  return run;
}

std::size_t ListingsOf(SandboxQueryHost& host, const std::string& name, Site site = Site::USA) {
  return BuildListingLinks(host.SiteData(site).strHomePage, host.LinkOf(site, name),
                           sites::CompiledProfile().site(site))
      .size();
}

class QueryRunTest : public testing::SandboxTest {
 protected:
  void SetUp() override {
    SandboxTest::SetUp();
    m_host = std::make_unique<SandboxQueryHost>(SandboxNetOptions());
  }
  std::unique_ptr<CInitialiseHotItemQueryThread> NewRun(QuerySpec query,
                                                        const net::NetOptions& options = SandboxNetOptions()) {
    return query::NewRun(*m_host, std::move(query), options);
  }
  std::size_t ListingsOf(const std::string& name) const { return query::ListingsOf(*m_host, name); }

  std::unique_ptr<SandboxQueryHost> m_host;
};

TEST_F(QueryRunTest, PageDepthBoundsThePagesOfEveryListing) {
  NewRun(Query({"Antiques"}, 1))->RunQuery({});
  const int onePage = m_host->pages;
  EXPECT_EQ(onePage, static_cast<int>(ListingsOf("Antiques")));
  // The sandbox's listings have three pages: a larger depth ends where the continue marker stops.
  m_host->pages = 0;
  m_host->running = true;
  NewRun(Query({"Antiques"}, 10))->RunQuery({});
  EXPECT_EQ(m_host->pages, 3 * onePage);
}

TEST_F(QueryRunTest, ThreeCategoriesRunTogetherAndTheRunEndsAfterTheLast) {
  QuerySpec query = Query({"Antiques", "Art", "Books"}, 1);
  query.sort = SortColumn::Bids;
  auto run = NewRun(query);
  run->RunQuery({});
  ASSERT_EQ(run->jobs().size(), 3U);
  for (const auto& job : run->jobs()) EXPECT_TRUE(job->IsFinished());
  EXPECT_GT(m_host->results.RowCount(), 0);
  EXPECT_EQ(m_host->results.SortColumn(), 3);
  EXPECT_FALSE(m_host->running);
  ASSERT_EQ(m_host->messages.Messages().size(), 1U);
  EXPECT_EQ(m_host->messages.Messages()[0].text, "All data has been extracted from Ebay and is now ready for analysis");
  EXPECT_EQ(m_host->messages.Messages()[0].title, "Search Complete");
}

TEST_F(QueryRunTest, AStoppedRunStillSortsButSaysNothing) {
  for (const char* bids : {"5", "-", "41"}) {
    auto record = std::make_shared<hotitems::CHotItemRecord>();
    record->SetBids(bids);
    m_host->results.AppendRow(record);
  }
  m_host->running = false;
  QuerySpec query = Query({"Antiques"}, 1);
  query.sort = SortColumn::Bids;
  query.ascending = false;
  NewRun(query)->RunQuery({});
  EXPECT_EQ(m_host->results.CellText(0, 3), "41");
  EXPECT_EQ(m_host->results.CellText(2, 3), "-");
  EXPECT_TRUE(m_host->messages.Messages().empty());
  EXPECT_EQ(m_host->pages, 0);
}

TEST_F(QueryRunTest, FiltersHoldForEveryRowFound) {
  QuerySpec query = Query({"Antiques", "Art"}, 2);
  query.bids = FilterSpec::GreaterThan(5);
  query.price = FilterSpec::Between(10, 200);
  query.days = FilterSpec::LessThan(3);
  NewRun(query)->RunQuery({});
  ASSERT_GT(m_host->results.RowCount(), 0);
  for (int row = 0; row < m_host->results.RowCount(); ++row) {
    const auto record = m_host->results.RowAt(row);
    EXPECT_GT(sites::ParseBids(record->GetBids()), 5);
    EXPECT_GE(sites::ParsePrice(record->GetPrice()), 10);
    EXPECT_LE(sites::ParsePrice(record->GetPrice()), 200);
    EXPECT_LT(sites::ParseDaysLeft(record->GetEnding()), 3);
  }
}

TEST_F(QueryRunTest, ManyEntriesRunTheLimitAtOnceAndNeverLoseOrMixRows) {
  NewRun(Query({"Antiques"}, 1))->RunQuery({});
  const int oneJob = m_host->results.RowCount();
  ASSERT_GT(oneJob, 0);
  m_host->results.Clear();
  m_host->running = true;
  m_host->pages = 0;
  constexpr int kAtOnce = net::limits::kMaxQueryJobsAtOnce;
  constexpr int kEntries = kAtOnce + 1;
  // No job ends before its first page is counted, so the first kAtOnce pages come from as many jobs
  // running together.
  m_host->holdUntilPages = kAtOnce;
  auto run = NewRun(Query(std::vector<std::string>(kEntries, "Antiques"), 1));
  run->RunQuery({});
  EXPECT_EQ(run->MostJobsAtOnce(), kAtOnce);
  for (const auto& job : run->jobs()) EXPECT_TRUE(job->IsFinished());
  EXPECT_EQ(m_host->pages, kEntries * static_cast<int>(ListingsOf("Antiques")));
  ASSERT_EQ(m_host->results.RowCount(), kEntries * oneJob);
  std::multiset<std::string> links;
  for (int row = 0; row < m_host->results.RowCount(); ++row) {
    const auto record = m_host->results.RowAt(row);
    ASSERT_TRUE(record);
    EXPECT_EQ(m_host->results.CellText(row, 0), record->GetEnding());
    EXPECT_EQ(m_host->results.CellText(row, 1), record->GetTitle());
    EXPECT_EQ(m_host->results.CellText(row, 2), record->GetPrice());
    EXPECT_EQ(m_host->results.CellText(row, 3), record->GetBids());
    links.insert(record->GetItemLink());
  }
  for (const std::string& link : links) EXPECT_EQ(links.count(link), static_cast<std::size_t>(kEntries));
}

TEST_F(QueryRunTest, AJobWithoutAThreadEndsWithNoRowsAndTheRunGoesOn) {
  QuerySpec query = Query(std::vector<std::string>(4, "Antiques"), 1);
  query.sort = SortColumn::Bids;
  auto run = NewRun(query);
  int calls = 0;
  run->SetThreadStarter([&calls](std::function<void()> body) {
    ++calls;
    if (calls == 2 || calls == 3) {
      throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
    }
    return std::jthread(std::move(body));
  });
  run->RunQuery({});
  for (const auto& job : run->jobs()) EXPECT_TRUE(job->IsFinished());
  EXPECT_EQ(m_host->pages, 2 * static_cast<int>(ListingsOf("Antiques")));
  // Two jobs ran: every item they found is there twice, and nothing else.
  ASSERT_GT(m_host->results.RowCount(), 0);
  std::multiset<std::string> links;
  for (int row = 0; row < m_host->results.RowCount(); ++row) {
    links.insert(m_host->results.RowAt(row)->GetItemLink());
  }
  for (const std::string& link : links) EXPECT_EQ(links.count(link), 2U);
  EXPECT_EQ(m_host->results.SortColumn(), 3);
  ASSERT_EQ(m_host->messages.Messages().size(), 1U);
  EXPECT_EQ(m_host->messages.Messages()[0].title, "Search Complete");
}

TEST(QueryRunHostile, ANextLinkWithUserInformationNeverReachesTheOtherHost) {
  std::string error;
  const auto sandbox = standin::SandboxProcess::Start(
      {GAVELSCOPE_SANDBOX_PYTHON, GAVELSCOPE_SANDBOX_SCRIPT, {"--hostile", "userinfo-next"}}, error);
  ASSERT_TRUE(sandbox) << error;
  net::NetOptions options;
  options.connectTo = sandbox->connectTo();
  SandboxQueryHost host(options);
  NewRun(host, Query({"Antiques"}, 3), options)->RunQuery({});
  // Each listing ends after its first page, whose Next link names evil.example as the host.
  EXPECT_EQ(host.pages, static_cast<int>(ListingsOf(host, "Antiques")));
  EXPECT_GT(host.results.RowCount(), 0);
  net::SharedSession session(options);
  EXPECT_EQ(session.GetPageText("http://listings.ebay.com/_test/seen?host=evil.example&path=%2Fnext&least=0", {}), "0");
}

class QueryFaults : public QueryRunTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(QueryFaults, SpoiltListingPagesEndTheRunWithTheRowsThatArrived) {
  const std::string mode = GetParam();
  net::NetOptions options = SandboxNetOptions();
  options.lowSpeedBytesPerSecond = 1000;
  options.lowSpeedTime = std::chrono::seconds(1);
  NewRun(Query({"Antiques", "Art"}, 3), options)->RunQuery({});
  const int clean = m_host->results.RowCount();
  ASSERT_GT(clean, 0);
  m_host->results.Clear();
  m_host->running = true;

  m_host->SpoilUsaListings(mode);
  const auto started = std::chrono::steady_clock::now();
  auto run = NewRun(Query({"Antiques", "Art"}, 3), options);
  run->RunQuery({});

  // Every listing is given up within the low-speed limit, not a real server's half minute.
  const std::size_t listings = std::max(ListingsOf("Antiques"), ListingsOf("Art"));
  EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(2 * listings + 5));
  for (const auto& job : run->jobs()) EXPECT_TRUE(job->IsFinished());
  EXPECT_FALSE(m_host->running);
  // Rows read before a connection broke are kept; the rest of that listing is given up.
  const int found = m_host->results.RowCount();
  EXPECT_LT(found, clean);
  if (mode == "cut" || mode == "reset") {
    EXPECT_GT(found, 0);
  } else {
    EXPECT_EQ(found, 0);
  }
  // Unreadable pages are no error of the user's: the run ends as any other does.
  const auto said = m_host->messages.Messages();
  ASSERT_EQ(said.size(), 2U);
  EXPECT_EQ(said[1].title, "Search Complete");
}

INSTANTIATE_TEST_SUITE_P(EveryMode, QueryFaults, ::testing::Values("404", "500", "reset", "cut", "drip", "hang"));

TEST_F(QueryRunTest, PublishingAppendsHotRowsAndUploadsThem) {
  testing::TempFolder folder;
  const auto local = folder / "HotItemList.txt";
  EXPECT_FALSE(PublishHistory(m_host->results, local, sites::CompiledProfile(), SandboxNetOptions(),
                              std::chrono::milliseconds(0), {}));
  testing::WriteFileBytes(local, "old~|~01/01/2005~|~t~|~$1~|~99~|~\r\n");
  for (const char* bids : {"31", "30"}) {
    auto record = std::make_shared<hotitems::CHotItemRecord>();
    record->SetItemLink("L");
    record->SetBids(bids);
    m_host->results.AppendRow(record);
  }
  const net::NetResult published = PublishHistory(m_host->results, local, sites::CompiledProfile(), SandboxNetOptions(),
                                                  std::chrono::milliseconds(0), {});
  ASSERT_TRUE(published) << published.error;
  const std::string uploaded = testing::ReadFileBytes(Sandbox().ftpRoot() / "HotItemList.txt");
  EXPECT_TRUE(uploaded.starts_with("old~|~")) << uploaded;
  EXPECT_NE(uploaded.find("L~|~"), std::string::npos);
  EXPECT_EQ(uploaded.find("~|~30~|~"), std::string::npos);
}

TEST(FilterSpec, StrictBoundsInclusiveRangesAndBoundsNotGiven) {
  EXPECT_TRUE(FilterSpec::GreaterThan(5).Passes(6));
  EXPECT_FALSE(FilterSpec::GreaterThan(5).Passes(5));
  EXPECT_TRUE(FilterSpec::LessThan(1).Passes(0));  // "-" bids
  EXPECT_FALSE(FilterSpec::LessThan(1).Passes(1));
  EXPECT_TRUE(FilterSpec::Between(10, 20).Passes(10));
  EXPECT_TRUE(FilterSpec::Between(10, 20).Passes(20));
  EXPECT_FALSE(FilterSpec::Between(10, 20).Passes(21));
  // A range with one bound given filters: -1 to 5 takes nothing above 5.
  EXPECT_FALSE(FilterSpec::Between(-1, 5).Passes(6));
  EXPECT_TRUE(FilterSpec::Between(-1, 5).Passes(-1));
  for (const FilterSpec& any :
       {FilterSpec{}, FilterSpec::GreaterThan(-1), FilterSpec::LessThan(-1), FilterSpec::Between(-1, -1)}) {
    EXPECT_TRUE(any.Passes(-5));
    EXPECT_TRUE(any.Passes(1000));
  }
}

}  // namespace
}  // namespace gavelscope::query
