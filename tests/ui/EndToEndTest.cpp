// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
//
// The window on the sandbox, on an X server (Xvfb) with the real message boxes and file dialogs,
// answered by a robot as a person would answer them.
#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QTimer>

#include <algorithm>
#include <set>
#include <sstream>

#include "WindowTestSupport.h"
#include "support/SandboxFixture.h"
#include "ui/AnimatedPicture.h"
#include "ui/QueryDialog.h"

namespace gavelscope::ui {
namespace {

// Every line, sorted: rows that tie on the sort key may come in either order.
std::vector<std::string> SortedLines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  std::sort(lines.begin(), lines.end());
  return lines;
}

class EndToEndTest : public testing::SandboxTest {
 protected:
  app::ControllerConfig Config() {
    return {.profile = sites::CompiledProfile(),
            .net = SandboxNetOptions(),
            .cacheFolder = m_folder.path(),
            .queryPollInterval = std::chrono::milliseconds(200)};
  }
  testing::TempFolder m_folder;
  testing::RecordingBrowser m_browser;
};

TEST_F(EndToEndTest, TheWindowLoadsTheSandboxAndAQueryFromTheQueryTabExportsWhatTheCommandLineFinds) {
  CMainDialog window(Config(), nullptr, &m_browser);
  EXPECT_EQ(window.windowTitle(), "Gavelscope - The Complete Powerseller Tool (Version 2.0)");
  window.SetBannerTiming({.fetchInterval = std::chrono::milliseconds(10)});
  window.show();
  window.Start(false);

  // The robot answers whatever modal window is open, one step per tick: the new-query question with
  // Yes, the query dialog with two categories, a bid filter and a saved copy, file dialogs with the
  // query file or the export, every other box with OK. It acts from the event loop, not inside its
  // tick, as the action may open a modal window of its own.
  std::vector<std::string> said;  // the boxes' titles and texts
  std::set<QWidget*> busy;        // answered, or being answered in a modal window of their own
  QTimer robot;
  QObject::connect(&robot, &QTimer::timeout, [&] {
    QWidget* modal = QApplication::activeModalWidget();
    if (modal == nullptr || busy.contains(modal)) return;
    std::function<void()> action = [] {};
    if (auto* box = qobject_cast<QMessageBox*>(modal)) {
      said.insert(said.end(), {box->windowTitle().toStdString(), box->text().toStdString()});
      QAbstractButton* yes = box->button(QMessageBox::Yes);
      action = [box, yes] { (yes != nullptr ? yes : box->button(QMessageBox::Ok))->click(); };
    } else if (auto* files = qobject_cast<QFileDialog*>(modal)) {
      const bool saving = files->windowTitle() == "Save New Gavelscope Query !";
      files->selectFile(QString::fromStdString((m_folder / (saving ? "query.sbqry" : "results.txt")).string()));
      action = [files] { QMetaObject::invokeMethod(files, "accept"); };
    } else if (auto* query = dynamic_cast<CQueryDialog*>(modal)) {
      for (const char* name : {"Antiques", "Books"}) {
        for (QListWidgetItem* item : query->categoryList()->findItems(name, Qt::MatchExactly)) item->setSelected(true);
      }
      query->edit(kBidsGreaterEdit)->setText("3");
      query->edit(kPageDepth)->setText("2");
      action = [query] {
        query->button(kSaveQuery)->click();
        query->button(kStartQuery)->click();
      };
    }
    busy.insert(modal);
    QTimer::singleShot(0, &robot, [&busy, modal, action] {
      action();
      busy.erase(modal);
    });
  });
  robot.start(20);
  const auto saw = [&](const std::string& text) { return std::ranges::find(said, text) != said.end(); };

  window.OnClick(FaceRegionRect(FaceRegion::Refresh).center());
  EXPECT_TRUE(saw("System Is Already Refreshing Display"));
  // The window's thread handles nothing meanwhile: no load may need it to finish.
  for (app::Load load : {app::Load::KeywordsUSA, app::Load::KeywordsUK, app::Load::AuctionsUSA, app::Load::AuctionsUK,
                         app::Load::HotItems}) {
    ASSERT_TRUE(window.controller().LoadDone(load).WaitFor(std::chrono::seconds(60))) << static_cast<int>(load);
  }
  ASSERT_TRUE(ProcessEventsUntil([&] { return window.mainView().barColour() == app::kColourLoaded; }));
  // The sandbox's banners are 120 by 60 pixels; the first one's link opens from it. The link is
  // published before its picture is fetched, so the picture is what to wait for.
  ASSERT_TRUE(ProcessEventsUntil([&] { return window.banner()->geometry() == QRect(794 - 120, 0, 120, 60); }));
  ASSERT_FALSE(window.bannerLink().empty());
  window.OnClick(window.banner()->geometry().center());
  EXPECT_EQ(m_browser.Opened(), std::vector<std::string>{window.bannerLink()});

  window.OnClick(FaceRegionRect(FaceRegion::TabQuery).center());
  ASSERT_TRUE(ProcessEventsUntil([&] { return saw("Search Complete"); }));
  EXPECT_TRUE(saw("Searching !"));
  window.OnClick(FaceRegionRect(FaceRegion::Export).center());
  ASSERT_TRUE(ProcessEventsUntil([&] { return std::filesystem::exists(m_folder / "results.txt"); }));
  ASSERT_EQ(QProcess::execute(QStringLiteral(GAVELSCOPE_CLI_PROGRAM),
                              {"--sandbox", "query", QString::fromStdString((m_folder / "query.sbqry").string()),
                               "--export", QString::fromStdString((m_folder / "cli.txt").string())}),
            0);
  const std::vector<std::string> exported = SortedLines(testing::ReadFileBytes(m_folder / "results.txt"));
  EXPECT_GT(exported.size(), 4U + 5U);  // four heading lines and more than five rows
  EXPECT_EQ(exported, SortedLines(testing::ReadFileBytes(m_folder / "cli.txt")));
}

TEST_F(EndToEndTest, ClosingWhileEveryWorkerWaitsEndsWithinTwoSeconds) {
  app::ControllerConfig config = Config();
  config.profile.uk.listingRoot = "http://listings.ebay.co.uk/_test/hang";
  config.profile.usa.listingRoot = "http://listings.ebay.com/_test/hang";
  auto window = std::make_unique<CMainDialog>(config, nullptr, &m_browser);
  window->show();
  window->Start(false);
  QElapsedTimer timer;
  timer.start();
  window->close();
  window.reset();
  EXPECT_LT(timer.elapsed(), 2000);
}

}  // namespace
}  // namespace gavelscope::ui

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
