// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "base/ReadinessEvent.h"

namespace gavelscope::base {

void ReadinessEvent::Set() {
  {
    std::lock_guard lock(m_mutex);
    m_set = true;
  }
  m_changed.notify_all();
}

void ReadinessEvent::Reset() {
  std::lock_guard lock(m_mutex);
  m_set = false;
}

bool ReadinessEvent::IsSet() const {
  std::lock_guard lock(m_mutex);
  return m_set;
}

bool ReadinessEvent::Wait(std::stop_token stop) const {
  std::unique_lock lock(m_mutex);
  return m_changed.wait(lock, stop, [this] { return m_set; });
}

bool ReadinessEvent::WaitFor(std::chrono::milliseconds limit) const {
  std::unique_lock lock(m_mutex);
  return m_changed.wait_for(lock, limit, [this] { return m_set; });
}

}  // namespace gavelscope::base
