// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "ui/Resources.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStringList>

namespace gavelscope::ui {

namespace {

QStringList CandidateFolders() {
  QStringList folders;
  // Without an application object the program's folder is unknown, and an empty one would turn
  // the candidates into folders at the file system's root.
  if (QCoreApplication::instance() != nullptr) {
    const QString programFolder = QCoreApplication::applicationDirPath();
    folders << programFolder + QStringLiteral("/resources")
            << QDir::cleanPath(programFolder + QStringLiteral("/../share/gavelscope"));
  }
  return folders;
}

}  // namespace

QString PicturePath(const QString& name) {
  for (const QString& folder : CandidateFolders()) {
    const QString path = folder + QLatin1Char('/') + name;
    if (QFileInfo(path).isFile()) return path;
  }
  return {};
}

QString ResourceFolder() {
  for (const QString& folder : CandidateFolders()) {
    if (QFileInfo(folder).isDir()) return folder;
  }
  return {};
}

}  // namespace gavelscope::ui
