// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <stop_token>
#include <thread>
#include <utility>

namespace gavelscope::base {

// A thread of a window's own that does the newest job handed to it. A job handed while an earlier
// one still waits takes its place: only the newest state is worth reading. The object going stops
// and joins the thread, after the job under way; declare it after everything the work reads.
template <typename Job>
class LatestJobThread {
 public:
  using Work = std::function<void(Job job, std::stop_token stop)>;

  explicit LatestJobThread(Work work)
      : m_work(std::move(work)), m_thread([this](std::stop_token stop) { Run(std::move(stop)); }) {}
  LatestJobThread(const LatestJobThread&) = delete;
  LatestJobThread& operator=(const LatestJobThread&) = delete;

  void Hand(Job job) {
    Hand([&job](const std::optional<Job>&) { return std::move(job); });
  }
  // `replace(waiting)` gives the job to wait, from the one waiting now (none when nothing waits):
  // what that one must not lose is kept that way.
  template <typename Replace>
  void Hand(Replace replace) {
    {
      std::lock_guard lock(m_mutex);
      m_pending = replace(m_pending);
    }
    m_wake.notify_one();
  }

 private:
  void Run(std::stop_token stop) {
    for (;;) {
      std::optional<Job> job;
      {
        std::unique_lock lock(m_mutex);
        if (!m_wake.wait(lock, stop, [this] { return m_pending.has_value(); })) return;
        job.swap(m_pending);
      }
      m_work(std::move(*job), stop);
    }
  }

  Work m_work;
  std::mutex m_mutex;
  std::condition_variable_any m_wake;
  std::optional<Job> m_pending;
  std::jthread m_thread;  // last: started once the members above exist
};

}  // namespace gavelscope::base
