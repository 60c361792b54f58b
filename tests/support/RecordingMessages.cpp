// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "support/RecordingMessages.h"

#include <chrono>

namespace gavelscope::testing {

base::MessageReply RecordingMessages::Show(const base::UserMessage& message) {
  {
    std::lock_guard lock(m_mutex);
    m_messages.push_back(message);
  }
  m_arrived.notify_all();
  return reply;
}

std::optional<std::filesystem::path> RecordingMessages::ChooseFile(const base::FileChoice& choice) {
  std::lock_guard lock(m_mutex);
  fileChoices.push_back(choice);
  return chosenFile;
}

std::vector<base::UserMessage> RecordingMessages::Messages() const {
  std::lock_guard lock(m_mutex);
  return m_messages;
}

bool RecordingMessages::WaitForCount(std::size_t count) const {
  std::unique_lock lock(m_mutex);
  return m_arrived.wait_for(lock, std::chrono::seconds(30), [&] { return m_messages.size() >= count; });
}

}  // namespace gavelscope::testing
