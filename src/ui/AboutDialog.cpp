// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "ui/AboutDialog.h"

#include <QLabel>
#include <QPushButton>

#include "ui/AnimatedPicture.h"
#include "ui/Resources.h"

namespace gavelscope::ui {

CAboutDlg::CAboutDlg(const std::string& supportEmail, QWidget* parent)
    : QDialog(parent), m_picture(new CAnimatedPicture(this)) {
  setWindowTitle(QStringLiteral("About Gavelscope"));
  // 235 by 58 dialog units; the picture grows the box when it is taller than the text.
  setAutoFillBackground(true);
  QPalette white = palette();
  white.setColor(QPalette::Window, Qt::white);
  setPalette(white);

  m_picture->move(20, 26);
  m_picture->SetBkColor(Qt::white);
  m_picture->LoadFromFile(PicturePath(QStringLiteral("About.gif")));
  m_picture->Draw();
  const int textLeft = m_picture->geometry().right() + 20;

  auto* version = new QLabel(QStringLiteral("Gavelscope Version 2.0"), this);
  version->move(textLeft, 24);
  auto* support = new QLabel(QStringLiteral("Support: ") + QString::fromStdString(supportEmail), this);
  support->move(textLeft, 48);
  version->adjustSize();
  support->adjustSize();

  auto* ok = new QPushButton(QStringLiteral("OK"), this);
  ok->setDefault(true);
  connect(ok, &QPushButton::clicked, this, &QDialog::accept);
  const int width = std::max(353, std::max(version->geometry().right(), support->geometry().right()) + 110);
  const int height = std::max(94, m_picture->geometry().bottom() + 16);
  ok->setGeometry(width - 90, 20, 75, 24);
  setFixedSize(width, height);
}

}  // namespace gavelscope::ui
