// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <QKeySequence>
#include <QRect>
#include <QString>

#include <optional>
#include <span>

#include "sites/SiteProfile.h"
#include "ui/MainDialog.h"

class QKeyEvent;

namespace gavelscope::ui {

// A command painted on the face: a region or a flag, its caption and its key. A key does exactly
// what a click on the command's place does.
struct FaceCommand {
  QString caption;
  QKeySequence key;
  std::optional<FaceRegion> region;  // otherwise the flag of `site`
  sites::Site site = sites::Site::USA;
};

std::span<const FaceCommand> FaceCommands();
// Where the command lies on the face, in client coordinates.
QRect FaceCommandRect(const CMainDialog& window, const FaceCommand& command);
// The command whose place holds `point`; null beside the commands.
const FaceCommand* FaceCommandAt(const CMainDialog& window, QPoint point);
// "Todays Keywords (Ctrl+1)" for the command under `point`; empty beside the commands.
QString FaceToolTipAt(const CMainDialog& window, QPoint point);
// Runs what a key press names: a face command, or Ctrl+F to the search box. False for any other key.
bool HandleFaceKey(CMainDialog& window, const QKeyEvent& event);
// Lets screen readers see the painted commands as page tabs and buttons under their captions.
void InstallFaceAccessibility();

}  // namespace gavelscope::ui
