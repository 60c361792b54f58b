// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "ui/QtMessages.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QStandardPaths>
#include <QThread>

#include "ui/ControlModels.h"
#include "ui/GuiThread.h"

namespace gavelscope::ui {

namespace {

QMessageBox::Icon IconOf(const base::UserMessage& message) {
  if (message.buttons == base::MessageButtons::YesNo) return QMessageBox::Question;
  switch (message.kind) {
    case base::MessageKind::Warning: return QMessageBox::Warning;
    case base::MessageKind::Error: return QMessageBox::Critical;
    case base::MessageKind::Information: break;
  }
  return QMessageBox::Information;
}

base::MessageReply Ask(QWidget* parent, const base::UserMessage& message) {
  QMessageBox box(IconOf(message), FromPageText(message.title), FromPageText(message.text),
      message.buttons == base::MessageButtons::YesNo ? (QMessageBox::Yes | QMessageBox::No) : QMessageBox::Ok, parent);
  if (message.systemModal) box.setWindowModality(Qt::ApplicationModal);
  const int pressed = box.exec();
  if (message.buttons == base::MessageButtons::Ok) return base::MessageReply::Ok;
  return pressed == QMessageBox::Yes ? base::MessageReply::Yes : base::MessageReply::No;
}

}  // namespace

base::MessageReply QtMessages::Show(const base::UserMessage& message) {
  if (QThread::currentThread() == thread()) return Ask(m_parent, message);
  OnGuiThread(this, [this, message] { Ask(m_parent, message); });
  return message.buttons == base::MessageButtons::YesNo ? base::MessageReply::Yes : base::MessageReply::Ok;
}

std::optional<std::filesystem::path> QtMessages::ChooseFile(const base::FileChoice& choice) {
  // The folder the user went to last in this run; the first time, their documents, never the
  // folder the program happened to be started from.
  if (m_lastFolder.isEmpty()) m_lastFolder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
  QFileDialog dialog(m_parent, FromPageText(choice.title), m_lastFolder, FromPageText(choice.filter));
  dialog.setAcceptMode(choice.save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
  dialog.setFileMode(choice.save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
  dialog.setDefaultSuffix(QString::fromStdString(choice.defaultSuffix));
  const bool chosen = dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty();
  m_lastFolder = dialog.directory().absolutePath();
  if (!chosen) return std::nullopt;
  const QString file = dialog.selectedFiles().front();
  m_lastFolder = QFileInfo(file).absolutePath();
  return std::filesystem::path(file.toStdString());
}

}  // namespace gavelscope::ui
