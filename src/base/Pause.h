// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <chrono>
#include <stop_token>

namespace gavelscope::base {

// Waits for `pause` unless a stop is requested first; false when it was.
bool PauseUnlessStopped(std::chrono::milliseconds pause, std::stop_token stop);

}  // namespace gavelscope::base
