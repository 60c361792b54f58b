// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <gtest/gtest.h>

#include <chrono>

#include "app/HeadlessMainView.h"
#include "app/RunController.h"
#include "store/Snapshot.h"
#include "support/RecordingBrowser.h"
#include "support/RecordingMessages.h"

namespace gavelscope::testing {

// One headless start-up run to its end (both Sites' keywords and auction counts loaded), and its lists
// as the research store records them.
struct SiteRun {
  explicit SiteRun(const app::ControllerConfig& config) : controller(config, view, messages, browser) {
    controller.Start();
    for (const app::Load load :
         {app::Load::KeywordsUK, app::Load::KeywordsUSA, app::Load::AuctionsUSA, app::Load::AuctionsUK}) {
      EXPECT_TRUE(controller.LoadDone(load).Wait({}));
    }
  }
  store::SnapshotData Snapshot(sites::Site site, std::chrono::sys_seconds time) {
    return store::SnapshotOf(site, time, controller.AuctionList(site).Rows(), controller.Tree(site));
  }
  app::HeadlessMainView view;
  RecordingMessages messages;
  RecordingBrowser browser;
  app::CRunController controller;
};

}  // namespace gavelscope::testing
