// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "app/InstanceGuard.h"

#include <gtest/gtest.h>

#include <optional>

#include "support/TempFolder.h"

namespace gavelscope::app {
namespace {

TEST(InstanceGuard, SecondInstanceSeesTheFirstUntilItEnds) {
  testing::TempFolder folder;
  std::optional<InstanceGuard> first(std::in_place, folder.path());
  EXPECT_FALSE(first->anotherInstanceRunning());
  EXPECT_TRUE(InstanceGuard(folder.path()).anotherInstanceRunning());
  // The refused second guard leaves the first one's claim intact.
  EXPECT_TRUE(InstanceGuard(folder.path()).anotherInstanceRunning());
  first.reset();
  EXPECT_FALSE(InstanceGuard(folder.path()).anotherInstanceRunning());
}

TEST(InstanceGuard, UnwritableFolderDoesNotBlockTheProgram) {
  EXPECT_FALSE(InstanceGuard("/proc/no-such-folder").anotherInstanceRunning());
}

}  // namespace
}  // namespace gavelscope::app
