// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "banner/PictureAnimation.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace gavelscope::banner {
namespace {

using std::chrono::milliseconds;

// Records every drawing step as a short text.
class RecordingCanvas : public IPictureCanvas {
 public:
  void RenderFrame(std::size_t frame, const FrameRect&) override { steps.push_back("draw " + std::to_string(frame)); }
  void FillRect(const FrameRect& rect, std::uint32_t) override {
    steps.push_back("clear " + std::to_string(rect.left) + "," + std::to_string(rect.top));
  }
  void FillAll(std::uint32_t) override { steps.push_back("clear all"); }
  void SaveArea(const FrameRect&) override { steps.push_back("save"); }
  void RestoreSavedArea(const FrameRect&) override { steps.push_back("restore"); }
  std::vector<std::string> steps;
};

FrameTiming Frame(std::uint32_t delay, int disposal, int left = 0) {
  return FrameTiming{delay, disposal, FrameRect{left, 0, 1, 1}, true};
}

TEST(PictureAnimation, DelaysUnderFiveHundredthsHoldATenthOfASecondAndNoTimingHoldsUntilStopped) {
  for (const auto& [delay, hold] : {std::pair{0, 100}, {4, 100}, {5, 50}, {50, 500}}) {
    EXPECT_EQ(CPictureAnimation::HoldTime(delay), milliseconds(hold)) << delay;
  }
  EXPECT_EQ(CPictureAnimation::HoldTime(0xFFFFFFFF), std::nullopt);
}

TEST(PictureAnimation, DisposalsClearRestoreOrKeepAndEachRoundStartsClean) {
  RecordingCanvas canvas;
  CPictureAnimation animation({Frame(10, 2, 5), Frame(10, 3), Frame(10, 1)}, canvas, 0);
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(animation.ShowCurrent(), milliseconds(100));
    animation.Advance();
  }
  EXPECT_EQ(canvas.steps, (std::vector<std::string>{"draw 0", "clear 5,0", "save", "draw 1", "restore", "draw 2",
                                                    "clear all", "draw 0", "clear 5,0"}));
}

TEST(PictureAnimation, UndecodedFramesArePassedOverAndAStoppedAnimationResumesAtItsFrame) {
  RecordingCanvas canvas;
  std::vector<FrameTiming> frames{Frame(10, 2), Frame(10, 2, 7), Frame(10, 0)};
  frames[0].decoded = false;
  CPictureAnimation animation(frames, canvas, 0);
  EXPECT_EQ(animation.ShowCurrent(), milliseconds(0));
  animation.Advance();
  animation.ShowCurrent();  // stopped while frame 1 shows
  animation.Resume();
  animation.ShowCurrent();
  EXPECT_EQ(animation.CurrentFrame(), 1U);
  EXPECT_EQ(canvas.steps, (std::vector<std::string>{"draw 1", "clear 7,0", "draw 1"}));
}

}  // namespace
}  // namespace gavelscope::banner
