// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <QRect>

#include <array>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>

#include "app/BrowserLauncher.h"
#include "app/MainCommands.h"
#include "app/RunController.h"
#include "banner/LoadBannerThread.h"
#include "ui/ControlModels.h"
#include "ui/InsightsWindow.h"
#include "ui/QtMainView.h"
#include "ui/QtMessages.h"
#include "ui/TrayDialog.h"

class QLineEdit;
class QProgressBar;
class QPushButton;

namespace gavelscope::ui {

class CAnimatedPicture;
struct DecodedPicture;

// The painted tabs and text buttons of the window face, in hit-test order.
enum class FaceRegion { TabKeywords, TabAuctions, TabHotItems, TabQuery, Home, Refresh, Export, MyEbay, Search };
inline constexpr int kFaceRegionCount = 9;

// Where each region lies on the client area (right and bottom exclusive).
QRect FaceRegionRect(FaceRegion region);

// The main window: a fixed-size face with painted tabs and buttons, and one thin Qt view per
// headless control of the run controller. Workers never touch these widgets: a control that
// changed is redrawn on this window's thread.
class CMainDialog : public CTrayDialog, private banner::IBannerSink {
 public:
  static constexpr int kClientWidth = 794;
  static constexpr int kClientHeight = 593;

  // `messages` and `browser` replace the message boxes and the web browser (tests record them).
  explicit CMainDialog(app::ControllerConfig config, base::IUserMessages* messages = nullptr,
                       base::IBrowser* browser = nullptr, QWidget* parent = nullptr);
  ~CMainDialog() override;

  // The start-up of the window: views, controller start, the banner rotation, the welcome notice.
  void Start(bool welcome = true);
  // How long the banners stay; set before Start (tests shorten the minute).
  void SetBannerTiming(banner::BannerTiming timing) { m_bannerTiming = timing; }

  // A click of either mouse button on the face, in client coordinates.
  void OnClick(QPoint point);
  // What the tray menu's View and Exit items do.
  void ViewFromTray(app::Tab tab);
  const std::string& bannerLink() const { return m_strBannerLink; }
  // Called on the window's thread after each banner has been put up.
  void SetBannerShownHandler(std::function<void()> handler) { m_bannerShown = std::move(handler); }
  // The banner rotation's sink, called on its thread: the picture is read and decoded there, so a
  // banner of many frames never holds the window up, and only the decoded result is posted to the
  // window's thread.
  void PublishLink(const std::string& link) override;
  void ShowBanner(const std::filesystem::path& picture) override;
  // The query tab's question, then the query dialog; true when a new query was started.
  bool AskForNewQuery();
  // Replaces the modal query dialog (tests answer it themselves); returns whether it started a run.
  void SetQueryDialog(std::function<bool()> dialog) { m_queryDialog = std::move(dialog); }
  // The About box, over the window but not blocking it.
  void ShowAbout();
  // The Insights window of the visible list, beside the face; the one already open is raised.
  void ShowInsights();
  CInsightsWindow* insights() const { return m_insights.get(); }
  // What the query dialog's Start Query does; the window remembers the query's Site, whose rules
  // read the results' prices.
  // `name` is the query file's name when it came from one or was saved to one: the research store
  // keeps its results under that name.
  bool StartQuery(const query::QueryDefinition& query, std::string name = {});
  // The research store of the Insights window's Trends page; set before the window first opens.
  void SetResearchStore(std::filesystem::path file) { m_researchStore = std::move(file); }

  app::CRunController& controller() { return *m_controller; }
  app::CMainCommands& commands() { return *m_commands; }
  QtMainView& mainView() { return *m_view; }
  CategoryTreeModel& treeModel(sites::Site site) { return site == sites::Site::USA ? *m_treeUSA : *m_treeUK; }
  RowsModel& keywordModel(sites::Site site) { return site == sites::Site::USA ? *m_keywordsUSA : *m_keywordsUK; }
  QWidget* view(app::ViewId id) const { return m_viewWidgets[static_cast<std::size_t>(id)]; }
  QLineEdit* searchEdit() const { return m_search; }
  CAnimatedPicture* flag(sites::Site site) const { return site == sites::Site::USA ? m_flagUSA : m_flagUK; }
  CAnimatedPicture* banner() const { return m_banner; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;
  bool event(QEvent* event) override;

 private:
  void Attach(app::ViewId id, QWidget* widget);
  void MakeTemplateControls();
  void MakePictures();
  void MakeTrayMenu();
  void WatchControls();
  void SelectTab(app::Tab tab);
  void SelectSite(sites::Site site);
  void SwitchSite();
  void UpdateCursor(QPoint point);
  void PaintFace(QPainter& painter) const;
  // Tells an open Insights window which list the face now shows.
  void FollowInsights();
  InsightsSubject ShownSubject() const;
  void ShowBannerPicture(const DecodedPicture& picture);

  base::IUserMessages* m_messages;
  QtMainView* m_view;
  std::unique_ptr<app::CBrowserLauncher> m_ownBrowser;
  base::IBrowser* m_browser;
  std::unique_ptr<app::CRunController> m_controller;
  std::unique_ptr<app::CMainCommands> m_commands;
  std::array<QWidget*, app::kViewCount> m_viewWidgets{};
  std::string m_strBannerLink;
  std::function<bool()> m_queryDialog;
  std::function<void()> m_bannerShown;

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
  CAnimatedPicture* m_flagUSA = nullptr;
  CAnimatedPicture* m_flagUK = nullptr;
  CAnimatedPicture* m_banner = nullptr;
  banner::BannerTiming m_bannerTiming;
  // Abandons a banner being decoded when the window closes.
  std::stop_source m_bannerStop;
  std::optional<sites::Site> m_querySite;
  std::optional<RecordableQuery> m_lastQuery;
  std::filesystem::path m_researchStore;
  // A top-level window of its own, so that no window manager keeps it over the face.
  std::unique_ptr<CInsightsWindow> m_insights;
  // Declared last: it goes first, before anything it shows a banner in.
  std::unique_ptr<banner::CLoadBannerThread> m_bannerThread;
};

}  // namespace gavelscope::ui
