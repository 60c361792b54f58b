// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

#include "base/Browser.h"

namespace gavelscope::testing {

// Remembers the pages it was asked to open instead of opening them.
class RecordingBrowser : public base::IBrowser {
 public:
  void OpenUrlInBrowser(std::string_view url) override {
    {
      std::lock_guard lock(m_mutex);
      m_opened.emplace_back(url);
    }
    m_arrived.notify_all();
  }
  // Waits until `count` pages were opened (from any thread); false after a generous limit.
  bool WaitForCount(std::size_t count) const {
    std::unique_lock lock(m_mutex);
    return m_arrived.wait_for(lock, std::chrono::seconds(30), [&] { return m_opened.size() >= count; });
  }
  std::vector<std::string> Opened() const {
    std::lock_guard lock(m_mutex);
    return m_opened;
  }

 private:
  mutable std::mutex m_mutex;
  mutable std::condition_variable m_arrived;
  std::vector<std::string> m_opened;
};

}  // namespace gavelscope::testing
