// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
//
// How long the window's thread goes without running a 10 ms timer, during the window's full start-up
// and then during a query, in the real window (offscreen unless QT_QPA_PLATFORM says otherwise):
//
//   gavelscope_window_heartbeat [--connect-to HOST:PORT:ADDR:PORT]... [--query-tab | --insights] FILE.sbqry
//
// The start-up is timed from just before the window is shown until its loads have all come in; the
// query from its start until a second after "Search Complete", so that the result list's refresh
// counts. Each line printed is one phase: its length and the longest gap between two ticks.
//
// With --query-tab the window shows the query tab from the query's start, the result list drawn as
// it fills. With --insights the Insights window opens on it a quarter of a second into the query,
// and a third phase grows the result list to kInsightsRows rows, a batch of copies of the query's
// rows every 100 ms from another thread, until a second after the Insights window shows them all.
#include <stdlib.h>

#include <QApplication>
#include <QTimer>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "base/Browser.h"
#include "base/UserMessages.h"
#include "hotitems/ItemCompare.h"
#include "query/QueryFile.h"
#include "sites/SiteProfile.h"
#include "ui/InsightsWindow.h"
#include "ui/MainDialog.h"

namespace {

using namespace gavelscope;
using Clock = std::chrono::steady_clock;

constexpr int kTickMilliseconds = 10;
constexpr std::size_t kInsightsRows = 65000;
constexpr std::size_t kInsightsBatch = 5000;

double Milliseconds(Clock::duration d) {
  return std::chrono::duration<double, std::milli>(d).count();
}

// Answers every message at once, as a user who is not there; the query's last message ends the run.
class QuietMessages : public base::IUserMessages {
 public:
  base::MessageReply Show(const base::UserMessage& message) override {
    if (message.title == "Search Complete") searchComplete = true;
    return message.buttons == base::MessageButtons::YesNo ? base::MessageReply::Yes : base::MessageReply::Ok;
  }
  std::atomic<bool> searchComplete{false};
};

struct NoBrowser : base::IBrowser {
  void OpenUrlInBrowser(std::string_view) override {}
};

// The longest gap between two ticks of a timer on the window's thread, per phase.
class Heartbeat {
 public:
  Heartbeat() {
    m_timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&m_timer, &QTimer::timeout, [this] { Tick(); });
  }
  void Start() {
    m_last = m_phaseStart = Clock::now();
    m_longest = 0;
    m_timer.start(kTickMilliseconds);
  }
  void Tick() {
    const Clock::time_point now = Clock::now();
    m_longest = std::max(m_longest, Milliseconds(now - m_last));
    m_last = now;
  }
  // Ends the current phase with a tick of its own, prints it and starts the next.
  void EndPhase(const char* name) {
    Tick();
    std::printf("%s: %.0f ms, longest gap between %d ms ticks %.1f ms (stall %.1f ms)\n", name,
                Milliseconds(m_last - m_phaseStart), kTickMilliseconds, m_longest, m_longest - kTickMilliseconds);
    std::fflush(stdout);
    m_phaseStart = m_last;
    m_longest = 0;
  }

 private:
  QTimer m_timer;
  Clock::time_point m_last;
  Clock::time_point m_phaseStart;
  double m_longest = 0;
};

}  // namespace

int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  app::ControllerConfig config;
  config.profile = sites::CompiledProfile();
  std::string queryFile;
  bool queryTab = false;
  bool insights = false;
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    if (arg == "--connect-to" && i + 1 < argc) {
      config.net.connectTo.emplace_back(argv[++i]);
    } else if (arg == "--query-tab") {
      queryTab = true;
    } else if (arg == "--insights") {
      queryTab = insights = true;
    } else {
      queryFile = arg;
    }
  }
  query::QueryDefinition query;
  if (queryFile.empty() || !query::LoadQueryFile(queryFile, query)) {
    std::fprintf(stderr,
                 "usage: gavelscope_window_heartbeat [--connect-to HOST:PORT:ADDR:PORT]... [--query-tab | --insights] "
                 "FILE.sbqry\n");
    return 2;
  }
  std::string folder = (std::filesystem::temp_directory_path() / "gavelscope-heartbeat-XXXXXX").string();
  if (mkdtemp(folder.data()) == nullptr) return 1;
  config.cacheFolder = folder;
  config.dateOrder = hotitems::DateOrderFromLocale();

  QuietMessages messages;
  NoBrowser browser;
  Heartbeat heartbeat;
  int status = 0;
  {
    ui::CMainDialog window(config, &messages, &browser);
    QTimer queryWatch;
    QTimer growWatch;
    std::atomic<bool> grown{false};
    std::jthread grower;
    bool started = false;
    // The result list grown to kInsightsRows rows as a large query would, in batches from another
    // thread, while the Insights window follows it.
    const auto grow = [&] {
      grower = std::jthread([&](std::stop_token stop) {
        hotitems::CItemListCtrl& list = window.controller().QueryResults();
        const std::vector<hotitems::CItemListCtrl::RecordPtr> rows = list.Rows();
        for (std::size_t added = list.RowCount(); !rows.empty() && added < kInsightsRows && !stop.stop_requested();) {
          std::this_thread::sleep_for(std::chrono::milliseconds(100));
          list.SetRedraw(false);
          for (std::size_t i = 0; i < kInsightsBatch && added < kInsightsRows; ++i, ++added) {
            list.AppendRow(rows[added % rows.size()]);
          }
          list.SetRedraw(true);
        }
        grown = true;
      });
      QObject::connect(&growWatch, &QTimer::timeout, [&] {
        if (!grown || !window.insights()->IsCurrent()) return;
        growWatch.stop();
        QTimer::singleShot(1000, [&] {
          heartbeat.EndPhase("insights-rows");
          std::printf("insights: %s\n", window.insights()->caption().toStdString().c_str());
          application.quit();
        });
      });
      growWatch.start(50);
    };
    window.mainView().SetRunCompleteHandler([&] {
      if (started) return;
      started = true;
      heartbeat.EndPhase("start-up");
      if (queryTab) window.ViewFromTray(app::Tab::Query);
      // Opened as a key press opens it, a moment after the tab was chosen.
      if (insights) QTimer::singleShot(250, [&] { window.ShowInsights(); });
      // Started as the query dialog's Start Query starts it, once the start-up is in.
      window.StartQuery(query);
      QObject::connect(&queryWatch, &QTimer::timeout, [&] {
        if (!messages.searchComplete) return;
        queryWatch.stop();
        QTimer::singleShot(1000, [&] {
          heartbeat.EndPhase("query");
          std::printf("query results: %zu rows\n", window.controller().QueryResults().RowCount());
          if (insights) {
            grow();
          } else {
            application.quit();
          }
        });
      });
      queryWatch.start(50);
    });
    heartbeat.Start();
    window.show();
    window.Start(false);
    status = application.exec();
    window.controller().Shutdown();
  }
  std::filesystem::remove_all(folder);
  return status;
}
