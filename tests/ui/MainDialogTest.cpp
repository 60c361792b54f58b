// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "ui/MainDialog.h"

#include "ui/AnimatedPicture.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QHeaderView>
#include <QLineEdit>
#include <QTableView>

#include <cstdlib>

#include "support/RecordingMessages.h"
#include "support/SandboxFixture.h"
#include "support/TempFolder.h"

namespace gavelscope::ui {
namespace {

using net::Site;

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
    config.profile = net::CompiledProfile();
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
  for (app::Load load : {app::Load::KeywordsUSA, app::Load::KeywordsUK, app::Load::AuctionsUSA, app::Load::AuctionsUK,
                         app::Load::HotItems}) {
    ASSERT_TRUE(controller.LoadDone(load).Wait({}));
  }
  ASSERT_TRUE(ProcessEventsUntil([&] { return window.mainView().barColour() == app::kColourLoaded; }));
  EXPECT_EQ(window.treeModel(Site::USA).rowCount(), static_cast<int>(controller.Tree(Site::USA).RootItems().size()));
  EXPECT_GT(window.treeModel(Site::USA).rowCount(), 30);
  EXPECT_EQ(window.treeModel(Site::USA).data(window.treeModel(Site::USA).index(0, 0)).toString(), "Top 100 Keywords");
  // The keyword list shows the Top 100 list once the tree is loaded.
  EXPECT_EQ(window.keywordModel(Site::USA).rowCount(), static_cast<int>(controller.KeywordList(Site::USA).RowCount()));
}

TEST_F(MainDialogTest, EnterInTheSearchEditSearchesAndNeverCloses) {
  testing::RecordingMessages messages;
  CMainDialog window(Config(), &messages);
  window.show();
  window.searchEdit()->setText("");
  emit window.searchEdit()->returnPressed();
  EXPECT_TRUE(window.isVisible());
  EXPECT_TRUE(window.commands().skipDestroyOnce());
  ASSERT_EQ(messages.Messages().size(), 1U);
  EXPECT_EQ(messages.Messages()[0].text, "Please Input A Search Word !");
}

TEST_F(MainDialogTest, HeaderClicksSortTheHotItemListAndASecondReverses) {
  testing::RecordingMessages messages;
  CMainDialog window(Config(), &messages);
  hotitems::CItemListCtrl& list = window.controller().HotItemList(Site::USA);
  for (const char* bids : {"5", "-", "41"}) list.SetItemText(list.InsertItem(9, ""), 3, bids);
  auto* view = window.findChildren<QTableView*>().at(4);
  ASSERT_EQ(view->model()->headerData(0, Qt::Horizontal).toString(), "Date Ended");
  emit view->horizontalHeader()->sectionClicked(3);
  EXPECT_EQ(list.GetItemText(0, 3), "-");
  emit view->horizontalHeader()->sectionClicked(3);
  EXPECT_EQ(list.GetItemText(0, 3), "41");
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
