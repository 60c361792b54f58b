// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
//
// Times the two whole loads whose figures the command-line program cannot give: the hot item history
// load on its own, and a query run from its start to its last job. Both run the core's own classes
// against servers named with --connect-to (the bench scripts start the sandbox):
//
//   gavelscope_run_timer [--connect-to HOST:PORT:ADDR:PORT]... history
//   gavelscope_run_timer [--connect-to HOST:PORT:ADDR:PORT]... query FILE.sbqry [--export FILE]
//
// The query run is the one gavelscope-cli's query command makes, but its scan jobs are looked at
// every millisecond instead of every 15 seconds, so the time is the run's and not the poll's.
#include <stdlib.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "BenchSupport.h"
#include "app/HeadlessMainView.h"
#include "app/RunController.h"
#include "base/Browser.h"
#include "base/PageSource.h"
#include "base/RunEvents.h"
#include "base/UserMessages.h"
#include "hotitems/ItemCompare.h"
#include "hotitems/ItemListCtrl.h"
#include "hotitems/LoadHotItemsThread.h"
#include "net/FtpClient.h"
#include "query/QueryFile.h"
#include "sites/SiteProfile.h"

namespace {

using namespace gavelscope;
using bench::Quiet;
using bench::TempFolder;
using Clock = std::chrono::steady_clock;

double Seconds(Clock::duration d) {
  return std::chrono::duration<double>(d).count();
}

// This process's own figure from /proc, in MB: VmHWM is the peak resident set, VmRSS the current one.
double StatusMegabytes(const std::string& field) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with(field + ":")) return std::stod(line.substr(field.size() + 1)) / 1024.0;
  }
  return -1;
}

int History(const net::NetOptions& options) {
  const sites::Profile profile = sites::CompiledProfile();
  const hotitems::DateOrder order = hotitems::DateOrderFromLocale();
  TempFolder folder;
  Quiet quiet;
  const double startMB = StatusMegabytes("VmRSS");

  // The download on its own first, so the figure below can be split into transfer and the rest.
  const Clock::time_point downloadStart = Clock::now();
  {
    net::FtpClient ftp(options, profile.vendor.ftp);
    if (!ftp.Connect({}) || !ftp.GetFile(profile.vendor.historyFileName, folder.path / "download-only.txt", {})) {
      std::cerr << "gavelscope_run_timer: the history download failed\n";
      return 1;
    }
  }
  const double download = Seconds(Clock::now() - downloadStart);
  const auto bytes = std::filesystem::file_size(folder.path / "download-only.txt");
  std::filesystem::remove(folder.path / "download-only.txt");

  hotitems::CItemListCtrl usa(hotitems::ItemListVariant::HistoryUSA, quiet, quiet, quiet, order);
  hotitems::CItemListCtrl uk(hotitems::ItemListVariant::HistoryUK, quiet, quiet, quiet, order);
  hotitems::CLoadHotItemsThread load(profile, options, folder.path, {usa, uk, quiet});
  const Clock::time_point start = Clock::now();
  load.Run({});
  const double total = Seconds(Clock::now() - start);
  std::printf("history load: %.3f s (download alone %.3f s, %.1f MB file), %zu USA rows + %zu UK rows\n", total, download,
              static_cast<double>(bytes) / 1e6, usa.RowCount(), uk.RowCount());
  std::printf("memory: peak resident %.1f MB, %.1f MB before the load\n", StatusMegabytes("VmHWM"), startMB);
  return usa.RowCount() + uk.RowCount() > 0 ? 0 : 1;
}

int Query(const net::NetOptions& options, const std::string& file, const std::string& exportFile) {
  query::QueryDefinition query;
  if (const base::Outcome loaded = query::LoadQueryFile(file, query); !loaded) {
    std::cerr << loaded.error << '\n';
    return 1;
  }
  TempFolder folder;
  app::ControllerConfig config;
  config.profile = sites::CompiledProfile();
  config.net = options;
  config.cacheFolder = folder.path;
  config.dateOrder = hotitems::DateOrderFromLocale();
  config.queryPollInterval = std::chrono::milliseconds(1);
  app::HeadlessMainView view;
  Quiet quiet;
  app::CRunController controller(config, view, quiet, quiet);
  controller.Start();
  // The start-up's own loads end first, so that the query has the servers to itself.
  for (app::Load load : {app::Load::KeywordsUK, app::Load::KeywordsUSA, app::Load::AuctionsUSA, app::Load::AuctionsUK,
                         app::Load::HotItems}) {
    controller.LoadDone(load).Wait({});
  }
  controller.Categories(query.site).ready.Wait({});
  const Clock::time_point start = Clock::now();
  controller.StartQuery(query);
  controller.QueryEnded().Wait({});
  const double total = Seconds(Clock::now() - start);
  const std::string pages = view.Snapshot().editText[static_cast<std::size_t>(app::ViewId::PagesSearched)];
  std::printf("query run: %.3f s, %s pages searched, %zu result rows\n", total, pages.c_str(),
              controller.QueryResults().RowCount());
  if (!exportFile.empty()) std::ofstream(exportFile, std::ios::binary) << controller.QueryResults().ExportText();
  controller.Shutdown();
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  net::NetOptions options;
  std::vector<std::string> args(argv + 1, argv + argc);
  std::size_t i = 0;
  for (; i + 1 < args.size() && args[i] == "--connect-to"; i += 2) options.connectTo.push_back(args[i + 1]);
  if (i < args.size() && args[i] == "history") return History(options);
  if (i + 1 < args.size() && args[i] == "query") {
    const std::string exportFile = i + 3 < args.size() && args[i + 2] == "--export" ? args[i + 3] : "";
    return Query(options, args[i + 1], exportFile);
  }
  std::cerr << "usage: gavelscope_run_timer [--connect-to HOST:PORT:ADDR:PORT]... history | query FILE.sbqry "
               "[--export FILE]\n";
  return 2;
}
