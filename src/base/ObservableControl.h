// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <functional>
#include <mutex>

namespace gavelscope::base {

// The part every headless control shares: an observer told after each change, and a redraw switch
// with which a worker batches a fill. While redraw is off, changes are not told; switching it back
// on tells once. The observer runs on the changing thread, outside the control's lock; a window
// turns it into a queued repaint on its own thread.
class ObservableControl {
 public:
  void SetObserver(std::function<void()> observer);
  void SetRedraw(bool redraw);
  bool IsRedrawOn() const;

 protected:
  ObservableControl() = default;
  ~ObservableControl() = default;
  // Call after a change, without holding the control's own lock.
  void NotifyChanged();

 private:
  mutable std::mutex m_observerMutex;
  std::function<void()> m_observer;
  bool m_redraw = true;
};

}  // namespace gavelscope::base
