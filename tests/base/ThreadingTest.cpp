// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include <gtest/gtest.h>

#include <atomic>

#include "base/ReadinessEvent.h"
#include "base/ThreadOwner.h"

namespace gavelscope::base {
namespace {

TEST(ThreadOwner, StopWakesWaitersAndJoinsThem) {
  ReadinessEvent never;
  std::atomic<int> woken{0};
  ThreadOwner owner;
  for (int i = 0; i < 3; ++i) {
    ASSERT_TRUE(owner.Start([&](std::stop_token stop) {
      if (!never.Wait(stop)) ++woken;
    }));
  }
  owner.StopAndJoinAll();
  EXPECT_EQ(woken.load(), 3);
  EXPECT_EQ(owner.RunningCount(), 0U);
  // Nothing new starts once the owner has shut down.
  EXPECT_FALSE(owner.Start([](std::stop_token) {}));
}

}  // namespace
}  // namespace gavelscope::base
