// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <atomic>
#include <stop_token>
#include <thread>

namespace gavelscope::cli {

// Turns SIGINT and SIGTERM into a stop request, so that an interrupted command ends the way a
// finished one does: every thread stopped and joined, its working folder removed. A second signal
// ends the process at once. Construct it first in main, before any other thread exists: the two
// signals are blocked in the constructing thread and so in every thread started after it, and
// only this object's own thread takes them.
class SignalStop {
 public:
  SignalStop();
  ~SignalStop();
  SignalStop(const SignalStop&) = delete;
  SignalStop& operator=(const SignalStop&) = delete;

  std::stop_token token() const { return m_source.get_token(); }
  // The signal that stopped the command, 0 while none came.
  int caught() const { return m_caught.load(); }
  // The shell's convention: 128 plus the signal's number (130 for Ctrl-C, 143 for SIGTERM).
  int ExitStatus(int status) const { return caught() != 0 ? 128 + caught() : status; }

 private:
  void Watch();

  std::stop_source m_source;
  std::atomic<int> m_caught{0};
  int m_signalFd = -1;
  int m_wakeFd = -1;
  std::thread m_watcher;
};

}  // namespace gavelscope::cli
