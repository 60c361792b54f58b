// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "app/HeadlessMainView.h"

namespace gavelscope::app {

namespace {

std::size_t Index(ViewId view) {
  return static_cast<std::size_t>(view);
}

}  // namespace

HeadlessMainView::State HeadlessMainView::Snapshot() const {
  std::lock_guard lock(m_mutex);
  return m_state;
}

void HeadlessMainView::ShowView(ViewId view, bool visible) {
  std::lock_guard lock(m_mutex);
  m_state.visible[Index(view)] = visible;
}

void HeadlessMainView::SetEditText(ViewId edit, const std::string& text) {
  std::lock_guard lock(m_mutex);
  m_state.editText[Index(edit)] = text;
}

void HeadlessMainView::SetProgressRange(int low, int high) {
  std::lock_guard lock(m_mutex);
  m_state.progressLow = low;
  m_state.progressHigh = high;
}

void HeadlessMainView::SetProgressStep(int step) {
  std::lock_guard lock(m_mutex);
  m_state.progressStep = step;
}

void HeadlessMainView::SetProgressPos(int pos) {
  std::lock_guard lock(m_mutex);
  m_state.progressPos = pos;
}

void HeadlessMainView::StepProgress() {
  std::lock_guard lock(m_mutex);
  // A progress bar's step wraps to the start once it passes the end.
  m_state.progressPos += m_state.progressStep;
  if (m_state.progressPos > m_state.progressHigh) m_state.progressPos = m_state.progressLow;
}

void HeadlessMainView::SetProgressBarColour(std::uint32_t colour) {
  std::lock_guard lock(m_mutex);
  m_state.barColour = colour;
}

void HeadlessMainView::SetProgressBackColour(std::uint32_t colour) {
  std::lock_guard lock(m_mutex);
  m_state.backColour = colour;
}

void HeadlessMainView::BeginWaitCursor() {
  std::lock_guard lock(m_mutex);
  ++m_state.waitCursor;
}

void HeadlessMainView::EndWaitCursor() {
  std::lock_guard lock(m_mutex);
  if (m_state.waitCursor > 0) --m_state.waitCursor;
}

void HeadlessMainView::SetStopButtonBitmap(int bitmap) {
  std::lock_guard lock(m_mutex);
  m_state.stopButtonBitmap = bitmap;
}

void HeadlessMainView::ShowWindow() {
  std::lock_guard lock(m_mutex);
  m_state.windowShown = true;
}

}  // namespace gavelscope::app
