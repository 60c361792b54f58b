// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QImage>

#include <functional>

#include "support/RecordingBrowser.h"
#include "support/RecordingMessages.h"
#include "support/TempFolder.h"
#include "ui/MainDialog.h"

namespace gavelscope::ui {

// Lets the window's thread handle what the workers queued until `done` holds; false after a
// generous limit, so that a broken test fails instead of hanging.
inline bool ProcessEventsUntil(const std::function<bool()>& done) {
  QElapsedTimer timer;
  timer.start();
  while (!done()) {
    if (timer.elapsed() > 120000) return false;
    QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
  }
  return true;
}

inline int CountPixels(const QImage& image, const QRect& area, const std::function<bool(QColor)>& wanted) {
  int count = 0;
  for (int y = area.top(); y <= area.bottom(); ++y) {
    for (int x = area.left(); x <= area.right(); ++x) count += wanted(image.pixelColor(x, y)) ? 1 : 0;
  }
  return count;
}

// A shown window that has not started its run: its views, controls and commands, without the sites.
class IdleWindowTest : public ::testing::Test {
 protected:
  IdleWindowTest() {
    m_window.SetResearchStore(m_folder / "research.sqlite");
    m_window.show();
  }

  testing::TempFolder m_folder;
  testing::RecordingMessages m_messages;
  testing::RecordingBrowser m_browser;
  CMainDialog m_window{
      {.profile = sites::CompiledProfile(), .net = {}, .cacheFolder = m_folder.path()}, &m_messages, &m_browser};
  app::CRunController& m_controller = m_window.controller();
};

}  // namespace gavelscope::ui
