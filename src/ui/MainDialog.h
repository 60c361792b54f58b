// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <QWidget>

#include <memory>

#include "app/BrowserLauncher.h"
#include "app/MainCommands.h"
#include "app/RunController.h"
#include "ui/ControlModels.h"
#include "ui/QtMainView.h"
#include "ui/QtMessages.h"

class QLineEdit;
class QProgressBar;
class QPushButton;
class QTableView;
class QTreeView;

namespace gavelscope::ui {

// The main window: one thin Qt view per headless control of the run controller, laid out on the
// fixed-size client area. Workers never touch these widgets: a control that changed is redrawn on
// this window's thread.
class CMainDialog : public QWidget {
 public:
  static constexpr int kClientWidth = 794;
  static constexpr int kClientHeight = 593;

  // `messages` replaces the message boxes (tests record them instead).
  explicit CMainDialog(app::ControllerConfig config, app::IUserMessages* messages = nullptr, QWidget* parent = nullptr);
  ~CMainDialog() override;

  // The start-up of the window: views, controller start, the welcome notice.
  void Start(bool welcome = true);

  app::CRunController& controller() { return *m_controller; }
  app::CMainCommands& commands() { return *m_commands; }
  QtMainView& mainView() { return *m_view; }
  CategoryTreeModel& treeModel(net::Site site) { return site == net::Site::USA ? *m_treeUSA : *m_treeUK; }
  RowsModel& keywordModel(net::Site site) { return site == net::Site::USA ? *m_keywordsUSA : *m_keywordsUK; }
  QLineEdit* searchEdit() const { return m_search; }

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  QTreeView* MakeTree(net::Site site, CategoryTreeModel* model);
  QTableView* MakeList(RowsModel* model, const QRect& geometry, const std::vector<int>& widths);
  void WatchControls();

  app::IUserMessages* m_messages;
  QtMainView* m_view;
  std::unique_ptr<app::CBrowserLauncher> m_browser;
  std::unique_ptr<app::CRunController> m_controller;
  std::unique_ptr<app::CMainCommands> m_commands;

  CategoryTreeModel* m_treeUK = nullptr;
  CategoryTreeModel* m_treeUSA = nullptr;
  RowsModel* m_keywordsUK = nullptr;
  RowsModel* m_keywordsUSA = nullptr;
  RowsModel* m_auctionsUSA = nullptr;
  RowsModel* m_auctionsUK = nullptr;
  RowsModel* m_hotItemsUSA = nullptr;
  RowsModel* m_hotItemsUK = nullptr;
  RowsModel* m_queryResults = nullptr;
  QLineEdit* m_search = nullptr;
  QLineEdit* m_pagesSearched = nullptr;
  QProgressBar* m_progress = nullptr;
  QPushButton* m_stopQuery = nullptr;
};

}  // namespace gavelscope::ui
