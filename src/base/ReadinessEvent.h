// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <stop_token>

namespace gavelscope::base {

// A manual-reset event: once set it stays set until reset, and every wait meanwhile passes at once. Whatever a
// thread wrote before Set() is visible to a thread whose Wait() returned true.
class ReadinessEvent {
 public:
  void Set();
  void Reset();
  bool IsSet() const;
  // True once the event is set; false when a stop was requested first.
  bool Wait(std::stop_token stop) const;
  // True once the event is set; false when `limit` passed first.
  bool WaitFor(std::chrono::milliseconds limit) const;

 private:
  mutable std::mutex m_mutex;
  mutable std::condition_variable_any m_changed;
  bool m_set = false;
};

}  // namespace gavelscope::base
