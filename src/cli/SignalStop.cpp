// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "cli/SignalStop.h"

#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>

namespace gavelscope::cli {

namespace {

sigset_t StopSignals() {
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, SIGINT);
  sigaddset(&set, SIGTERM);
  return set;
}

}  // namespace

SignalStop::SignalStop() {
  const sigset_t signals = StopSignals();
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  m_signalFd = signalfd(-1, &signals, SFD_CLOEXEC);
  m_wakeFd = eventfd(0, EFD_CLOEXEC);
  if (m_signalFd >= 0 && m_wakeFd >= 0) m_watcher = std::thread([this] { Watch(); });
}

SignalStop::~SignalStop() {
  if (m_watcher.joinable()) {
    const std::uint64_t one = 1;
    while (write(m_wakeFd, &one, sizeof one) < 0 && errno == EINTR) {
    }
    m_watcher.join();
  }
  if (m_signalFd >= 0) close(m_signalFd);
  if (m_wakeFd >= 0) close(m_wakeFd);
}

void SignalStop::Watch() {
  pollfd fds[2] = {{m_signalFd, POLLIN, 0}, {m_wakeFd, POLLIN, 0}};
  while (true) {
    if (poll(fds, 2, -1) < 0) {
      if (errno == EINTR) continue;
      return;
    }
    if ((fds[1].revents & POLLIN) != 0) return;
    signalfd_siginfo info{};
    if (read(m_signalFd, &info, sizeof info) != static_cast<ssize_t>(sizeof info)) continue;
    const int signal = static_cast<int>(info.ssi_signo);
    // A second signal means the user will not wait for the clean end.
    if (m_caught.exchange(signal) != 0) _exit(128 + signal);
    m_source.request_stop();
  }
}

}  // namespace gavelscope::cli
