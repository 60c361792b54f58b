// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
//
// The run controller on the sandbox: its count of completions and its refreshes, whole runs against
// servers that misbehave, closing while work is under way; and the pages counter of a controller never
// started. The window's commands are tested through the window.
#include "app/RunController.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <thread>

#include "app/HeadlessMainView.h"
#include "support/RecordingBrowser.h"
#include "support/RecordingMessages.h"
#include "support/SandboxFixture.h"
#include "support/TempFolder.h"

namespace gavelscope::app {
namespace {

using namespace std::chrono_literals;
using sites::Site;

struct Harness {
  explicit Harness(const ControllerConfig& config) : controller(config, view, messages, browser) {}
  HeadlessMainView view;
  testing::RecordingMessages messages;
  testing::RecordingBrowser browser;
  CRunController controller;
};

void WaitForLoads(CRunController& controller, std::initializer_list<Load> loads) {
  for (Load load : loads) EXPECT_TRUE(controller.LoadDone(load).Wait({}));
}

// The auction and history loads end on their own, after both start-up workers; with them the count is settled.
void WaitForSettledLoads(CRunController& controller) {
  WaitForLoads(controller, {Load::AuctionsUSA, Load::AuctionsUK, Load::HotItems});
}

class ControllerRun : public testing::SandboxTest {
 protected:
  static ControllerConfig Config(const std::filesystem::path& cache) {
    return {.profile = sites::CompiledProfile(), .net = SandboxNetOptions(), .cacheFolder = cache};
  }
  ControllerConfig Config() const { return Config(m_cache.path()); }
  // Every page of both sites, and their category lists, through the sandbox's fault `mode`.
  static void Spoil(ControllerConfig& config, const std::string& mode) {
    for (sites::SiteConfig* site : {&config.profile.usa, &config.profile.uk}) {
      site->listingRoot += "/_fault/" + mode + "/";
      site->categoryListPath = "/_fault/" + mode + site->categoryListPath;
    }
  }

  testing::TempFolder m_cache;
};

class RunControllerTest : public ControllerRun {
 protected:
  // The keyword lists never come.
  ControllerConfig Silenced() const {
    ControllerConfig config = Config();
    config.net.connectTo.insert(config.net.connectTo.begin(), m_silent.ConnectTo("www.gavelscope.example"));
    return config;
  }
  static std::unique_ptr<Harness> Started(const ControllerConfig& config) {
    auto run = std::make_unique<Harness>(config);
    run->controller.Start();
    WaitForSettledLoads(run->controller);
    return run;
  }

  testing::SilentServer m_silent;
};

TEST_F(RunControllerTest, TheBarTurnsRedAtTheSeventhCompletionAndARefreshWaitsUntilTheKeywordsAreIn) {
  const auto run = Started(Silenced());
  CRunController& controller = run->controller;
  const HeadlessMainView::State view = run->view.Snapshot();
  EXPECT_TRUE(view.visible[static_cast<int>(ViewId::TreeUSA)]);
  EXPECT_FALSE(view.visible[static_cast<int>(ViewId::TreeUK)]);
  EXPECT_EQ(view.stopButtonBitmap, kBitmapQueryIdle);
  EXPECT_TRUE(controller.IsRefreshing());
  EXPECT_FALSE(controller.RefreshDisplay());
  ASSERT_EQ(run->messages.Messages().size(), 1U);
  EXPECT_EQ(run->messages.Messages()[0].text, "System Is Already Refreshing Display");
  // Five completions are in; the seventh turns the bar red, an eighth changes nothing more.
  ASSERT_EQ(controller.FinishedLoads(), 5);
  for (int done = 5; done <= 8; ++done) {
    EXPECT_EQ(run->view.Snapshot().barColour, done < 7 ? kColourLoading : kColourLoaded) << done;
    EXPECT_EQ(run->view.Snapshot().waitCursor, done < 7 ? 1 : 0) << done;
    controller.OnThreadFinished();
  }
  controller.SetRefreshDone(true);
  EXPECT_TRUE(controller.RefreshDisplay());
  WaitForSettledLoads(controller);
  // The refresh counts the two start-up loads itself, the auction loads follow, and the bar is green again.
  EXPECT_EQ(controller.FinishedLoads(), 5);
  EXPECT_EQ(run->view.Snapshot().barColour, kColourLoading);
  EXPECT_FALSE(controller.RefreshDisplay());
  EXPECT_EQ(run->messages.Messages().size(), 2U);
}

TEST_F(RunControllerTest, RefreshLoadsBothCataloguesAgainWithoutDoubling) {
  const auto run = Started(Config());
  CRunController& controller = run->controller;
  WaitForLoads(controller, {Load::KeywordsUK, Load::KeywordsUSA});
  const std::size_t ukItems = controller.Tree(Site::UK).ItemCount();
  const std::size_t usaRows = controller.KeywordList(Site::USA).RowCount();
  const std::size_t auctionRows = controller.AuctionList(Site::UK).RowCount();
  // The sandbox's lists, whole: over thirty categories, and a Top 100 list.
  ASSERT_GT(ukItems, 31U);
  ASSERT_GT(usaRows, 10U);
  ASSERT_GT(auctionRows, 100U);
  EXPECT_EQ(controller.FinishedLoads(), 7);
  EXPECT_FALSE(controller.IsRefreshing());

  ASSERT_TRUE(controller.RefreshDisplay());
  WaitForLoads(controller, {Load::KeywordsUK, Load::KeywordsUSA});
  EXPECT_EQ(controller.Tree(Site::UK).ItemCount(), ukItems);
  EXPECT_EQ(controller.KeywordList(Site::USA).RowCount(), usaRows);
  // The auction threads of a refresh read the start-up's page at once: nothing is fetched again.
  WaitForSettledLoads(controller);
  EXPECT_EQ(controller.AuctionList(Site::UK).RowCount(), auctionRows);
  EXPECT_EQ(controller.FinishedLoads(), 7);
}

TEST_F(RunControllerTest, ShutdownRemovesTheDownloadedFilesOnly) {
  const std::pair<const char*, bool> files[] = {
      {"HotItemList.txt", false}, {"GavelscopeBanners.txt", false}, {"saved.sbqry", true}};
  for (auto [name, kept] : files) testing::WriteFileBytes(m_cache / name, "x");
  Started(Silenced())->controller.Shutdown();
  for (auto [name, kept] : files) EXPECT_EQ(std::filesystem::exists(m_cache / name), kept) << name;
}

TEST_F(RunControllerTest, PagesOffTheSitesAreNeverFetched) {
  ControllerConfig config = Silenced();
  config.net.connectTo.push_back("evil.example:80:127.0.0.1:" + std::to_string(Sandbox().PortFor("www.ebay.co.uk:80")));
  Harness run(config);
  EXPECT_EQ(run.controller.GetPageText(testing::TextUrl("cgi.ebay.co.uk", "item"), {}), "item");
  EXPECT_EQ(run.controller.GetPageText(testing::TextUrl("evil.example", "item"), {}), "");
  EXPECT_EQ(run.controller.GetPageText(testing::TextUrl("cgi.ebay.com@evil.example", "x"), {}), "");
}

// Whole runs against servers that misbehave: every page of a run spoilt one way, or the history's
// FTP transfer failing. A run still completes within the transfer time-outs, with empty or partial
// lists, and what one server does never reaches the lists another one fills.
struct RunCounts {
  std::size_t tree[2]{}, auctions[2]{}, history[2]{};  // by Site
  int finishedLoads = 0;
  std::chrono::steady_clock::duration took{};
};

class FaultRun : public ControllerRun, public ::testing::WithParamInterface<const char*> {
 protected:
  // A transfer that moves less than 1000 bytes a second for a second is given up.
  static ControllerConfig QuickConfig(const std::filesystem::path& cache) {
    ControllerConfig config = Config(cache);
    config.net.lowSpeedBytesPerSecond = 1000;
    config.net.lowSpeedTime = 1s;
    config.historyRetryPause = 10ms;
    return config;
  }

  static RunCounts Run(const ControllerConfig& config) {
    const auto started = std::chrono::steady_clock::now();
    Harness run(config);
    run.controller.Start();
    WaitForLoads(run.controller,
                 {Load::KeywordsUK, Load::KeywordsUSA, Load::AuctionsUSA, Load::AuctionsUK, Load::HotItems});
    RunCounts counts{.finishedLoads = run.controller.FinishedLoads(),
                     .took = std::chrono::steady_clock::now() - started};
    for (Site site : {Site::USA, Site::UK}) {
      const int s = static_cast<int>(site);
      counts.tree[s] = run.controller.Tree(site).ItemCount();
      counts.auctions[s] = run.controller.AuctionList(site).RowCount();
      counts.history[s] = run.controller.HotItemList(site).RowCount();
    }
    // A failing server is no reason for a message box, nor for a refresh to wait.
    EXPECT_TRUE(run.messages.Messages().empty());
    EXPECT_FALSE(run.controller.IsRefreshing());
    return counts;
  }

  // The same run with every server behaving, once per test program.
  static const RunCounts& Clean() {
    static const RunCounts clean = [] {
      testing::TempFolder cache;
      return Run(QuickConfig(cache.path()));
    }();
    return clean;
  }
};

using HttpFaults = FaultRun;

TEST_P(HttpFaults, ARunWhosePagesAreSpoiltCompletesWithEmptyOrPartialLists) {
  const std::string mode = GetParam();
  ControllerConfig config = QuickConfig(m_cache.path());
  Spoil(config, mode);
  const RunCounts& clean = Clean();
  ASSERT_GT(clean.tree[0], 100U);
  ASSERT_GT(clean.auctions[1], 10U);
  const RunCounts spoilt = Run(config);

  EXPECT_EQ(spoilt.finishedLoads, 7);
  // The half-answers of a broken connection, the drip and the silence end within the low-speed
  // limit: a second or so per transfer, not the 30 seconds of a real server's patience.
  EXPECT_LT(spoilt.took, 20s);
  const bool halfAnswered = mode == "cut" || mode == "reset";
  for (int s : {0, 1}) {
    // "Top 100 Keywords" always; of the categories, the lines that came whole.
    EXPECT_GE(spoilt.tree[s], halfAnswered ? 2U : 1U);
    EXPECT_LT(spoilt.tree[s], clean.tree[s]);
    // Of the auction counts, those of the half-answers only.
    EXPECT_LT(spoilt.auctions[s], halfAnswered ? clean.auctions[s] : 1U);
    // The history comes from the FTP server, which behaved.
    EXPECT_EQ(spoilt.history[s], clean.history[s]);
  }
}

INSTANTIATE_TEST_SUITE_P(EveryMode, HttpFaults, ::testing::Values("404", "500", "reset", "cut", "drip", "hang"));

using FtpFaults = FaultRun;

TEST_P(FtpFaults, AHistoryThatCannotBeFetchedLeavesBothListsEmptyAfterBoundedAttempts) {
  const std::string fault = GetParam();
  ControllerConfig config = QuickConfig(m_cache.path());
  if (fault == "LoginRefused") config.profile.vendor.ftp.password = "not the password";
  if (fault == "FileMissing") config.profile.vendor.historyFileName = "NoSuchList.txt";
  if (fault == "OutOfReach") {
    config.net.connectTo.insert(config.net.connectTo.begin(),
                                "ftp.gavelscope.example:21:127.0.0.1:" + std::to_string(testing::ClosedLoopbackPort()));
  }
  if (fault == "DroppedMidTransfer") {
    testing::WriteFileBytes(Sandbox().ftpRoot() / "drop-HotItemList.txt",
                            testing::ReadFileBytes(Sandbox().ftpRoot() / "HotItemList.txt"));
    config.profile.vendor.historyFileName = "drop-HotItemList.txt";
  }
  const RunCounts& clean = Clean();
  ASSERT_GT(clean.history[0] + clean.history[1], 10U);
  const RunCounts failed = Run(config);

  EXPECT_EQ(failed.finishedLoads, 7);
  // A half-downloaded history is never shown as if it were the whole one.
  EXPECT_EQ(failed.history[0] + failed.history[1], 0U);
  EXPECT_FALSE(std::filesystem::exists(m_cache.path() / config.profile.vendor.historyFileName));
  // Thirty attempts 10 ms apart, then the run goes on; the sites' lists are as usual.
  EXPECT_LT(failed.took, 20s);
  EXPECT_EQ(failed.tree[0], clean.tree[0]);
  EXPECT_EQ(failed.auctions[1], clean.auctions[1]);
}

INSTANTIATE_TEST_SUITE_P(EveryFault, FtpFaults,
                         ::testing::Values("LoginRefused", "FileMissing", "DroppedMidTransfer", "OutOfReach"),
                         [](const auto& info) { return std::string(info.param); });

// Closing while work is under way, fifty times for each kind of work: every stop and join ends
// within two seconds, whatever the threads were doing, and the sanitizers see nothing.
class ShutdownUnderLoad : public ControllerRun {
 protected:
  static void ExpectQuickShutdowns(const ControllerConfig& config, const std::function<void(CRunController&)>& busy) {
    for (int round = 0; round < 50; ++round) {
      auto run = std::make_unique<Harness>(config);
      run->controller.Start();
      busy(run->controller);
      const auto closing = std::chrono::steady_clock::now();
      run->controller.Shutdown();
      run.reset();
      ASSERT_LT(std::chrono::steady_clock::now() - closing, 2s) << "round " << round;
    }
  }
};

TEST_F(ShutdownUnderLoad, DuringStartUp) {
  ExpectQuickShutdowns(Config(), [](CRunController&) {});
}

TEST_F(ShutdownUnderLoad, DuringARefresh) {
  // A refresh waits for the keyword loads of the run before it, which read their lists at a
  // measured pace; short lists keep fifty rounds short.
  std::string list;
  for (int line = 0; line < 20; ++line) list += "~CAT~C" + std::to_string(line) + "~|~L~|~\r\n";
  ControllerConfig config = Config();
  config.profile.vendor.webServer = testing::TextUrl("www.gavelscope.example", list);
  config.profile.usa.categoryListPath = config.profile.uk.categoryListPath = "";
  ExpectQuickShutdowns(config, [](CRunController& controller) {
    for (Load load : {Load::KeywordsUSA, Load::KeywordsUK}) controller.LoadDone(load).Wait({});
    EXPECT_TRUE(controller.RefreshDisplay());
  });
}

TEST_F(ShutdownUnderLoad, DuringAQuery) {
  ExpectQuickShutdowns(Config(), [](CRunController& controller) {
    ASSERT_TRUE(controller.Categories(Site::USA).ready.Wait({}));
    query::QueryDefinition query;
    query.site = Site::USA;
    query.pageDepth = 3;
    query.categories = controller.Categories(Site::USA).arrCategoryNames;
    controller.StartQuery(query);
    EXPECT_TRUE(controller.IsQueryAlive());
  });
}

class ShutdownWhileEveryPage : public ShutdownUnderLoad, public ::testing::WithParamInterface<const char*> {};

TEST_P(ShutdownWhileEveryPage, DripsOrNeverAnswers) {
  ControllerConfig config = Config();
  Spoil(config, GetParam());
  // The start-up workers are inside their transfers once the history is loaded.
  ExpectQuickShutdowns(config, [](CRunController& controller) { controller.LoadDone(Load::HotItems).Wait({}); });
}

INSTANTIATE_TEST_SUITE_P(Slow, ShutdownWhileEveryPage, ::testing::Values("drip", "hang"));

// A controller that is never started: four threads count pages at once, after a text that is no number.
TEST(IdleController, ThePagesCounterLosesNoCountAndReadsTextThatIsNoNumberAsNought) {
  testing::TempFolder cache;
  Harness run({.profile = sites::CompiledProfile(), .net = {}, .cacheFolder = cache.path()});
  run.controller.IncrementPagesSearched();
  run.controller.SetPagesSearchedText("Searching !");
  const auto count = [&] {
    for (int i = 0; i < 250; ++i) run.controller.IncrementPagesSearched();
  };
  { std::jthread a(count), b(count), c(count), d(count); }
  EXPECT_EQ(run.view.Snapshot().editText[static_cast<int>(ViewId::PagesSearched)], "1000");
}

}  // namespace
}  // namespace gavelscope::app
