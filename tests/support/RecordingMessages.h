// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <mutex>

#include "base/UserMessages.h"
#include "support/Recorder.h"

namespace gavelscope::testing {

// Records what the core tells the user, answering with `reply`, and what it asks to choose,
// answering with `chosenFile` (nothing = cancelled).
class RecordingMessages : public base::IUserMessages, public Recorder<base::UserMessage> {
 public:
  base::MessageReply Show(const base::UserMessage& message) override {
    Add(message);
    return reply;
  }
  std::optional<std::filesystem::path> ChooseFile(const base::FileChoice& choice) override {
    std::lock_guard lock(m_mutex);
    fileChoices.push_back(choice);
    return chosenFile;
  }
  std::vector<base::UserMessage> Messages() const { return All(); }

  base::MessageReply reply = base::MessageReply::Ok;
  std::optional<std::filesystem::path> chosenFile;
  std::vector<base::FileChoice> fileChoices;

 private:
  std::mutex m_mutex;
};

}  // namespace gavelscope::testing
