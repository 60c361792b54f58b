// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
//
// The store fed from the run controller's lists, as the command line will feed it, on the stand-in
// sites of two days.
#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <map>

#include "store/ResearchStore.h"
#include "support/SandboxFixture.h"
#include "support/SiteRun.h"
#include "support/TempFolder.h"

namespace gavelscope::store {
namespace {

using sites::Site;

using testing::SiteRun;

std::chrono::sys_seconds Day(int day) {
  return std::chrono::sys_days(std::chrono::year(2026) / 3 / 1) + std::chrono::days(day);
}

class StoreOnSandbox : public testing::SandboxTest {
 protected:
  app::ControllerConfig Config(const std::vector<std::string>& connectTo) const {
    app::ControllerConfig config{
        .profile = sites::CompiledProfile(), .net = SandboxNetOptions(), .cacheFolder = m_cache.path()};
    config.net.connectTo = connectTo;
    config.queryEndsWithLastJob = true;
    return config;
  }
  std::unique_ptr<ResearchStore> Open() {
    base::Outcome opened;
    auto store = ResearchStore::Open(m_cache / "research.sqlite", {}, opened);
    EXPECT_TRUE(opened) << opened.error;
    return store;
  }

  testing::TempFolder m_cache;
};

TEST_F(StoreOnSandbox, TheAuctionTrendOfTwoDaysMatchesTheTwoRecordedLists) {
  std::string error;
  const auto dayOne =
      standin::SandboxProcess::Start({GAVELSCOPE_SANDBOX_PYTHON, GAVELSCOPE_SANDBOX_SCRIPT, {"--day", "1"}}, error);
  ASSERT_TRUE(dayOne) << error;
  const SnapshotData first = SiteRun(Config(Sandbox().connectTo())).Snapshot(Site::UK, Day(0));
  const SnapshotData last = SiteRun(Config(dayOne->connectTo())).Snapshot(Site::UK, Day(1));
  ASSERT_EQ(first.auctions.size(), 330U);
  ASSERT_EQ(last.auctions.size(), 330U);
  auto store = Open();
  std::int64_t id = 0;
  ASSERT_TRUE(store->Record(first, id));
  ASSERT_TRUE(store->Record(last, id));

  std::map<std::string, std::pair<std::optional<long>, std::optional<long>>> counts;  // by link
  for (const AuctionCount& row : first.auctions) counts[row.link].first = row.count;
  for (const AuctionCount& row : last.auctions) counts[row.link].second = row.count;
  AuctionTrend trend;
  ASSERT_TRUE(store->TrendsAuctions(Site::UK, std::nullopt, std::nullopt, trend));
  ASSERT_EQ(trend.rows.size(), counts.size());
  long changed = 0;
  for (const AuctionTrendRow& row : trend.rows) {
    const auto& [was, is] = counts.at(row.link);
    EXPECT_EQ(std::tie(row.first, row.last), std::tie(was, is)) << row.auction;
    EXPECT_EQ(row.status, AuctionStatus::Kept) << row.auction;
    EXPECT_EQ(row.change, is.value_or(0) - was.value_or(0)) << row.auction;
    changed += row.change != 0 ? 1 : 0;
  }
  EXPECT_GT(changed, 300);
  EXPECT_TRUE(std::is_sorted(trend.rows.begin(), trend.rows.end(),
                             [](const auto& a, const auto& b) { return a.change > b.change; }));

  KeywordTrend keywords;
  ASSERT_TRUE(store->TrendsKeywords(Site::UK, keywords));
  ASSERT_FALSE(keywords.entered.empty());
  for (const KeywordPlace& place : keywords.entered) {
    EXPECT_EQ(last.keywords.at(place.position - 1), place.keyword);
    EXPECT_EQ(std::count(first.keywords.begin(), first.keywords.end(), place.keyword), 0);
  }
}

// A measurement rather than a test: run it with --gtest_also_run_disabled_tests on a Release build.
TEST_F(StoreOnSandbox, DISABLED_RecordingBothSitesAndATwentyCategoryQueryTakes) {
  SiteRun run(Config(Sandbox().connectTo()));
  ASSERT_TRUE(run.controller.Categories(Site::UK).ready.Wait({}));
  query::QueryDefinition settings;
  settings.pageDepth = 3;
  const auto& names = run.controller.Categories(Site::UK).arrCategoryNames;
  settings.categories.assign(names.begin(), names.begin() + std::min<std::size_t>(20, names.size()));
  run.controller.StartQuery(settings);
  ASSERT_TRUE(run.controller.QueryEnded().Wait({}));

  const auto started = std::chrono::steady_clock::now();
  SnapshotData usa = run.Snapshot(Site::USA, Day(0));
  SnapshotData uk = run.Snapshot(Site::UK, Day(0));
  uk.queries.push_back(QueryRecordingOf("twenty.sbqry", settings, run.controller.QueryResults().Rows()));
  const auto built = std::chrono::steady_clock::now();
  auto store = Open();
  const auto opened = std::chrono::steady_clock::now();
  std::int64_t id = 0;
  ASSERT_TRUE(store->Record(usa, id));
  ASSERT_TRUE(store->Record(uk, id));
  const auto recorded = std::chrono::steady_clock::now();
  const auto ms = [](auto duration) { return std::chrono::duration<double, std::milli>(duration).count(); };
  std::cout << "auction rows " << usa.auctions.size() + uk.auctions.size() << ", keywords "
            << usa.keywords.size() + uk.keywords.size() << ", query rows " << uk.queries[0].rows.size()
            << "\nbuilding the data " << ms(built - started) << " ms, opening (creating) the store "
            << ms(opened - built) << " ms, both Record calls " << ms(recorded - opened) << " ms\n";
}

}  // namespace
}  // namespace gavelscope::store
