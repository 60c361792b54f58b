// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
//
// Closing while work is under way, fifty times for each kind of work: every stop and join ends
// within two seconds, whatever the threads were doing, and the sanitizers see nothing. (Stopping the
// banner rotation at any point is tested with the rotation.)
#include <gtest/gtest.h>

#include <chrono>
#include <functional>

#include "app/HeadlessMainView.h"
#include "app/RunController.h"
#include "net/PageFetcher.h"
#include "support/RecordingBrowser.h"
#include "support/RecordingMessages.h"
#include "support/SandboxFixture.h"
#include "support/TempFolder.h"

namespace gavelscope::app {
namespace {

using namespace std::chrono_literals;
using sites::Site;

constexpr int kRounds = 50;

class ShutdownUnderLoad : public testing::SandboxTest {
 protected:
  static ControllerConfig Config(const std::filesystem::path& cache) {
    ControllerConfig config;
    config.profile = sites::CompiledProfile();
    config.net = SandboxNetOptions();
    config.cacheFolder = cache;
    return config;
  }

  // Runs `busy` on a fresh controller, then shuts it down and says how long that took.
  static std::chrono::steady_clock::duration ShutdownAfter(const ControllerConfig& config,
                                                           const std::function<void(CRunController&)>& busy) {
    HeadlessMainView view;
    testing::RecordingMessages messages;
    testing::RecordingBrowser browser;
    auto controller = std::make_unique<CRunController>(config, view, messages, browser);
    controller->Start();
    busy(*controller);
    const auto closing = std::chrono::steady_clock::now();
    controller->Shutdown();
    controller.reset();
    return std::chrono::steady_clock::now() - closing;
  }

  void ExpectQuickShutdowns(const ControllerConfig& config, const std::function<void(CRunController&)>& busy) {
    for (int round = 0; round < kRounds; ++round) {
      ASSERT_LT(ShutdownAfter(config, busy), 2s) << "round " << round;
    }
  }

  testing::TempFolder m_cache;
};

TEST_F(ShutdownUnderLoad, DuringStartUp) {
  ExpectQuickShutdowns(Config(m_cache.path()), [](CRunController&) {});
}

TEST_F(ShutdownUnderLoad, DuringASlowDownloadOfEveryPage) {
  ControllerConfig config = Config(m_cache.path());
  for (sites::SiteConfig* site : {&config.profile.usa, &config.profile.uk}) {
    site->listingRoot += "/_fault/drip/";
    site->categoryListPath = "/_fault/drip" + site->categoryListPath;
  }
  ExpectQuickShutdowns(config, [](CRunController& controller) {
    // The start-up workers are inside their transfers once the categories are awaited.
    controller.LoadDone(Load::HotItems).Wait({});
  });
}

TEST_F(ShutdownUnderLoad, DuringARefresh) {
  // A refresh waits for the keyword loads of the run before it, which read their lists at a
  // measured pace; short lists keep fifty rounds short.
  ControllerConfig config = Config(m_cache.path());
  net::SharedSession session(SandboxNetOptions());
  for (sites::SiteConfig* site : {&config.profile.usa, &config.profile.uk}) {
    // Page text keeps each line's CR and loses its LF.
    const std::string list = session.GetPageText(config.profile.vendor.webServer + site->categoryListPath, {});
    std::string shortList;
    for (std::size_t start = 0, line = 0; line < 20; ++line) {
      const std::size_t end = list.find('\r', start);
      ASSERT_NE(end, std::string::npos);
      shortList += list.substr(start, end - start) + "\r\n";
      start = end + 1;
    }
    const std::string name = "short" + site->categoryListPath.substr(1);
    testing::WriteFileBytes(Sandbox().ftpRoot() / name, shortList);
    site->categoryListPath = "/_test/file?name=" + name;
  }
  ExpectQuickShutdowns(config, [](CRunController& controller) {
    controller.LoadDone(Load::KeywordsUSA).Wait({});
    controller.LoadDone(Load::KeywordsUK).Wait({});
    EXPECT_TRUE(controller.RefreshDisplay());
  });
}

TEST_F(ShutdownUnderLoad, DuringAQuery) {
  ExpectQuickShutdowns(Config(m_cache.path()), [](CRunController& controller) {
    ASSERT_TRUE(controller.Categories(Site::USA).ready.Wait({}));
    query::QuerySpec query;
    query.site = Site::USA;
    query.pageDepth = 3;
    query.categories = controller.Categories(Site::USA).arrCategoryNames;
    controller.StartQuery(query);
    EXPECT_TRUE(controller.IsQueryAlive());
  });
}

}  // namespace
}  // namespace gavelscope::app
