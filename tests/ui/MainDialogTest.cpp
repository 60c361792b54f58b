// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "ui/MainDialog.h"

#include <QAbstractScrollArea>
#include <QAccessible>
#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QImageReader>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>

#include <fstream>
#include <map>
#include <set>
#include <thread>

#include "WindowTestSupport.h"
#include "ui/AboutDialog.h"
#include "ui/AnimatedPicture.h"
#include "ui/FaceAccess.h"
#include "ui/QtMessages.h"

namespace gavelscope::ui {
namespace {

using app::ViewId;
using sites::Site;
using Views = std::set<ViewId>;

const Views kQueryViews{ViewId::QueryResults, ViewId::PagesSearched, ViewId::StopQueryButton};
const std::filesystem::path kLoopGif =
    std::filesystem::path(GAVELSCOPE_TEST_DATA_DIR) / "gif/peterdn-gif-test-suite/animated_loop.gif";

void Click(QWidget& window, FaceRegion region, Qt::MouseButton button = Qt::LeftButton) {
  QTest::mouseClick(&window, button, {}, FaceRegionRect(region).center());
}

// The views the tabs switch, which come first: lists, trees, the pages counter and the stop button.
Views VisibleViews(const CMainDialog& window) {
  Views visible;
  for (int id = 0; id <= static_cast<int>(ViewId::PagesSearched); ++id) {
    if (window.view(static_cast<ViewId>(id))->isVisible()) visible.insert(static_cast<ViewId>(id));
  }
  return visible;
}

auctions::CAuctionListCtrl& FillAuctions(CMainDialog& window) {
  auctions::CAuctionListCtrl& list = window.controller().AuctionList(Site::USA);
  for (const char* name : {"Pottery", "Glass", "Silver Plate"}) list.InsertRow(list.RowCount(), {name, "12", nullptr});
  Click(window, FaceRegion::TabAuctions);
  return list;
}

TEST_F(IdleWindowTest, TabClicksShowTheirViewSetsAndTheFaceMarksTheTab) {
  const std::pair<FaceRegion, Views> tabs[] = {{FaceRegion::TabAuctions, {ViewId::AuctionsUSA}},
                                               {FaceRegion::TabHotItems, {ViewId::HotItemsUSA}},
                                               {FaceRegion::TabQuery, kQueryViews},
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
      const QRect place = FaceRegionRect(static_cast<FaceRegion>(tab));
      const QPoint inside = place.topLeft() + QPoint(3, 3);
      const QColor fill = tab == static_cast<int>(region) ? QColor(255, 204, 0) : Qt::white;
      EXPECT_EQ(face.pixelColor(inside * scale), fill);
      // The fill ends where the frame begins, on the right and at the bottom, at any scale: looked
      // at from the corner below the caption.
      const QPoint corner = (place.bottomRight() - QPoint(2, 2)) * scale;
      ASSERT_EQ(face.pixelColor(corner), fill) << tab;
      int x = corner.x();
      while (face.pixelColor(x + 1, corner.y()) == fill) ++x;
      int y = corner.y();
      while (face.pixelColor(corner.x(), y + 1) == fill) ++y;
      EXPECT_EQ(face.pixelColor(x + 1, corner.y()), Qt::black) << tab;
      EXPECT_EQ(face.pixelColor(corner.x(), y + 1), Qt::black) << tab;
      EXPECT_NEAR(x + 1, place.right() * scale, 1) << tab;
    }
    // "Searched :" and "Pages" stand beside the pages counter on the query tab only.
    for (const QRect label : {QRect(280, 555, 60, 17), QRect(420, 555, 40, 17)}) {
      const QRect scaled(label.topLeft() * scale, label.size() * scale);
      EXPECT_EQ(CountPixels(face, scaled, [](QColor c) { return c == Qt::white; }) > 20,
                region == FaceRegion::TabQuery);
    }
  }
}

TEST_F(IdleWindowTest, TheHandCursorStaysOnTheFaceAndNeverReachesTheViews) {
  QTest::mouseMove(&m_window, FaceRegionRect(FaceRegion::TabKeywords).center());
  EXPECT_EQ(m_window.cursor().shape(), Qt::PointingHandCursor);
  for (ViewId id : {ViewId::TreeUSA, ViewId::KeywordsUSA, ViewId::HotItemsUK, ViewId::QueryResults}) {
    const auto* view = static_cast<QAbstractScrollArea*>(m_window.view(id));
    EXPECT_EQ(view->viewport()->cursor().shape(), Qt::ArrowCursor) << static_cast<int>(id);
  }
}

TEST_F(IdleWindowTest, EveryPaintedCommandHasAKeyATooltipAndAScreenReaderName) {
  // Keys do what clicks do, from wherever the focus is.
  const std::pair<QKeyCombination, Views> tabs[] = {{Qt::CTRL | Qt::Key_2, {ViewId::AuctionsUSA}},
                                                    {Qt::CTRL | Qt::Key_3, {ViewId::HotItemsUSA}},
                                                    {Qt::CTRL | Qt::Key_1, {ViewId::TreeUSA, ViewId::KeywordsUSA}}};
  for (const auto& [key, shown] : tabs) {
    QTest::keyClick(m_window.view(ViewId::TreeUSA), key.key(), key.keyboardModifiers());
    EXPECT_EQ(VisibleViews(m_window), shown);
  }
  QTest::keyClick(&m_window, Qt::Key_K, Qt::AltModifier);
  EXPECT_EQ(m_window.commands().site(), Site::UK);
  QTest::keyClick(&m_window, Qt::Key_H, Qt::ControlModifier);
  EXPECT_EQ(m_browser.Opened().size(), 1U);
  QTest::keyClick(&m_window, Qt::Key_F, Qt::ControlModifier);
  EXPECT_EQ(m_window.focusWidget(), m_window.searchEdit());
  EXPECT_EQ(m_window.cursor().shape(), Qt::ArrowCursor);  // no pointer went near the commands

  EXPECT_EQ(FaceToolTipAt(m_window, FaceRegionRect(FaceRegion::TabKeywords).center()), "Todays Keywords (Ctrl+1)");
  EXPECT_EQ(FaceToolTipAt(m_window, m_window.flag(Site::USA)->geometry().center()), "U.S.A (Alt+U)");
  EXPECT_EQ(FaceToolTipAt(m_window, QPoint(5, 300)), "");

  // Screen readers find each painted command by its caption, and can press it.
  QAccessibleInterface* face = QAccessible::queryAccessibleInterface(&m_window);
  ASSERT_NE(face, nullptr);
  std::map<QString, QAccessibleInterface*> painted;
  for (int i = 0; i < face->childCount(); ++i) {
    QAccessibleInterface* child = face->child(i);
    if (child != nullptr && child->object() == nullptr) painted[child->text(QAccessible::Name)] = child;
  }
  EXPECT_EQ(painted.size(), FaceCommands().size());
  ASSERT_TRUE(painted.contains("Todays Auctions"));
  EXPECT_EQ(painted["Todays Auctions"]->role(), QAccessible::PageTab);
  EXPECT_EQ(painted["refresh"]->role(), QAccessible::Button);
  painted["Todays Auctions"]->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_EQ(VisibleViews(m_window), Views{ViewId::AuctionsUK});
}

TEST_F(IdleWindowTest, FlagClicksSwitchTheSiteOnceAndAnimateItsFlag) {
  const std::size_t usaFrames = m_window.flag(Site::USA)->frameCount();
  Click(m_window, FaceRegion::TabAuctions);
  for (Site site : {Site::USA, Site::UK})
    QTest::mouseClick(&m_window, Qt::LeftButton, {}, m_window.flag(site)->geometry().center());
  EXPECT_EQ(VisibleViews(m_window), Views{ViewId::AuctionsUK});
  // The selected site's flag is the animated one.
  EXPECT_TRUE(m_window.flag(Site::UK)->isPlaying());
  EXPECT_NE(m_window.flag(Site::USA)->frameCount(), usaFrames);
}

TEST_F(IdleWindowTest, TheQueryTabAsksOnEveryClickAndYesStopsTheRunningQueryFirst) {
  bool runningWhenAsked = true;
  m_window.SetQueryDialog([&] { return runningWhenAsked = m_controller.IsQueryRunning(), true; });
  m_messages.reply = base::MessageReply::No;
  Click(m_window, FaceRegion::TabQuery);
  Click(m_window, FaceRegion::TabQuery);
  m_window.ViewFromTray(app::Tab::Query);  // the tray's View item shows the tab without asking
  ASSERT_EQ(m_messages.Messages().size(), 2U);
  EXPECT_EQ(m_messages.Messages()[1].title + ": " + m_messages.Messages()[1].text,
            "Warning - This may take a while !: Are you sure you wish to make a new query?");

  m_controller.SetPagesSearchedText("41");
  m_controller.SetQueryRunning(true);
  QCoreApplication::processEvents();
  EXPECT_EQ(m_window.mainView().stopButtonBitmap(), app::kBitmapQueryRunning);
  m_messages.reply = base::MessageReply::Yes;
  Click(m_window, FaceRegion::TabQuery);
  EXPECT_FALSE(runningWhenAsked);
  ASSERT_EQ(m_messages.Messages().size(), 5U);
  EXPECT_EQ(m_messages.Messages()[3].title, "Search Aborted");
  QCoreApplication::processEvents();
  EXPECT_EQ(qobject_cast<QLineEdit*>(m_window.view(ViewId::PagesSearched))->text(), "0");
  EXPECT_EQ(m_window.mainView().stopButtonBitmap(), app::kBitmapQueryIdle);
}

TEST_F(IdleWindowTest, F1OpensTheAboutBoxWithItsPicture) {
  QTest::keyClick(m_window.view(ViewId::TreeUSA), Qt::Key_F1);
  auto* about = m_window.findChild<CAboutDlg*>();
  ASSERT_NE(about, nullptr);
  EXPECT_TRUE(about->isVisible());
  EXPECT_EQ(about->windowTitle(), "About Gavelscope");
  EXPECT_TRUE(about->picture()->isPlaying());
}

TEST_F(IdleWindowTest, TheSearchButtonAndEnterInTheSearchEditSearchAndOnlyEscClosesTheWindow) {
  const auctions::CAuctionListCtrl& list = FillAuctions(m_window);
  QTest::keyClick(m_window.view(ViewId::AuctionsUSA), Qt::Key_Enter);
  QTest::keyClick(&m_window, Qt::Key_Return);
  EXPECT_TRUE(m_messages.Messages().empty());
  Click(m_window, FaceRegion::Search);  // nothing typed: the user is asked for a word
  ASSERT_EQ(m_messages.Messages().size(), 1U);
  EXPECT_EQ(m_messages.Messages()[0].text, "Please Input A Search Word !");
  m_window.searchEdit()->setText("plate");
  Click(m_window, FaceRegion::Search);
  EXPECT_EQ(list.SelectionMark(), 2);
  // Enter in the search edit searches on from the mark; nothing further matches.
  m_window.activateWindow();
  ASSERT_TRUE(ProcessEventsUntil([&] { return m_window.isActiveWindow(); }));
  m_window.searchEdit()->setFocus();
  QTest::keyClick(m_window.searchEdit(), Qt::Key_Return);
  ASSERT_EQ(m_messages.Messages().size(), 2U);
  EXPECT_EQ(m_messages.Messages()[1].text, "Item Not Found !");
  EXPECT_TRUE(m_window.isVisible());
  QTest::keyClick(m_window.view(ViewId::AuctionsUSA), Qt::Key_Escape);
  EXPECT_FALSE(m_window.isVisible());
}

TEST_F(IdleWindowTest, ExportAsksForATextFileAndWritesTheVisibleListToItUnlessCancelled) {
  const auctions::CAuctionListCtrl& list = FillAuctions(m_window);
  Click(m_window, FaceRegion::Export);  // cancelled: nothing written, nothing said
  ASSERT_EQ(m_messages.fileChoices.size(), 1U);
  EXPECT_EQ(m_messages.fileChoices[0].title + m_messages.fileChoices[0].filter,
            "Export Todays Auctions ListText File (*.txt)");
  EXPECT_TRUE(m_messages.Messages().empty());
  m_messages.chosenFile = m_folder / "auctions.txt";
  Click(m_window, FaceRegion::Export);
  EXPECT_EQ(testing::ReadFileBytes(m_folder / "auctions.txt"), list.ExportText());
  m_messages.chosenFile = m_folder / "missing" / "auctions.txt";
  Click(m_window, FaceRegion::Export);  // a file that cannot be written is told by name
  ASSERT_FALSE(m_messages.Messages().empty());
  EXPECT_TRUE(m_messages.Messages().back().text.starts_with("Cannot create the file " + m_messages.chosenFile->string()));
  EXPECT_FALSE(std::filesystem::exists(m_folder / "missing"));
}

TEST_F(IdleWindowTest, ButtonsOpenTheirPagesAndTheStopButtonTellsThereIsNoQuery) {
  Click(m_window, FaceRegion::Home);
  Click(m_window, FaceRegion::MyEbay);
  // No banner has arrived: its place opens nothing.
  QTest::mouseClick(&m_window, Qt::LeftButton, {}, m_window.banner()->geometry().center());
  QTest::mouseClick(&m_window, Qt::LeftButton, {}, m_window.flag(Site::UK)->geometry().center());
  Click(m_window, FaceRegion::MyEbay);  // the selected Site's sign-in page
  ASSERT_EQ(m_browser.Opened().size(), 3U);
  EXPECT_EQ(m_browser.Opened()[1], "http://cgi1.ebay.com/aw-cgi/eBayISAPI.dll?MyEbayLogin");
  EXPECT_EQ(m_browser.Opened()[2], "http://cgi1.ebay.co.uk/aw-cgi/eBayISAPI.dll?MyEbayLogin");
  m_window.findChild<QPushButton*>()->click();
  ASSERT_EQ(m_messages.Messages().size(), 1U);
  EXPECT_EQ(m_messages.Messages()[0].title, "Gavelscope Error");
}

TEST_F(IdleWindowTest, MinimisingHidesIntoATrayWhereThereIsOneAndItsMenuBringsAViewBack) {
  bool tray = false;
  m_window.SetTrayAvailable([&tray] { return tray; });
  m_window.setWindowState(Qt::WindowMinimized);
  ASSERT_TRUE(ProcessEventsUntil([this] { return !m_window.isMinimized(); }));
  EXPECT_TRUE(m_window.isVisible());

  tray = true;
  const auto minimise = [this] {
    m_window.setWindowState(Qt::WindowMinimized);
    return ProcessEventsUntil([this] { return !m_window.isVisible(); });
  };
  Click(m_window, FaceRegion::TabHotItems);
  ASSERT_TRUE(minimise());
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
  EXPECT_EQ(m_window.commands().tab(), app::Tab::Auctions);
  // Double-clicking the icon restores the window as well.
  ASSERT_TRUE(minimise());
  m_window.OnTrayLButtonDblClk();
  EXPECT_TRUE(m_window.isVisible());
  EXPECT_FALSE(m_window.IsTrayIconShown());
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

// The process's peak resident memory in KiB, reset first when `reset`; -1 where it cannot be reset.
long PeakKiB(bool reset) {
  if (reset && !(std::ofstream("/proc/self/clear_refs") << "5" << std::flush)) return -1;
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("VmHWM:")) return std::stol(line.substr(6));
  }
  return -1;
}

TEST_F(IdleWindowTest, ABannerOverThePictureLimitsCostsLittleAndLeavesItsPlaceEmpty) {
  // Every frame of it kept at its screen's size would take 6.5 GB.
  testing::WriteFileBytes(m_folder / "absurd.gif", Gif(5700, 5700, 50));
  std::size_t shown = 0;
  m_window.SetBannerShownHandler([&] { ++shown; });
  // The refused picture follows a shown one, whose place it must not keep.
  for (const bool refused : {false, true, false}) {
    const std::string link = "L" + std::to_string(shown + 1);
    const long before = PeakKiB(true);
    // Decoded on a thread of its own, as the rotation calls it, then put up on the window's thread.
    std::thread([&] {
      m_window.PublishLink(link);
      m_window.ShowBanner(refused ? m_folder / "absurd.gif" : kLoopGif);
    }).join();
    ASSERT_TRUE(ProcessEventsUntil([&] { return "L" + std::to_string(shown) == link; }));
    if (before >= 0) {
      EXPECT_LT(PeakKiB(false) - before, 16 * 1024) << link;
    }
    EXPECT_EQ(m_window.banner()->size(), refused ? QSize(0, 0) : QSize(100, 100)) << link;
    EXPECT_EQ(m_window.banner()->geometry().topRight(), QPoint(793, 0)) << link;  // the top right corners meet
    EXPECT_EQ(m_window.banner()->frameCount(), refused ? 0U : 4U) << link;
    EXPECT_EQ(m_window.banner()->isPlaying(), !refused) << link;
    EXPECT_EQ(m_window.bannerLink(), link);
  }
}

TEST_F(IdleWindowTest, MessageBoxesShowTheIconOfWhatTheyTell) {
  using base::MessageButtons;
  using base::MessageKind;
  const std::pair<base::UserMessage, QMessageBox::Icon> boxes[] = {
      {{"Item Not Found !", "Gavelscope"}, QMessageBox::Information},
      {{"Please Input A Search Word !", "Gavelscope", MessageButtons::Ok, true, MessageKind::Warning},
       QMessageBox::Warning},
      {{"Cannot Load File : x", "Gavelscope Error !", MessageButtons::Ok, true, MessageKind::Error},
       QMessageBox::Critical},
      {{"Are you sure?", "Warning", MessageButtons::YesNo, true, MessageKind::Warning}, QMessageBox::Question}};
  QtMessages messages(&m_window);
  for (const auto& [message, icon] : boxes) {
    QMessageBox::Icon shown = QMessageBox::NoIcon;
    QTimer::singleShot(0, [&shown] {
      auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
      if (box == nullptr) return;
      shown = box->icon();
      box->done(0);
    });
    messages.Show(message);
    EXPECT_EQ(shown, icon) << message.text;
  }
}

TEST_F(IdleWindowTest, FileChoosersOpenInTheDocumentsFolderThenWhereTheUserWentLast) {
  const QByteArray home = qgetenv("HOME");
  qputenv("HOME", QByteArray::fromStdString(m_folder.path().string()));
  std::filesystem::create_directories(m_folder / "picked");
  std::filesystem::create_directories(m_folder / "Documents");
  QtMessages messages(&m_window);
  std::vector<QString> openedIn;
  for (int turn = 0; turn < 2; ++turn) {
    QTimer::singleShot(0, [&] {
      auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
      if (dialog == nullptr) return;
      openedIn.push_back(QDir(dialog->directory()).absolutePath());
      dialog->selectFile(QString::fromStdString((m_folder / "picked" / "list.txt").string()));
      QMetaObject::invokeMethod(dialog, "accept");
    });
    EXPECT_TRUE(messages.ChooseFile({"Export", "Text File (*.txt)", "txt"}));
  }
  qputenv("HOME", home);
  ASSERT_EQ(openedIn.size(), 2U);
  EXPECT_EQ(openedIn[0].toStdString(), (m_folder / "Documents").string());
  EXPECT_EQ(openedIn[1].toStdString(), (m_folder / "picked").string());
}

TEST(AnimatedPicture, PlaysEachFrameAsItsPlaceOnThePictureShowsAndRefusesWhatIsNoPicture) {
  // Opaque frames that are all kept: a whole decode shows each one as it is within its place.
  const DecodedPicture loop = CAnimatedPicture::Decode(testing::ReadFileBytes(kLoopGif));
  ASSERT_EQ(loop.frames.size(), 4U);
  QImageReader whole(QString::fromStdString(kLoopGif.string()));
  for (std::size_t frame = 0; frame < loop.frames.size(); ++frame) {
    const banner::FrameRect& place = loop.timings[frame].rect;
    const QImage composed = whole.read().convertToFormat(QImage::Format_ARGB32);
    EXPECT_EQ(loop.frames[frame].convertToFormat(QImage::Format_ARGB32),
              composed.copy(place.left, place.top, place.width, place.height))
        << frame;
  }
  // A frame wholly off the picture stays in the animation with nothing to draw; one that overhangs
  // keeps the part on the picture.
  const DecodedPicture outside = CAnimatedPicture::Decode(
      testing::ReadFileBytes(kLoopGif.parent_path() / "animated_transparent_loop_frames_out_of_bounds.gif"));
  ASSERT_EQ(outside.frames.size(), 4U);
  EXPECT_TRUE(outside.frames[0].isNull());
  EXPECT_EQ(outside.frames[3].size(), QSize(40, 40));

  CAnimatedPicture picture;
  ASSERT_TRUE(picture.LoadFromFile(QString::fromStdString(kLoopGif.string())));
  picture.Draw();
  // Frames hold for a second each here; the first one is drawn at once.
  EXPECT_NE(picture.buffer().pixelColor(50, 50), picture.palette().color(QPalette::Window));
  picture.Stop();
  EXPECT_FALSE(picture.isPlaying());
  EXPECT_EQ(picture.currentFrame(), 0U);
  EXPECT_FALSE(picture.LoadFromMemory("GIF89a but no more"));
  EXPECT_FALSE(picture.LoadFromMemory("plain text"));
}

TEST(AnimatedPicture, PicturesOverALimitAreRefusedAndFramesKeepOnlyTheirOwnPixels) {
  // Each row: a GIF, the frames it decodes to (none: refused) and their side.
  const std::tuple<const char*, std::string, std::size_t, int> rows[] = {
      {"ScreenAPixelTooWide", Gif(1025, 1, 2), 0, 0},
      {"AFrameTooMany", Gif(1, 1, 1001), 0, 0},
      {"DecodedFramesOverTheLimit", Gif(1024, 1024, 17, 1024), 0, 0},
      {"DecodedFramesAtTheLimit", Gif(1024, 1024, 16, 1024), 16, 1024},
      {"SmallFramesOnTheLargestScreen", Gif(1024, 1024, 1000), 1000, 1}};
  for (const auto& [name, gif, frames, side] : rows) {
    const DecodedPicture picture = CAnimatedPicture::Decode(gif);
    ASSERT_EQ(picture.frames.size(), frames) << name;
    EXPECT_EQ(picture.size.isEmpty() && picture.still.isNull(), frames == 0) << name;
    for (const QImage& frame : picture.frames) ASSERT_EQ(frame.size(), QSize(side, side)) << name;
  }
}

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
