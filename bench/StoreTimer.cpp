// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
//
// Times the research store, five runs each, medians printed:
//
//   gavelscope_store_timer year
//       a year of daily snapshots of 330 sub-categories and 100 keywords, made here; then
//       TrendsAuctions over all of them and GrowthHistory (the Trends page's 8 lines).
//   gavelscope_store_timer [--connect-to HOST:PORT:ADDR:PORT]... record
//       one start-up run against the servers named (bench/store.sh starts the sandbox) and a UK
//       query of 20 categories at page depth 3; then, into a new store each run, building the plain
//       data from the lists and the two Record calls of both Sites: the work beyond the network.
#include <stdlib.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <functional>
#include <iostream>
#include <string>
#include <vector>

#include "BenchSupport.h"
#include "app/HeadlessMainView.h"
#include "app/RunController.h"
#include "base/Browser.h"
#include "base/UserMessages.h"
#include "store/ResearchStore.h"

namespace {

using namespace gavelscope;
using bench::Quiet;
using bench::TempFolder;
using Clock = std::chrono::steady_clock;
using sites::Site;

double Milliseconds(Clock::duration d) {
  return std::chrono::duration<double, std::milli>(d).count();
}

// The middle of five runs of `call`, in milliseconds.
double Median(const std::function<void()>& call) {
  std::vector<double> times;
  for (int run = 0; run < 5; ++run) {
    const auto started = Clock::now();
    call();
    times.push_back(Milliseconds(Clock::now() - started));
  }
  std::sort(times.begin(), times.end());
  return times[2];
}

std::unique_ptr<store::ResearchStore> Open(const std::filesystem::path& file) {
  base::Outcome opened;
  auto research = store::ResearchStore::Open(file, {}, opened);
  if (!research) std::cerr << opened.error << '\n';
  return research;
}

bool Check(const base::Outcome& outcome) {
  if (!outcome) std::cerr << outcome.error << '\n';
  return outcome.ok;
}

int Year() {
  TempFolder folder;
  const std::filesystem::path file = folder.path / "research.sqlite";
  const auto research = Open(file);
  if (!research) return 1;
  const std::vector<std::string> keywords(100, "lego");
  for (int day = 0; day < 365; ++day) {
    store::SnapshotData snapshot{Site::UK, std::chrono::sys_days(std::chrono::year(2026) / 3 / 1) + std::chrono::days(day),
                                 {}, keywords, {}};
    for (long sub = 0; sub < 330; ++sub) {
      snapshot.auctions.push_back({"Sub " + std::to_string(sub), "http://listings.example/" + std::to_string(sub),
                                   std::to_string(day * sub), day * sub});
    }
    std::int64_t id = 0;
    if (!Check(research->Record(snapshot, id))) return 1;
  }
  store::AuctionTrend trend;
  store::AuctionHistory history;
  bool ok = true;
  const double trends = Median([&] { ok &= Check(research->TrendsAuctions(Site::UK, {}, {}, trend)); });
  const double lines = Median([&] { ok &= Check(research->GrowthHistory(Site::UK, 8, history)); });
  std::cout << "TrendsAuctions: " << trend.snapshots << " snapshots, " << trend.rows.size() << " rows, median "
            << trends << " ms (" << std::filesystem::file_size(file) / 1024 << " KiB)\nGrowthHistory: "
            << history.series.size() << " lines through " << history.times.size() << " snapshots, median " << lines
            << " ms\n";
  return ok ? 0 : 1;
}

int Record(const net::NetOptions& options) {
  TempFolder folder;
  app::HeadlessMainView view;
  Quiet quiet;
  app::CRunController controller({.profile = sites::CompiledProfile(), .net = options, .cacheFolder = folder.path,
                                  .queryEndsWithLastJob = true},
                                 view, quiet, quiet);
  controller.Start();
  for (const app::Load load :
       {app::Load::KeywordsUK, app::Load::KeywordsUSA, app::Load::AuctionsUSA, app::Load::AuctionsUK}) {
    controller.LoadDone(load).Wait({});
  }
  controller.Categories(Site::UK).ready.Wait({});
  query::QueryDefinition settings;
  settings.site = Site::UK;
  settings.pageDepth = 3;
  const auto& names = controller.Categories(Site::UK).arrCategoryNames;
  settings.categories.assign(names.begin(), names.begin() + static_cast<std::ptrdiff_t>(std::min<std::size_t>(20, names.size())));
  controller.StartQuery(settings);
  controller.QueryEnded().Wait({});

  std::vector<store::SnapshotData> snapshots;
  int run = 0;
  bool ok = true;
  const double built = Median([&] {
    snapshots.clear();
    for (const Site site : {Site::USA, Site::UK}) {
      snapshots.push_back(
          store::SnapshotOf(site, store::NowUtc(), controller.AuctionList(site).Rows(), controller.Tree(site)));
    }
    snapshots.back().queries.push_back(
        store::QueryRecordingOf("twenty.sbqry", settings, controller.QueryResults().Rows()));
  });
  const double recorded = Median([&] {
    const auto research = Open(folder.path / ("research-" + std::to_string(++run) + ".sqlite"));
    std::int64_t id = 0;
    ok &= research && Check(research->Record(snapshots[0], id)) && Check(research->Record(snapshots[1], id));
  });
  controller.Shutdown();
  std::cout << "auction rows " << snapshots[0].auctions.size() + snapshots[1].auctions.size() << ", keywords "
            << snapshots[0].keywords.size() + snapshots[1].keywords.size() << ", query rows "
            << snapshots[1].queries[0].rows.size() << "\nbuilding the data: median " << built
            << " ms; creating a store and both Record calls: median " << recorded << " ms\n";
  return ok ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  net::NetOptions options;
  std::vector<std::string> args(argv + 1, argv + argc);
  std::size_t i = 0;
  for (; i + 1 < args.size() && args[i] == "--connect-to"; i += 2) options.connectTo.push_back(args[i + 1]);
  if (i + 1 == args.size() && args[i] == "year") return Year();
  if (i + 1 == args.size() && args[i] == "record") return Record(options);
  std::cerr << "usage: gavelscope_store_timer year | gavelscope_store_timer [--connect-to HOST:PORT:ADDR:PORT]... "
               "record\n";
  return 2;
}
