// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "ui/QtMessages.h"

#include <QFileDialog>
#include <QMessageBox>
#include <QThread>

#include "ui/ControlModels.h"
#include "ui/GuiThread.h"

namespace gavelscope::ui {

namespace {

app::MessageReply Ask(QWidget* parent, const app::UserMessage& message) {
  QMessageBox box(
      message.buttons == app::MessageButtons::YesNo ? QMessageBox::Question : QMessageBox::Information,
      FromPageText(message.title), FromPageText(message.text),
      message.buttons == app::MessageButtons::YesNo ? (QMessageBox::Yes | QMessageBox::No) : QMessageBox::Ok, parent);
  if (message.systemModal) box.setWindowModality(Qt::ApplicationModal);
  const int pressed = box.exec();
  if (message.buttons == app::MessageButtons::Ok) return app::MessageReply::Ok;
  return pressed == QMessageBox::Yes ? app::MessageReply::Yes : app::MessageReply::No;
}

}  // namespace

app::MessageReply QtMessages::Show(const app::UserMessage& message) {
  if (QThread::currentThread() == thread()) return Ask(m_parent, message);
  OnGuiThread(this, [this, message] { Ask(m_parent, message); });
  return message.buttons == app::MessageButtons::YesNo ? app::MessageReply::Yes : app::MessageReply::Ok;
}

std::optional<std::filesystem::path> QtMessages::ChooseFile(const app::FileChoice& choice) {
  QFileDialog dialog(m_parent, FromPageText(choice.title), QString(), FromPageText(choice.filter));
  dialog.setAcceptMode(choice.save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
  dialog.setFileMode(choice.save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
  dialog.setDefaultSuffix(QString::fromStdString(choice.defaultSuffix));
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
  return std::filesystem::path(dialog.selectedFiles().front().toStdString());
}

}  // namespace gavelscope::ui
