// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <array>
#include <mutex>

#include "app/MainView.h"

namespace gavelscope::app {

// The main window's state without a window: what the CLI runs with, and what tests read back.
class HeadlessMainView : public IMainView {
 public:
  struct State {
    std::array<bool, kViewCount> visible{};
    std::array<std::string, kViewCount> editText{};
    int progressLow = 0;
    int progressHigh = 100;
    int progressStep = 10;
    int progressPos = 0;
    std::uint32_t barColour = 0;
    std::uint32_t backColour = 0;
    int waitCursor = 0;
    int stopButtonBitmap = 0;
    bool windowShown = false;
  };

  State Snapshot() const;

  void ShowView(ViewId view, bool visible) override;
  void SetEditText(ViewId edit, const std::string& text) override;
  void SetProgressRange(int low, int high) override;
  void SetProgressStep(int step) override;
  void SetProgressPos(int pos) override;
  void StepProgress() override;
  void SetProgressBarColour(std::uint32_t colour) override;
  void SetProgressBackColour(std::uint32_t colour) override;
  void BeginWaitCursor() override;
  void EndWaitCursor() override;
  void SetStopButtonBitmap(int bitmap) override;
  void ShowWindow() override;
  void RepaintNow() override {}

 private:
  mutable std::mutex m_mutex;
  State m_state;
};

}  // namespace gavelscope::app
