// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "ui/MainDialog.h"

#include "ui/AboutDialog.h"
#include "ui/AnimatedPicture.h"

#include <gtest/gtest.h>

#include <chrono>

#include <QApplication>
#include <QElapsedTimer>
#include <QHeaderView>
#include <QImageReader>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QPushButton>
#include <QTableView>

#include <cstdlib>
#include <fstream>
#include <functional>
#include <optional>
#include <set>
#include <string_view>
#include <thread>

#include "support/RecordingBrowser.h"
#include "support/RecordingMessages.h"
#include "support/SandboxFixture.h"
#include "support/TempFolder.h"

namespace gavelscope::ui {
namespace {

using sites::Site;

using app::ViewId;

// The views the tabs switch: lists, trees, the pages counter and the stop button.
bool ListOrPageView(ViewId id) {
  return id != ViewId::Progress && id != ViewId::Search && id != ViewId::FlagUSA && id != ViewId::FlagUK &&
         id != ViewId::Banner;
}

int CountPixels(const QImage& image, const QRect& area, const QColor& colour) {
  int count = 0;
  for (int y = area.top(); y <= area.bottom(); ++y) {
    for (int x = area.left(); x <= area.right(); ++x) count += image.pixelColor(x, y) == colour ? 1 : 0;
  }
  return count;
}

// Lets the window's thread handle what the workers queued until `done` holds (or a generous limit).
template <typename Condition>
bool ProcessEventsUntil(Condition done) {
  QElapsedTimer timer;
  timer.start();
  while (!done()) {
    if (timer.elapsed() > 60000) return false;
    QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
  }
  return true;
}

class MainDialogTest : public testing::SandboxTest {
 protected:
  app::ControllerConfig Config() {
    app::ControllerConfig config;
    config.profile = sites::CompiledProfile();
    config.net = SandboxNetOptions();
    config.cacheFolder = m_folder.path();
    return config;
  }
  testing::TempFolder m_folder;
};

TEST_F(MainDialogTest, ShowsTheLoadsOfARunAndTurnsTheBarRedAtTheEnd) {
  testing::RecordingMessages messages;
  CMainDialog window(Config(), &messages);
  EXPECT_EQ(window.size(), QSize(794, 593));
  EXPECT_EQ(window.windowTitle(), "Gavelscope - The Complete Powerseller Tool (Version 2.0)");
  window.show();
  window.Start(false);
  app::CRunController& controller = window.controller();
  // The window's thread handles nothing meanwhile: no load may need it to finish.
  for (app::Load load : {app::Load::KeywordsUSA, app::Load::KeywordsUK, app::Load::AuctionsUSA, app::Load::AuctionsUK,
                         app::Load::HotItems}) {
    ASSERT_TRUE(controller.LoadDone(load).WaitFor(std::chrono::seconds(60)))
        << "load " << static_cast<int>(load) << " still running, " << controller.FinishedLoads() << " finished";
  }
  ASSERT_TRUE(ProcessEventsUntil([&] { return window.mainView().barColour() == app::kColourLoaded; }));
  EXPECT_EQ(window.treeModel(Site::USA).rowCount(), static_cast<int>(controller.Tree(Site::USA).RootItems().size()));
  EXPECT_GT(window.treeModel(Site::USA).rowCount(), 30);
  EXPECT_EQ(window.treeModel(Site::USA).data(window.treeModel(Site::USA).index(0, 0)).toString(), "Top 100 Keywords");
  // The keyword list shows the Top 100 list once the tree is loaded.
  EXPECT_EQ(window.keywordModel(Site::USA).rowCount(), static_cast<int>(controller.KeywordList(Site::USA).RowCount()));
}

// A click of `button` at a point of the window's client area, through the window's own handlers.
void Click(QWidget& window, QPoint point, Qt::MouseButton button = Qt::LeftButton) {
  QMouseEvent press(QEvent::MouseButtonPress, point, window.mapToGlobal(point), button, button, Qt::NoModifier);
  QApplication::sendEvent(&window, &press);
  QMouseEvent release(QEvent::MouseButtonRelease, point, window.mapToGlobal(point), button, Qt::NoButton,
                      Qt::NoModifier);
  QApplication::sendEvent(&window, &release);
}

void Click(QWidget& window, FaceRegion region, Qt::MouseButton button = Qt::LeftButton) {
  Click(window, FaceRegionRect(region).center(), button);
}

void PressKey(QWidget* widget, int key) {
  QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
  QApplication::sendEvent(widget, &press);
}

std::set<ViewId> VisibleViews(const CMainDialog& window) {
  std::set<ViewId> visible;
  for (int id = 0; id < app::kViewCount; ++id) {
    const QWidget* widget = window.view(static_cast<ViewId>(id));
    if (widget != nullptr && widget->isVisible() && ListOrPageView(static_cast<ViewId>(id))) {
      visible.insert(static_cast<ViewId>(id));
    }
  }
  return visible;
}

// A window that has not started its run: its views and commands, without the sites.
class IdleWindowTest : public ::testing::Test {
 protected:
  static app::ControllerConfig Config(const std::filesystem::path& cache) {
    app::ControllerConfig config;
    config.profile = sites::CompiledProfile();
    config.cacheFolder = cache;
    return config;
  }
  void FillAuctions() {
    auctions::CAuctionListCtrl& list = m_window.controller().AuctionList(Site::USA);
    for (const char* name : {"Pottery", "Glass", "Silver Plate"})
      list.InsertRow(list.RowCount(), {name, "12", nullptr});
  }
  testing::TempFolder m_folder;
  testing::RecordingMessages m_messages;
  testing::RecordingBrowser m_browser;
  CMainDialog m_window{Config(m_folder.path()), &m_messages, &m_browser};
};

TEST_F(IdleWindowTest, TabClicksShowTheirViewSetsAndTheFaceMarksTheTab) {
  m_window.show();
  m_messages.reply = base::MessageReply::No;
  EXPECT_EQ(VisibleViews(m_window), (std::set<ViewId>{ViewId::TreeUSA, ViewId::KeywordsUSA}));
  const std::pair<FaceRegion, std::set<ViewId>> tabs[] = {
      {FaceRegion::TabAuctions, {ViewId::AuctionsUSA}},
      {FaceRegion::TabHotItems, {ViewId::HotItemsUSA}},
      {FaceRegion::TabQuery, {ViewId::QueryResults, ViewId::PagesSearched, ViewId::StopQueryButton}},
      {FaceRegion::TabKeywords, {ViewId::TreeUSA, ViewId::KeywordsUSA}}};
  for (const auto& [region, shown] : tabs) {
    // Right clicks act as left clicks do.
    Click(m_window, region, region == FaceRegion::TabHotItems ? Qt::RightButton : Qt::LeftButton);
    EXPECT_EQ(VisibleViews(m_window), shown) << static_cast<int>(region);
    // On a high-density screen the face is drawn at the screen's scale (run again with
    // QT_SCALE_FACTOR=2).
    const QImage face = m_window.grab().toImage();
    const qreal scale = face.devicePixelRatio();
    EXPECT_EQ(face.size(), QSize(794, 593) * scale);
    for (int tab = 0; tab < 4; ++tab) {
      // Inside the frame, left of the caption.
      const QPoint inside = FaceRegionRect(static_cast<FaceRegion>(tab)).topLeft() + QPoint(3, 3);
      EXPECT_EQ(face.pixelColor(inside * scale),
                tab == static_cast<int>(region) ? QColor(255, 204, 0) : QColor(Qt::white))
          << tab;
    }
    // "Searched :" and "Pages" stand beside the pages counter on the query tab only.
    const bool query = region == FaceRegion::TabQuery;
    const auto scaled = [scale](QRect area) { return QRect(area.topLeft() * scale, area.size() * scale); };
    EXPECT_EQ(CountPixels(face, scaled(QRect(280, 555, 60, 17)), Qt::white) > 20, query);
    EXPECT_EQ(CountPixels(face, scaled(QRect(420, 555, 40, 17)), Qt::white) > 20, query);
  }
}

TEST_F(IdleWindowTest, FlagClicksSwitchTheSiteOnceAndLeaveTheQueryTabAlone) {
  m_window.show();
  m_messages.reply = base::MessageReply::No;
  const QPoint ukFlag = m_window.flag(Site::UK)->geometry().center();
  const QPoint usaFlag = m_window.flag(Site::USA)->geometry().center();
  Click(m_window, FaceRegion::TabAuctions);
  Click(m_window, usaFlag);
  EXPECT_EQ(VisibleViews(m_window), std::set<ViewId>{ViewId::AuctionsUSA});
  const std::size_t usaFrames = m_window.flag(Site::USA)->frameCount();
  Click(m_window, ukFlag);
  EXPECT_EQ(VisibleViews(m_window), std::set<ViewId>{ViewId::AuctionsUK});
  EXPECT_EQ(m_window.commands().site(), Site::UK);
  // The selected site's flag is the animated one.
  EXPECT_GT(m_window.flag(Site::UK)->frameCount(), 1U);
  EXPECT_NE(m_window.flag(Site::USA)->frameCount(), usaFrames);
  EXPECT_TRUE(m_window.flag(Site::UK)->isPlaying());

  Click(m_window, FaceRegion::TabQuery);
  Click(m_window, usaFlag);
  EXPECT_EQ(m_window.commands().site(), Site::USA);
  EXPECT_EQ(VisibleViews(m_window),
            (std::set<ViewId>{ViewId::QueryResults, ViewId::PagesSearched, ViewId::StopQueryButton}));
}

TEST_F(IdleWindowTest, TheQueryTabAsksOnEveryClickAndNoKeepsTheLastResults) {
  int dialogs = 0;
  m_window.SetQueryDialog([&] { return ++dialogs, true; });
  m_window.show();
  m_messages.reply = base::MessageReply::No;
  Click(m_window, FaceRegion::TabQuery);
  Click(m_window, FaceRegion::TabQuery);
  ASSERT_EQ(m_messages.Messages().size(), 2U);
  EXPECT_EQ(m_messages.Messages()[1].text, "Are you sure you wish to make a new query?");
  EXPECT_EQ(m_messages.Messages()[1].title, "Warning - This may take a while !");
  EXPECT_EQ(dialogs, 0);
  EXPECT_EQ(VisibleViews(m_window),
            (std::set<ViewId>{ViewId::QueryResults, ViewId::PagesSearched, ViewId::StopQueryButton}));
  // The tray's View item shows the tab without asking.
  m_window.ViewFromTray(app::Tab::Query);
  EXPECT_EQ(m_messages.Messages().size(), 2U);
}

TEST_F(IdleWindowTest, ANewQueryStopsTheRunningOneFirstAndThenSaysItBegan) {
  app::CRunController& controller = m_window.controller();
  bool runningWhenAsked = true;
  m_window.SetQueryDialog([&] {
    runningWhenAsked = controller.IsQueryRunning();
    return true;
  });
  controller.SetPagesSearchedText("41");
  controller.SetQueryRunning(true);
  m_messages.reply = base::MessageReply::Yes;
  Click(m_window, FaceRegion::TabQuery);
  EXPECT_FALSE(runningWhenAsked);
  std::vector<std::string> titles;
  for (const base::UserMessage& message : m_messages.Messages()) titles.push_back(message.title);
  EXPECT_EQ(titles, (std::vector<std::string>{"Warning - This may take a while !", "Search Aborted", "Searching !"}));
  QCoreApplication::processEvents();
  EXPECT_EQ(qobject_cast<QLineEdit*>(m_window.view(ViewId::PagesSearched))->text(), "0");
}

TEST_F(IdleWindowTest, F1OpensTheAboutBoxWithItsPicture) {
  m_window.show();
  PressKey(m_window.view(ViewId::TreeUSA), Qt::Key_F1);
  auto* about = m_window.findChild<CAboutDlg*>();
  ASSERT_NE(about, nullptr);
  EXPECT_TRUE(about->isVisible());
  EXPECT_EQ(about->windowTitle(), "About Gavelscope");
  EXPECT_GT(about->picture()->frameCount(), 1U);
  EXPECT_TRUE(about->picture()->isPlaying());
}

TEST_F(IdleWindowTest, SearchFindsTheWordInTheVisibleListOrSaysWhy) {
  m_window.show();
  FillAuctions();
  Click(m_window, FaceRegion::TabAuctions);
  Click(m_window, FaceRegion::Search);
  ASSERT_EQ(m_messages.Messages().size(), 1U);
  EXPECT_EQ(m_messages.Messages()[0].text, "Please Input A Search Word !");

  m_window.searchEdit()->setText("plate");
  Click(m_window, FaceRegion::Search);
  EXPECT_EQ(m_window.controller().AuctionList(Site::USA).SelectionMark(), 2);
  // Enter in the search edit searches on from the mark; nothing further matches.
  m_window.activateWindow();
  ASSERT_TRUE(ProcessEventsUntil([&] { return m_window.isActiveWindow(); }));
  m_window.searchEdit()->setFocus();
  PressKey(m_window.searchEdit(), Qt::Key_Return);
  ASSERT_EQ(m_messages.Messages().size(), 2U);
  EXPECT_EQ(m_messages.Messages()[1].text, "Item Not Found !");
}

TEST_F(IdleWindowTest, EnterNeverClosesTheWindowButEscDoes) {
  m_window.show();
  PressKey(m_window.view(ViewId::KeywordsUSA), Qt::Key_Enter);
  PressKey(&m_window, Qt::Key_Return);
  EXPECT_TRUE(m_window.isVisible());
  EXPECT_TRUE(m_window.commands().skipDestroyOnce());
  // Enter outside the search edit searches nothing.
  EXPECT_TRUE(m_messages.Messages().empty());
  PressKey(m_window.view(ViewId::KeywordsUSA), Qt::Key_Escape);
  EXPECT_FALSE(m_window.isVisible());
}

TEST_F(IdleWindowTest, ExportWritesTheVisibleListToTheChosenFileOrReportsIt) {
  FillAuctions();
  Click(m_window, FaceRegion::TabAuctions);
  // Cancelled: nothing written, nothing said.
  Click(m_window, FaceRegion::Export);
  ASSERT_EQ(m_messages.fileChoices.size(), 1U);
  EXPECT_EQ(m_messages.fileChoices[0].title, "Export Todays Auctions List");
  EXPECT_EQ(m_messages.fileChoices[0].filter, "Text File (*.txt)");
  EXPECT_TRUE(m_messages.Messages().empty());

  m_messages.chosenFile = m_folder.path() / "auctions.txt";
  Click(m_window, FaceRegion::Export);
  EXPECT_EQ(testing::ReadFileBytes(m_folder.path() / "auctions.txt"),
            m_window.controller().AuctionList(Site::USA).ExportText());
  ASSERT_EQ(m_messages.Messages().size(), 1U);
  EXPECT_EQ(m_messages.Messages()[0].text, "List Has Been Successfully Exported.");

  m_messages.chosenFile = m_folder.path() / "no such folder" / "auctions.txt";
  Click(m_window, FaceRegion::Export);
  ASSERT_EQ(m_messages.Messages().size(), 2U);
  EXPECT_NE(m_messages.Messages()[1].text.find("no such folder/auctions.txt"), std::string::npos);
  EXPECT_FALSE(std::filesystem::exists(m_folder.path() / "no such folder"));
}

TEST_F(IdleWindowTest, ButtonsOpenTheirPagesAndTheStopButtonTellsThereIsNoQuery) {
  Click(m_window, FaceRegion::Home);
  Click(m_window, FaceRegion::MyEbay);
  EXPECT_EQ(m_browser.Opened().size(), 2U);
  // No banner has arrived: its place opens nothing.
  Click(m_window, m_window.banner()->geometry().center());
  EXPECT_EQ(m_browser.Opened().size(), 2U);
  m_window.findChild<QPushButton*>()->click();
  ASSERT_EQ(m_messages.Messages().size(), 1U);
  EXPECT_EQ(m_messages.Messages()[0].title, "Gavelscope Error");
}

TEST_F(IdleWindowTest, TheBarTurnsRedAtTheSeventhCompletionOnly) {
  app::CRunController& controller = m_window.controller();
  for (int load = 1; load <= 6; ++load) controller.OnThreadFinished();
  QCoreApplication::processEvents();
  EXPECT_NE(m_window.mainView().barColour(), app::kColourLoaded);
  controller.OnThreadFinished();
  QCoreApplication::processEvents();
  EXPECT_EQ(m_window.mainView().barColour(), app::kColourLoaded);
}

TEST_F(IdleWindowTest, MinimisingHidesIntoTheTrayAndTheMenuBringsAViewBack) {
  m_window.SetTrayAvailable([] { return true; });
  m_window.show();
  Click(m_window, FaceRegion::TabHotItems);
  m_window.setWindowState(Qt::WindowMinimized);
  ASSERT_TRUE(ProcessEventsUntil([&] { return !m_window.isVisible(); }));
  EXPECT_TRUE(m_window.IsTrayIconShown());
  QMenu* menu = m_window.trayMenu();
  emit menu->aboutToShow();
  ASSERT_NE(menu->defaultAction(), nullptr);
  EXPECT_EQ(menu->defaultAction()->text(), "View Hot Items");
  QStringList texts;
  for (const QAction* action : menu->actions()) texts << (action->isSeparator() ? "-" : action->text());
  EXPECT_EQ(texts, (QStringList{"Gavelscope Home", "-", "View Keywords", "View Auctions", "View Hot Items",
                                "View Hot Items Query", "-", "Exit"}));

  menu->actions()[3]->trigger();
  EXPECT_TRUE(m_window.isVisible());
  EXPECT_FALSE(m_window.IsTrayIconShown());
  EXPECT_EQ(m_window.commands().tab(), app::Tab::Auctions);
  // Double-clicking the icon restores the window as well.
  m_window.setWindowState(Qt::WindowMinimized);
  ASSERT_TRUE(ProcessEventsUntil([&] { return !m_window.isVisible(); }));
  m_window.OnTrayLButtonDblClk();
  EXPECT_TRUE(m_window.isVisible());
  EXPECT_FALSE(m_window.IsTrayIconShown());
}

TEST_F(IdleWindowTest, WithoutATrayMinimisingLeavesTheWindowAsItWas) {
  m_window.SetTrayAvailable([] { return false; });
  m_window.show();
  m_window.setWindowState(Qt::WindowMinimized);
  ASSERT_TRUE(ProcessEventsUntil([&] { return !m_window.isMinimized(); }));
  EXPECT_TRUE(m_window.isVisible());
  EXPECT_FALSE(m_window.IsTrayIconShown());
}

TEST_F(MainDialogTest, TheBannerRotatesAtTheTopRightCornerAndOpensItsLink) {
  const std::string keywords = "http://www.gavelscope.example/offers/keywords.html";
  const std::string auctions = "http://www.gavelscope.example/offers/auctions.html";
  testing::WriteFileBytes(Sandbox().ftpRoot() / "window-banners.txt",
                          "1|" + keywords + "|KeywordsBanner.gif|\n2|" + auctions + "|AuctionsBanner.gif|\n");
  app::ControllerConfig config = Config();
  config.profile.vendor.bannerListPath = "/_test/file?name=window-banners.txt";
  testing::RecordingMessages messages;
  testing::RecordingBrowser browser;
  CMainDialog window(config, &messages, &browser);
  window.SetBannerTiming({.minute = std::chrono::milliseconds(300), .fetchInterval = std::chrono::milliseconds(10)});
  // The links in the order the window put their banners up.
  std::vector<std::string> shown;
  window.SetBannerShownHandler([&] { shown.push_back(window.bannerLink()); });
  window.show();
  window.Start(false);
  const auto showing = [&](std::size_t count) { return ProcessEventsUntil([&] { return shown.size() >= count; }); };
  ASSERT_TRUE(showing(1));
  // The sandbox's banners are 120 by 60 pixels.
  EXPECT_EQ(window.banner()->geometry(), QRect(794 - 120, 0, 120, 60));
  EXPECT_GT(window.banner()->frameCount(), 1U);
  const std::string clicked = window.bannerLink();
  Click(window, window.banner()->geometry().center());
  EXPECT_EQ(browser.Opened(), std::vector<std::string>{clicked});
  // Then the second line for its two minutes, then the list again from its first line.
  ASSERT_TRUE(showing(3));
  shown.resize(3);
  EXPECT_EQ(shown, (std::vector<std::string>{keywords, auctions, keywords}));
}

// A GIF of `frames` frames of `side` x `side` pixels at the top left corner of a `width` x `height`
// screen, each frame's data one white pixel.
std::string Gif(int width, int height, int frames, int side = 1) {
  const auto word = [](int value) {
    return std::string{static_cast<char>(value & 0xFF), static_cast<char>(value >> 8)};
  };
  std::string gif = "GIF89a" + word(width) + word(height) + std::string("\x80\0\0\0\0\0\xFF\xFF\xFF", 9);
  for (int frame = 0; frame < frames; ++frame) {
    gif += std::string("\x21\xF9\x04\x04\x0A\0\0\0", 8) + "\x2C" + word(0) + word(0) + word(side) + word(side) +
           std::string("\0\x02\x02\x4C\x01\0", 6);
  }
  return gif + "\x3B";
}

long StatusKiB(std::string_view field) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with(field)) return std::stol(line.substr(field.size()));
  }
  return 0;
}

// How far this process's peak resident memory rose while `work` ran; nothing where the peak
// cannot be reset.
std::optional<long> PeakGrowthBytes(const std::function<void()>& work) {
  {
    std::ofstream reset("/proc/self/clear_refs");
    if (!(reset << "5" << std::flush)) return std::nullopt;
  }
  const long before = StatusKiB("VmHWM:");
  work();
  return (StatusKiB("VmHWM:") - before) * 1024;
}

TEST_F(IdleWindowTest, ABannerOverThePictureLimitsCostsLittleAndLeavesItsPlaceEmpty) {
  // Every frame of it kept at its screen's size would take 6.5 GB.
  const std::filesystem::path absurd = m_folder.path() / "absurd.gif";
  testing::WriteFileBytes(absurd, Gif(5700, 5700, 50));
  const std::filesystem::path ordinary =
      std::filesystem::path(GAVELSCOPE_TEST_DATA_DIR) / "gif/peterdn-gif-test-suite/animated_loop.gif";
  std::size_t shown = 0;
  m_window.SetBannerShownHandler([&] { ++shown; });
  m_window.show();
  struct Row {
    const std::filesystem::path& picture;
    std::string link;
    QSize size;
    std::size_t frames;
  };
  // The refused picture follows a shown one, whose place it must not keep.
  const Row rows[] = {{ordinary, "L1", {100, 100}, 4}, {absurd, "L2", {0, 0}, 0}, {ordinary, "L3", {100, 100}, 4}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.link);
    // Decoded on a thread of its own, as the rotation calls it, then put up on the window's thread.
    bool put = false;
    const std::optional<long> grew = PeakGrowthBytes([&] {
      std::thread([&] { m_window.ShowBanner(row.picture, row.link); }).join();
      put = ProcessEventsUntil([&] { return shown == static_cast<std::size_t>(&row - rows + 1); });
    });
    ASSERT_TRUE(put);
    EXPECT_EQ(m_window.banner()->size(), row.size);
    // The top right corners meet.
    EXPECT_EQ(m_window.banner()->geometry().topRight(), QPoint(793, 0));
    EXPECT_EQ(m_window.banner()->frameCount(), row.frames);
    EXPECT_EQ(m_window.banner()->isPlaying(), row.frames > 1);
    EXPECT_EQ(m_window.bannerLink(), row.link);
    if (grew) {
      EXPECT_LT(*grew, 16 * 1024 * 1024);
    }
  }
}

TEST_F(MainDialogTest, RefreshWhileRefreshingSaysSo) {
  testing::RecordingMessages messages;
  CMainDialog window(Config(), &messages);
  window.Start(false);
  Click(window, FaceRegion::Refresh);
  Click(window, FaceRegion::Refresh);
  ASSERT_FALSE(messages.Messages().empty());
  EXPECT_EQ(messages.Messages().back().text, "System Is Already Refreshing Display");
}

TEST_F(MainDialogTest, ClosingWhileEveryWorkerWaitsEndsWithinTwoSeconds) {
  testing::RecordingMessages messages;
  app::ControllerConfig config = Config();
  config.profile.uk.listingRoot = "http://listings.ebay.co.uk/_test/hang";
  config.profile.usa.listingRoot = "http://listings.ebay.com/_test/hang";
  auto window = std::make_unique<CMainDialog>(config, &messages);
  window->show();
  window->Start(false);
  QElapsedTimer timer;
  timer.start();
  window->close();
  window.reset();
  EXPECT_LT(timer.elapsed(), 2000);
}

TEST(AnimatedPicture, PlaysAThirdPartyAnimationUntilStopped) {
  CAnimatedPicture picture;
  ASSERT_TRUE(picture.LoadFromFile(
      QString::fromStdString(std::string(GAVELSCOPE_TEST_DATA_DIR) + "/gif/peterdn-gif-test-suite/animated_loop.gif")));
  EXPECT_EQ(picture.frameCount(), 4U);
  EXPECT_EQ(picture.GetSize(), QSize(100, 100));
  picture.Draw();
  EXPECT_TRUE(picture.isPlaying());
  // Frames hold for a second each here; the first one is drawn at once.
  EXPECT_NE(picture.buffer().pixelColor(50, 50), picture.palette().color(QPalette::Window));
  picture.Stop();
  EXPECT_FALSE(picture.isPlaying());
  EXPECT_EQ(picture.currentFrame(), 0U);
  // Not a picture at all: nothing to show.
  EXPECT_FALSE(picture.LoadFromMemory("GIF89a but no more"));
  EXPECT_FALSE(picture.LoadFromMemory("plain text"));
}

TEST(AnimatedPicture, EachFrameIsDecodedAsWhatItsPlaceOnThePictureShows) {
  const std::string folder = std::string(GAVELSCOPE_TEST_DATA_DIR) + "/gif/peterdn-gif-test-suite/";
  // Opaque frames that are all kept: a whole decode shows each one as it is within its place.
  const DecodedPicture loop = CAnimatedPicture::Decode(testing::ReadFileBytes(folder + "animated_loop.gif"));
  ASSERT_EQ(loop.frames.size(), 4U);
  QImageReader whole(QString::fromStdString(folder + "animated_loop.gif"));
  for (std::size_t frame = 0; frame < loop.frames.size(); ++frame) {
    const banner::FrameRect& place = loop.timings[frame].rect;
    const QImage composed = whole.read().convertToFormat(QImage::Format_ARGB32);
    EXPECT_EQ(loop.frames[frame].convertToFormat(QImage::Format_ARGB32),
              composed.copy(place.left, place.top, place.width, place.height))
        << frame;
  }
  // A frame wholly off the picture stays in the animation with nothing to draw; one that overhangs
  // keeps the part on the picture.
  const DecodedPicture outside =
      CAnimatedPicture::Decode(testing::ReadFileBytes(folder + "animated_transparent_loop_frames_out_of_bounds.gif"));
  ASSERT_EQ(outside.frames.size(), 4U);
  EXPECT_TRUE(outside.frames[0].isNull());
  EXPECT_EQ(outside.frames[3].size(), QSize(40, 40));
}

struct LimitRow {
  const char* name;
  std::string gif;
  std::size_t frames;  // 0: refused
  int side;
};

void PrintTo(const LimitRow& row, std::ostream* out) {
  *out << row.name;
}

class PictureLimitTest : public ::testing::TestWithParam<LimitRow> {};

TEST_P(PictureLimitTest, PicturesOverALimitAreRefusedAndFramesKeepOnlyTheirOwnPixels) {
  const DecodedPicture picture = CAnimatedPicture::Decode(GetParam().gif);
  ASSERT_EQ(picture.frames.size(), GetParam().frames);
  if (GetParam().frames == 0) {
    EXPECT_TRUE(picture.size.isEmpty());
    EXPECT_TRUE(picture.still.isNull());
    return;
  }
  for (const QImage& frame : picture.frames) EXPECT_EQ(frame.size(), QSize(GetParam().side, GetParam().side));
}

INSTANTIATE_TEST_SUITE_P(Gifs, PictureLimitTest,
                         ::testing::Values(LimitRow{"AbsurdScreen", Gif(5700, 5700, 50), 0, 0},
                                           LimitRow{"ScreenAPixelTooWide", Gif(1025, 1, 2), 0, 0},
                                           LimitRow{"AFrameTooMany", Gif(1, 1, 1001), 0, 0},
                                           LimitRow{"DecodedFramesOverTheLimit", Gif(1024, 1024, 17, 1024), 0, 0},
                                           LimitRow{"DecodedFramesAtTheLimit", Gif(1024, 1024, 16, 1024), 16, 1024},
                                           LimitRow{"SmallFramesOnTheLargestScreen", Gif(1024, 1024, 1000), 1000, 1}),
                         [](const ::testing::TestParamInfo<LimitRow>& row) { return std::string(row.param.name); });

TEST(PageText, ShowsWindows1252) {
  EXPECT_EQ(FromPageText("\xA3"
                         "5 \x80 \x93q\x94"),
            QString::fromUtf8("£5 € “q”"));
}

}  // namespace
}  // namespace gavelscope::ui

int main(int argc, char** argv) {
  // Offscreen unless a caller chose a platform (an X server test, say).
  if (std::getenv("QT_QPA_PLATFORM") == nullptr) setenv("QT_QPA_PLATFORM", "offscreen", 1);
  QApplication application(argc, argv);
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
