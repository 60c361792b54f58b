// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <vector>

namespace gavelscope::testing {

// What a fake was handed, from any thread, in order; a test can wait for the n-th item.
template <typename Item>
class Recorder {
 public:
  void Add(Item item) {
    {
      std::lock_guard lock(m_mutex);
      m_items.push_back(std::move(item));
    }
    m_arrived.notify_all();
  }
  std::vector<Item> All() const {
    std::lock_guard lock(m_mutex);
    return m_items;
  }
  // False after a generous limit, so that a broken test fails instead of hanging.
  bool WaitForCount(std::size_t count) const {
    std::unique_lock lock(m_mutex);
    return m_arrived.wait_for(lock, std::chrono::seconds(30), [&] { return m_items.size() >= count; });
  }

 private:
  mutable std::mutex m_mutex;
  mutable std::condition_variable m_arrived;
  std::vector<Item> m_items;
};

}  // namespace gavelscope::testing
