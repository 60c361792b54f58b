// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "base/ObservableControl.h"

namespace gavelscope::base {

void ObservableControl::SetObserver(std::function<void()> observer) {
  std::lock_guard lock(m_observerMutex);
  m_observer = std::move(observer);
}

void ObservableControl::SetRedraw(bool redraw) {
  {
    std::lock_guard lock(m_observerMutex);
    m_redraw = redraw;
  }
  if (redraw) NotifyChanged();
}

bool ObservableControl::IsRedrawOn() const {
  std::lock_guard lock(m_observerMutex);
  return m_redraw;
}

void ObservableControl::NotifyChanged() {
  std::function<void()> observer;
  {
    std::lock_guard lock(m_observerMutex);
    if (!m_redraw) return;
    observer = m_observer;
  }
  if (observer) observer();
}

}  // namespace gavelscope::base
