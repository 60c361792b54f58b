// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <QDialog>

#include <string>

namespace gavelscope::ui {

class CAnimatedPicture;

// The About box: the version, where to ask for help, and the animated About picture on white.
class CAboutDlg : public QDialog {
 public:
  CAboutDlg(const std::string& supportEmail, QWidget* parent = nullptr);

  CAnimatedPicture* picture() const { return m_picture; }

 private:
  CAnimatedPicture* m_picture;
};

}  // namespace gavelscope::ui
