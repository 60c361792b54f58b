// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>

#include "base/UserMessages.h"

namespace gavelscope::ui {

// Message boxes for the core. On the window's thread a box waits for the user's answer; a worker's
// message is shown later on the window's thread and the worker goes on at once (workers only ever
// tell, they never ask).
class QtMessages : public QObject, public base::IUserMessages {
 public:
  explicit QtMessages(QWidget* parent) : QObject(parent), m_parent(parent) {}
  base::MessageReply Show(const base::UserMessage& message) override;
  // A file dialog owned by the window; it asks before overwriting an existing file.
  std::optional<std::filesystem::path> ChooseFile(const base::FileChoice& choice) override;
  // Where the next file dialog opens.
  const QString& lastFolder() const { return m_lastFolder; }

 private:
  QPointer<QWidget> m_parent;
  QString m_lastFolder;
};

}  // namespace gavelscope::ui
