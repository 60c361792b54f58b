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
  QFileDialog dialog(m_parent, FromPageText(choice.title), QString(), FromPageText(choice.filter));
  dialog.setAcceptMode(choice.save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
  dialog.setFileMode(choice.save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
  dialog.setDefaultSuffix(QString::fromStdString(choice.defaultSuffix));
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
  return std::filesystem::path(dialog.selectedFiles().front().toStdString());
}

}  // namespace gavelscope::ui
