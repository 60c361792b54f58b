// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "ui/QtMainView.h"

#include <QApplication>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QThread>

#include "ui/ControlModels.h"
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

template <typename Work>
void QtMainView::Apply(Work work) {
  // Operations reach the widgets in the order they were issued: one issued on the window's thread
  // while operations from workers still wait in the queue waits behind them, so a refresh's green bar
  // is never painted over by the red of the run it replaced.
  if (QThread::currentThread() == thread() && m_queued.load() == 0) {
    work();
    return;
  }
  ++m_queued;
  QMetaObject::invokeMethod(
      this,
      [this, work = std::move(work)]() mutable {
        --m_queued;
        work();
      },
      Qt::QueuedConnection);
}

QProgressBar* QtMainView::Progress() const {
  return qobject_cast<QProgressBar*>(m_views[static_cast<std::size_t>(app::ViewId::Progress)]);
}

void QtMainView::ShowView(app::ViewId view, bool visible) {
  Apply([this, view, visible] {
    if (QWidget* widget = m_views[static_cast<std::size_t>(view)]) widget->setVisible(visible);
  });
}

void QtMainView::SetEditText(app::ViewId edit, const std::string& text) {
  Apply([this, edit, text] {
    if (auto* line = qobject_cast<QLineEdit*>(m_views[static_cast<std::size_t>(edit)]))
      line->setText(FromPageText(text));
  });
}

void QtMainView::SetProgressRange(int low, int high) {
  Apply([this, low, high] {
    if (QProgressBar* bar = Progress()) bar->setRange(low, high);
  });
}

void QtMainView::SetProgressStep(int step) {
  Apply([this, step] { m_progressStep = step; });
}

void QtMainView::SetProgressPos(int pos) {
  Apply([this, pos] {
    if (QProgressBar* bar = Progress()) bar->setValue(pos);
  });
}

void QtMainView::StepProgress() {
  Apply([this] {
    QProgressBar* bar = Progress();
    if (bar == nullptr) return;
    // Past the end the bar starts again from its beginning.
    const int next = bar->value() + m_progressStep;
    bar->setValue(next > bar->maximum() ? bar->minimum() : next);
  });
}

void QtMainView::SetProgressBarColour(std::uint32_t colour) {
  Apply([this, colour] {
    m_barColour = colour;
    ApplyProgressColours();
    if (colour == app::kColourLoaded && m_onRunComplete) m_onRunComplete();
  });
}

void QtMainView::SetProgressBackColour(std::uint32_t colour) {
  Apply([this, colour] {
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
  Apply([this] {
    if (m_waitCursor++ == 0) QApplication::setOverrideCursor(Qt::WaitCursor);
  });
}

void QtMainView::EndWaitCursor() {
  Apply([this] {
    if (m_waitCursor > 0 && --m_waitCursor == 0) QApplication::restoreOverrideCursor();
  });
}

void QtMainView::SetStopButtonBitmap(int bitmap) {
  Apply([this, bitmap] {
    m_stopBitmap = bitmap;
    if (auto* button = qobject_cast<QPushButton*>(m_views[static_cast<std::size_t>(app::ViewId::StopQueryButton)])) {
      button->setIcon(QIcon(PicturePath(bitmap == app::kBitmapQueryRunning ? QStringLiteral("stop-active.png")
                                                                           : QStringLiteral("stop-idle.png"))));
    }
  });
}

void QtMainView::ShowWindow() {
  Apply([this] { m_window->show(); });
}

void QtMainView::RepaintNow() {
  Apply([this] { m_window->update(); });
}

}  // namespace gavelscope::ui
