// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "app/InstanceGuard.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>

namespace gavelscope::app {

namespace {

constexpr const char* kLockName = "{11CD2775-4EA9-4CAA-B9E0-2342DA372CA0}.lock";

}  // namespace

InstanceGuard::InstanceGuard(const std::filesystem::path& folder) {
  std::error_code ignored;
  std::filesystem::create_directories(folder, ignored);
  m_fd = open((folder / kLockName).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  // A folder we cannot write to gives no guard rather than no program.
  if (m_fd < 0) return;
  if (flock(m_fd, LOCK_EX | LOCK_NB) != 0) {
    m_anotherRunning = errno == EWOULDBLOCK;
    close(m_fd);
    m_fd = -1;
  }
}

InstanceGuard::~InstanceGuard() {
  if (m_fd >= 0) close(m_fd);
}

}  // namespace gavelscope::app
