// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "base/ThreadOwner.h"

#include <system_error>

namespace gavelscope::base {

ThreadOwner::~ThreadOwner() {
  StopAndJoinAll();
}

bool ThreadOwner::Start(std::function<void(std::stop_token)> job) {
  std::lock_guard lock(m_mutex);
  if (m_closed) return false;
  ReapFinishedLocked();
  auto finished = std::make_shared<std::atomic<bool>>(false);
  try {
    std::jthread thread([job = std::move(job), finished](std::stop_token stop) {
      job(std::move(stop));
      finished->store(true);
    });
    m_workers.push_back(Worker{std::move(finished), std::move(thread)});
  } catch (const std::system_error&) {
    // At the process's thread limit: the job is not run, and the caller hears so.
    return false;
  }
  return true;
}

void ThreadOwner::ReapFinishedLocked() {
  // A finished job's thread is past its last line, so these joins return at once.
  m_workers.remove_if([](const Worker& worker) { return worker.finished->load(); });
}

void ThreadOwner::StopAndJoinAll() {
  std::list<Worker> workers;
  {
    std::lock_guard lock(m_mutex);
    m_closed = true;
    workers.swap(m_workers);
  }
  // Stop all first, then join: the threads wind down side by side, not one after another.
  for (Worker& worker : workers) worker.thread.request_stop();
  for (Worker& worker : workers) {
    if (worker.thread.joinable() && worker.thread.get_id() != std::this_thread::get_id()) worker.thread.join();
  }
  // A worker that shuts its own owner down cannot join itself; its jthread is detached instead of
  // being destroyed joinable.
  for (Worker& worker : workers) {
    if (worker.thread.joinable()) worker.thread.detach();
  }
}

std::size_t ThreadOwner::RunningCount() const {
  std::lock_guard lock(m_mutex);
  std::size_t running = 0;
  for (const Worker& worker : m_workers) running += worker.finished->load() ? 0 : 1;
  return running;
}

}  // namespace gavelscope::base
