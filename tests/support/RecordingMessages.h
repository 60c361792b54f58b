// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <condition_variable>
#include <mutex>
#include <vector>

#include "app/UserMessages.h"

namespace gavelscope::testing {

// Records what the core tells the user; a test can wait for the n-th message from another thread.
class RecordingMessages : public app::IUserMessages {
 public:
  app::MessageReply Show(const app::UserMessage& message) override;
  // Answers with `chosenFile` (nothing = cancelled) and remembers what was asked.
  std::optional<std::filesystem::path> ChooseFile(const app::FileChoice& choice) override;

  std::vector<app::UserMessage> Messages() const;
  // Waits until `count` messages have arrived; false after a generous limit, so that a broken
  // test fails instead of hanging.
  bool WaitForCount(std::size_t count) const;

  app::MessageReply reply = app::MessageReply::Ok;
  std::optional<std::filesystem::path> chosenFile;
  std::vector<app::FileChoice> fileChoices;

 private:
  mutable std::mutex m_mutex;
  mutable std::condition_variable m_arrived;
  std::vector<app::UserMessage> m_messages;
};

}  // namespace gavelscope::testing
