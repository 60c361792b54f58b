// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
//
// Whole runs against servers that misbehave: every page of a run spoilt one way, or the history's
// FTP transfer failing. A run still completes within the transfer time-outs, with empty or partial
// lists, and what one server does never reaches the lists another one fills.
#include <gtest/gtest.h>

#include <chrono>

#include "app/HeadlessMainView.h"
#include "app/RunController.h"
#include "support/RecordingBrowser.h"
#include "support/RecordingMessages.h"
#include "support/SandboxFixture.h"
#include "support/TempFolder.h"

namespace gavelscope::app {
namespace {

using namespace std::chrono_literals;
using sites::Site;

struct RunCounts {
  std::size_t treeUSA = 0, treeUK = 0, auctionsUSA = 0, auctionsUK = 0, historyUSA = 0, historyUK = 0;
  int finishedLoads = 0;
  std::chrono::steady_clock::duration took{};
};

class FaultRun : public testing::SandboxTest, public ::testing::WithParamInterface<const char*> {
 protected:
  // A transfer that moves less than 1000 bytes a second for a second is given up.
  static ControllerConfig Config(const std::filesystem::path& cache) {
    ControllerConfig config{.profile = sites::CompiledProfile(), .net = SandboxNetOptions(), .cacheFolder = cache};
    config.net.lowSpeedBytesPerSecond = 1000;
    config.net.lowSpeedTime = 1s;
    config.historyRetryPause = 10ms;
    return config;
  }

  static RunCounts Run(const ControllerConfig& config) {
    HeadlessMainView view;
    testing::RecordingMessages messages;
    testing::RecordingBrowser browser;
    const auto started = std::chrono::steady_clock::now();
    CRunController controller(config, view, messages, browser);
    controller.Start();
    for (Load load : {Load::KeywordsUK, Load::KeywordsUSA, Load::AuctionsUSA, Load::AuctionsUK, Load::HotItems})
      EXPECT_TRUE(controller.LoadDone(load).Wait({}));
    RunCounts counts{controller.Tree(Site::USA).ItemCount(),
                     controller.Tree(Site::UK).ItemCount(),
                     controller.AuctionList(Site::USA).RowCount(),
                     controller.AuctionList(Site::UK).RowCount(),
                     controller.HotItemList(Site::USA).RowCount(),
                     controller.HotItemList(Site::UK).RowCount(),
                     controller.FinishedLoads(),
                     std::chrono::steady_clock::now() - started};
    // A failing server is no reason for a message box, nor for a refresh to wait.
    EXPECT_TRUE(messages.Messages().empty());
    EXPECT_FALSE(controller.IsRefreshing());
    return counts;
  }

  // The same run with every server behaving, once per test program.
  static const RunCounts& Clean() {
    static const RunCounts clean = [] {
      testing::TempFolder cache;
      return Run(Config(cache.path()));
    }();
    return clean;
  }

  testing::TempFolder m_cache;
};

using HttpFaults = FaultRun;

TEST_P(HttpFaults, ARunWhosePagesAreSpoiltCompletesWithEmptyOrPartialLists) {
  const std::string mode = GetParam();
  ControllerConfig config = Config(m_cache.path());
  for (sites::SiteConfig* site : {&config.profile.usa, &config.profile.uk}) {
    site->listingRoot += "/_fault/" + mode + "/";
    site->categoryListPath = "/_fault/" + mode + site->categoryListPath;
  }
  const RunCounts& clean = Clean();
  ASSERT_GT(clean.treeUSA, 100U);
  ASSERT_GT(clean.auctionsUK, 10U);
  const RunCounts spoilt = Run(config);

  EXPECT_EQ(spoilt.finishedLoads, 7);
  // The half-answers of a broken connection, the drip and the silence end within the low-speed
  // limit: a second or so per transfer, not the 30 seconds of a real server's patience.
  EXPECT_LT(spoilt.took, 20s);
  const bool halfAnswered = mode == "cut" || mode == "reset";
  for (auto [found, whole] : {std::pair{spoilt.treeUSA, clean.treeUSA}, std::pair{spoilt.treeUK, clean.treeUK}}) {
    // "Top 100 Keywords" always; of the categories, the lines that came whole.
    EXPECT_GE(found, halfAnswered ? 2U : 1U);
    EXPECT_LT(found, whole);
  }
  // Of the auction counts, those of the half-answers only.
  for (auto [found, whole] :
       {std::pair{spoilt.auctionsUSA, clean.auctionsUSA}, std::pair{spoilt.auctionsUK, clean.auctionsUK}}) {
    EXPECT_LT(found, halfAnswered ? whole : 1U);
  }
  // The history comes from the FTP server, which behaved.
  EXPECT_EQ(spoilt.historyUSA, clean.historyUSA);
  EXPECT_EQ(spoilt.historyUK, clean.historyUK);
}

INSTANTIATE_TEST_SUITE_P(EveryMode, HttpFaults, ::testing::Values("404", "500", "reset", "cut", "drip", "hang"));

using FtpFaults = FaultRun;

TEST_P(FtpFaults, AHistoryThatCannotBeFetchedLeavesBothListsEmptyAfterBoundedAttempts) {
  const std::string fault = GetParam();
  ControllerConfig config = Config(m_cache.path());
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
  ASSERT_GT(clean.historyUSA + clean.historyUK, 10U);
  const RunCounts failed = Run(config);

  EXPECT_EQ(failed.finishedLoads, 7);
  // A half-downloaded history is never shown as if it were the whole one.
  EXPECT_EQ(failed.historyUSA, 0U);
  EXPECT_EQ(failed.historyUK, 0U);
  EXPECT_FALSE(std::filesystem::exists(m_cache.path() / config.profile.vendor.historyFileName));
  // Thirty attempts 10 ms apart, then the run goes on; the sites' lists are as usual.
  EXPECT_LT(failed.took, 20s);
  EXPECT_EQ(failed.treeUSA, clean.treeUSA);
  EXPECT_EQ(failed.auctionsUK, clean.auctionsUK);
}

INSTANTIATE_TEST_SUITE_P(EveryFault, FtpFaults,
                         ::testing::Values("LoginRefused", "FileMissing", "DroppedMidTransfer", "OutOfReach"),
                         [](const auto& info) { return std::string(info.param); });

}  // namespace
}  // namespace gavelscope::app
