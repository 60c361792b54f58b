// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <vector>

#include "base/UserMessages.h"

namespace gavelscope::testing {

// Records what the core tells the user; a test can wait for the n-th message from another thread.
class RecordingMessages : public base::IUserMessages {
 public:
  base::MessageReply Show(const base::UserMessage& message) override {
    {
      std::lock_guard lock(m_mutex);
      m_messages.push_back(message);
    }
    m_arrived.notify_all();
    return reply;
  }
  // Answers with `chosenFile` (nothing = cancelled) and remembers what was asked.
  std::optional<std::filesystem::path> ChooseFile(const base::FileChoice& choice) override {
    std::lock_guard lock(m_mutex);
    fileChoices.push_back(choice);
    return chosenFile;
  }

  std::vector<base::UserMessage> Messages() const {
    std::lock_guard lock(m_mutex);
    return m_messages;
  }
  // Waits until `count` messages have arrived; false after a generous limit, so that a broken
  // test fails instead of hanging.
  bool WaitForCount(std::size_t count) const {
    std::unique_lock lock(m_mutex);
    return m_arrived.wait_for(lock, std::chrono::seconds(30), [&] { return m_messages.size() >= count; });
  }

  base::MessageReply reply = base::MessageReply::Ok;
  std::optional<std::filesystem::path> chosenFile;
  std::vector<base::FileChoice> fileChoices;

 private:
  mutable std::mutex m_mutex;
  mutable std::condition_variable m_arrived;
  std::vector<base::UserMessage> m_messages;
};

}  // namespace gavelscope::testing
