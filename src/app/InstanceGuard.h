// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <filesystem>

namespace gavelscope::app {

// Marks a running window program: holds an exclusive lock on a file in the per-user runtime folder
// for as long as it lives. The lock goes with the process, so a crashed instance never blocks the next.
class InstanceGuard {
 public:
  explicit InstanceGuard(const std::filesystem::path& folder);
  ~InstanceGuard();
  InstanceGuard(const InstanceGuard&) = delete;
  InstanceGuard& operator=(const InstanceGuard&) = delete;

  bool anotherInstanceRunning() const { return m_anotherRunning; }

 private:
  int m_fd = -1;
  bool m_anotherRunning = false;
};

}  // namespace gavelscope::app
