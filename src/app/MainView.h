// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <cstdint>
#include <string>

namespace gavelscope::app {

// The named views of the main window that the controller shows, hides or writes to.
enum class ViewId {
  TreeUK,
  TreeUSA,
  KeywordsUK,
  KeywordsUSA,
  AuctionsUSA,
  AuctionsUK,
  HotItemsUSA,
  HotItemsUK,
  StopQueryButton,
  QueryResults,
  PagesSearched,
  FlagUSA,
  FlagUK,
  Search,
  Banner,
  Progress,
};

inline constexpr int kViewCount = static_cast<int>(ViewId::Progress) + 1;

// Colours are Windows colour values, 0x00BBGGRR.
inline constexpr std::uint32_t kColourLoading = 0x1BC28C;
inline constexpr std::uint32_t kColourLoaded = 0x0000FF;
inline constexpr std::uint32_t kColourWhite = 0xFFFFFF;

inline constexpr int kBitmapQueryRunning = 155;
inline constexpr int kBitmapQueryIdle = 156;

// The window operations the run controller needs. Called from any thread: the window implements them
// by queueing the change to its own thread; a build without the window records them.
class IMainView {
 public:
  virtual ~IMainView() = default;
  virtual void ShowView(ViewId view, bool visible) = 0;
  virtual void SetEditText(ViewId edit, const std::string& text) = 0;
  virtual void SetProgressRange(int low, int high) = 0;
  virtual void SetProgressStep(int step) = 0;
  virtual void SetProgressPos(int pos) = 0;
  virtual void StepProgress() = 0;
  virtual void SetProgressBarColour(std::uint32_t colour) = 0;
  virtual void SetProgressBackColour(std::uint32_t colour) = 0;
  // A counter: the wait cursor shows while more begins than ends have been seen.
  virtual void BeginWaitCursor() = 0;
  virtual void EndWaitCursor() = 0;
  virtual void SetStopButtonBitmap(int bitmap) = 0;
  virtual void ShowWindow() = 0;
  virtual void RepaintNow() = 0;
};

}  // namespace gavelscope::app
