// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <atomic>

#include "base/RunEvents.h"

namespace gavelscope::testing {

// Counts what an analysis thread reports to the run controller.
class RecordingRunEvents : public base::IRunEvents {
 public:
  void StepProgress() override { ++steps; }
  void SetRefreshDone(bool done) override { refreshDone = done; }
  void RedrawWindow() override {}
  void OnThreadFinished() override { ++finished; }

  std::atomic<int> steps{0};
  std::atomic<bool> refreshDone{false};
  std::atomic<int> finished{0};
};

}  // namespace gavelscope::testing
