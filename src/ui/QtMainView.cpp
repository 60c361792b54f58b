// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "ui/QtMainView.h"

#include <QApplication>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>

#include "ui/ControlModels.h"
#include "ui/GuiThread.h"
#include "ui/Resources.h"

namespace gavelscope::ui {

namespace {

// 0x00BBGGRR as a style sheet colour.
QString CssColour(std::uint32_t colour) {
  return QStringLiteral("#%1%2%3")
      .arg(colour & 0xFF, 2, 16, QLatin1Char('0'))
      .arg((colour >> 8) & 0xFF, 2, 16, QLatin1Char('0'))
      .arg((colour >> 16) & 0xFF, 2, 16, QLatin1Char('0'));
}

}  // namespace

QtMainView::QtMainView(QWidget* window) : QObject(window), m_window(window) {}

QProgressBar* QtMainView::Progress() const {
  return qobject_cast<QProgressBar*>(m_views[static_cast<std::size_t>(app::ViewId::Progress)]);
}

void QtMainView::ShowView(app::ViewId view, bool visible) {
  OnGuiThread(this, [this, view, visible] {
    if (QWidget* widget = m_views[static_cast<std::size_t>(view)]) widget->setVisible(visible);
  });
}

void QtMainView::SetEditText(app::ViewId edit, const std::string& text) {
  OnGuiThread(this, [this, edit, text] {
    if (auto* line = qobject_cast<QLineEdit*>(m_views[static_cast<std::size_t>(edit)]))
      line->setText(FromPageText(text));
  });
}

void QtMainView::SetProgressRange(int low, int high) {
  OnGuiThread(this, [this, low, high] {
    if (QProgressBar* bar = Progress()) bar->setRange(low, high);
  });
}

void QtMainView::SetProgressStep(int step) {
  OnGuiThread(this, [this, step] { m_progressStep = step; });
}

void QtMainView::SetProgressPos(int pos) {
  OnGuiThread(this, [this, pos] {
    if (QProgressBar* bar = Progress()) bar->setValue(pos);
  });
}

void QtMainView::StepProgress() {
  OnGuiThread(this, [this] {
    QProgressBar* bar = Progress();
    if (bar == nullptr) return;
    // Past the end the bar starts again from its beginning.
    const int next = bar->value() + m_progressStep;
    bar->setValue(next > bar->maximum() ? bar->minimum() : next);
  });
}

void QtMainView::SetProgressBarColour(std::uint32_t colour) {
  OnGuiThread(this, [this, colour] {
    m_barColour = colour;
    ApplyProgressColours();
    if (colour == app::kColourLoaded && m_onRunComplete) m_onRunComplete();
  });
}

void QtMainView::SetProgressBackColour(std::uint32_t colour) {
  OnGuiThread(this, [this, colour] {
    m_backColour = colour;
    ApplyProgressColours();
  });
}

void QtMainView::ApplyProgressColours() {
  if (QProgressBar* bar = Progress()) {
    bar->setStyleSheet(QStringLiteral("QProgressBar { background: %1; border: 1px solid gray; }"
                                      "QProgressBar::chunk { background: %2; }")
                           .arg(CssColour(m_backColour), CssColour(m_barColour)));
  }
}

void QtMainView::BeginWaitCursor() {
  OnGuiThread(this, [this] {
    if (m_waitCursor++ == 0) QApplication::setOverrideCursor(Qt::WaitCursor);
  });
}

void QtMainView::EndWaitCursor() {
  OnGuiThread(this, [this] {
    if (m_waitCursor > 0 && --m_waitCursor == 0) QApplication::restoreOverrideCursor();
  });
}

void QtMainView::SetStopButtonBitmap(int bitmap) {
  OnGuiThread(this, [this, bitmap] {
    m_stopBitmap = bitmap;
    if (auto* button = qobject_cast<QPushButton*>(m_views[static_cast<std::size_t>(app::ViewId::StopQueryButton)])) {
      button->setIcon(QIcon(PicturePath(bitmap == app::kBitmapQueryRunning ? QStringLiteral("stop-active.png")
                                                                           : QStringLiteral("stop-idle.png"))));
    }
  });
}

void QtMainView::ShowWindow() {
  OnGuiThread(this, [this] { m_window->show(); });
}

void QtMainView::RepaintNow() {
  OnGuiThread(this, [this] { m_window->update(); });
}

}  // namespace gavelscope::ui
