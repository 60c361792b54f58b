// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <vector>

namespace gavelscope::banner {

struct FrameRect {
  int left = 0;
  int top = 0;
  int width = 0;
  int height = 0;
  bool operator==(const FrameRect&) const = default;
};

// What the animation needs to know of one frame.
struct FrameTiming {
  std::uint32_t delay = 0xFFFFFFFF;  // hundredths of a second
  int disposal = 0;
  FrameRect rect;
  bool decoded = true;  // a frame the decoder refused is passed over
};

// The picture being composed: the window's off-screen buffer.
class IPictureCanvas {
 public:
  virtual ~IPictureCanvas() = default;
  virtual void RenderFrame(std::size_t frame, const FrameRect& rect) = 0;
  virtual void FillRect(const FrameRect& rect, std::uint32_t colour) = 0;
  virtual void FillAll(std::uint32_t colour) = 0;
  virtual void SaveArea(const FrameRect& rect) = 0;
  // Puts back what SaveArea kept; nothing when nothing was kept.
  virtual void RestoreSavedArea(const FrameRect& rect) = 0;
};

// Plays an animated picture frame by frame with the GIF disposal rules. It only composes and says
// how long each frame stays; a thread or a timer of the window does the waiting, which is why a
// stopped animation resumes where it was.
class CPictureAnimation {
 public:
  CPictureAnimation(std::vector<FrameTiming> frames, IPictureCanvas& canvas, std::uint32_t background);

  // Before (re)starting: disposes of the frame that was showing when the animation stopped.
  void Resume();
  // Draws the current frame and says how long it stays: nullopt means until the animation is
  // stopped (a frame without timing). A frame that could not be decoded stays for no time.
  std::optional<std::chrono::milliseconds> ShowCurrent();
  // After the wait: disposes of the current frame and moves to the next; after the last frame the
  // whole picture is cleared, so every round starts on a clean background.
  void Advance();

  std::size_t CurrentFrame() const { return m_current; }
  // How long a frame of this delay stays: delays under 5 hundredths show for 0.1 s.
  static std::optional<std::chrono::milliseconds> HoldTime(std::uint32_t delay);

 private:
  void Dispose(const FrameTiming& frame);

  std::vector<FrameTiming> m_frames;
  IPictureCanvas& m_canvas;
  std::uint32_t m_background;
  std::size_t m_current = 0;
};

}  // namespace gavelscope::banner
