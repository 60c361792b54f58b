// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <atomic>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <stop_token>
#include <thread>

namespace gavelscope::base {

// Owns a changing set of worker threads: starts them, forgets the ones that have finished, and at
// the end stops and joins every one still running. Jobs must return soon after their stop token
// is triggered; everything they wait on in this code base wakes on it.
class ThreadOwner {
 public:
  ThreadOwner() = default;
  ~ThreadOwner();
  ThreadOwner(const ThreadOwner&) = delete;
  ThreadOwner& operator=(const ThreadOwner&) = delete;

  // False (and nothing started) once StopAndJoinAll has begun, or when no thread can be created.
  bool Start(std::function<void(std::stop_token)> job);
  void StopAndJoinAll();
  std::size_t RunningCount() const;

 private:
  struct Worker {
    std::shared_ptr<std::atomic<bool>> finished;
    std::jthread thread;
  };
  void ReapFinishedLocked();

  mutable std::mutex m_mutex;
  std::list<Worker> m_workers;
  bool m_closed = false;
};

}  // namespace gavelscope::base
