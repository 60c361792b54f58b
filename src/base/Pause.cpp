// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "base/Pause.h"

#include <condition_variable>
#include <mutex>

namespace gavelscope::base {

bool PauseUnlessStopped(std::chrono::milliseconds pause, std::stop_token stop) {
  if (pause.count() > 0) {
    std::mutex mutex;
    std::condition_variable_any never;
    std::unique_lock lock(mutex);
    never.wait_for(lock, stop, pause, [] { return false; });
  }
  return !stop.stop_requested();
}

}  // namespace gavelscope::base
