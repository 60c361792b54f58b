// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "banner/PictureAnimation.h"

namespace gavelscope::banner {

CPictureAnimation::CPictureAnimation(std::vector<FrameTiming> frames, IPictureCanvas& canvas, std::uint32_t background)
    : m_frames(std::move(frames)), m_canvas(canvas), m_background(background) {}

std::optional<std::chrono::milliseconds> CPictureAnimation::HoldTime(std::uint32_t delay) {
  if (delay == 0xFFFFFFFF) return std::nullopt;
  if (delay < 5) return std::chrono::milliseconds(100);
  // Hundredths to milliseconds in 32 bits, as the delay field has always been read.
  return std::chrono::milliseconds(static_cast<std::uint32_t>(delay * 10u));
}

void CPictureAnimation::Resume() {
  if (m_current < m_frames.size()) Dispose(m_frames[m_current]);
}

std::optional<std::chrono::milliseconds> CPictureAnimation::ShowCurrent() {
  if (m_current >= m_frames.size()) return std::chrono::milliseconds(0);
  const FrameTiming& frame = m_frames[m_current];
  if (!frame.decoded) return std::chrono::milliseconds(0);
  if (frame.disposal == 3) m_canvas.SaveArea(frame.rect);
  m_canvas.RenderFrame(m_current, frame.rect);
  return HoldTime(frame.delay);
}

void CPictureAnimation::Advance() {
  if (m_frames.empty()) return;
  if (m_current < m_frames.size() && m_frames[m_current].decoded) Dispose(m_frames[m_current]);
  if (++m_current >= m_frames.size()) {
    m_current = 0;
    m_canvas.FillAll(m_background);
  }
}

void CPictureAnimation::Dispose(const FrameTiming& frame) {
  if (frame.disposal == 2) m_canvas.FillRect(frame.rect, m_background);
  if (frame.disposal == 3) m_canvas.RestoreSavedArea(frame.rect);
}

}  // namespace gavelscope::banner
