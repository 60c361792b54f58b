// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
//
// Closing while work is under way, fifty times for each kind of work: every stop and join ends
// within two seconds, whatever the threads were doing, and the sanitizers see nothing.
#include <gtest/gtest.h>

#include <chrono>
#include <functional>

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

class ShutdownUnderLoad : public testing::SandboxTest {
 protected:
  ControllerConfig Config() const {
    return {.profile = sites::CompiledProfile(), .net = SandboxNetOptions(), .cacheFolder = m_cache.path()};
  }

  // Each round runs `busy` on a fresh controller, then shuts it down.
  static void ExpectQuickShutdowns(const ControllerConfig& config, const std::function<void(CRunController&)>& busy) {
    for (int round = 0; round < 50; ++round) {
      HeadlessMainView view;
      testing::RecordingMessages messages;
      testing::RecordingBrowser browser;
      auto controller = std::make_unique<CRunController>(config, view, messages, browser);
      controller->Start();
      busy(*controller);
      const auto closing = std::chrono::steady_clock::now();
      controller->Shutdown();
      controller.reset();
      ASSERT_LT(std::chrono::steady_clock::now() - closing, 2s) << "round " << round;
    }
  }

  testing::TempFolder m_cache;
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
    query::QuerySpec query;
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
  for (sites::SiteConfig* site : {&config.profile.usa, &config.profile.uk}) {
    site->listingRoot += "/_fault/" + std::string(GetParam()) + "/";
    site->categoryListPath = "/_fault/" + std::string(GetParam()) + site->categoryListPath;
  }
  ExpectQuickShutdowns(config, [](CRunController& controller) {
    // The start-up workers are inside their transfers once the history is loaded.
    controller.LoadDone(Load::HotItems).Wait({});
  });
}

INSTANTIATE_TEST_SUITE_P(Slow, ShutdownWhileEveryPage, ::testing::Values("drip", "hang"));

}  // namespace
}  // namespace gavelscope::app
