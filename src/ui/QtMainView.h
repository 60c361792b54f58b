// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <QObject>
#include <QWidget>

#include <array>
#include <atomic>
#include <functional>

#include "app/MainView.h"

class QLineEdit;
class QProgressBar;
class QPushButton;

namespace gavelscope::ui {

// The controller's view operations on the window's widgets. Any thread may call; the change is made
// on the window's thread, in the order the operations were issued.
class QtMainView : public QObject, public app::IMainView {
 public:
  explicit QtMainView(QWidget* window);

  void Attach(app::ViewId view, QWidget* widget) { m_views[static_cast<std::size_t>(view)] = widget; }

  void ShowView(app::ViewId view, bool visible) override;
  void SetEditText(app::ViewId edit, const std::string& text) override;
  void SetProgressRange(int low, int high) override;
  void SetProgressStep(int step) override;
  void SetProgressPos(int pos) override;
  void StepProgress() override;
  void SetProgressBarColour(std::uint32_t colour) override;
  void SetProgressBackColour(std::uint32_t colour) override;
  void BeginWaitCursor() override;
  void EndWaitCursor() override;
  void SetStopButtonBitmap(int bitmap) override;
  void ShowWindow() override;
  void RepaintNow() override;

  // Called on the window's thread when a run's last load has completed.
  void SetRunCompleteHandler(std::function<void()> handler) { m_onRunComplete = std::move(handler); }

  int stopButtonBitmap() const { return m_stopBitmap; }
  std::uint32_t barColour() const { return m_barColour; }

 private:
  template <typename Work>
  void Apply(Work work);
  QProgressBar* Progress() const;
  void ApplyProgressColours();

  QWidget* m_window;
  std::array<QWidget*, app::kViewCount> m_views{};
  int m_progressStep = 10;
  int m_stopBitmap = 0;
  int m_waitCursor = 0;
  std::uint32_t m_barColour = 0;
  std::uint32_t m_backColour = 0xFFFFFF;
  std::function<void()> m_onRunComplete;
  std::atomic<int> m_queued{0};
};

}  // namespace gavelscope::ui
