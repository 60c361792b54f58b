// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
//
// A user's query from start to export, in the real window on an X server (Xvfb) with the real
// message boxes and file dialogs, answered by a robot as a person would answer them; the exported
// list must hold what gavelscope-cli finds for the same query file.
#include <gtest/gtest.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QTimer>

#include <algorithm>
#include <filesystem>
#include <sstream>

#include "support/RecordingBrowser.h"
#include "support/SandboxFixture.h"
#include "support/TempFolder.h"
#include "ui/MainDialog.h"
#include "ui/QueryDialog.h"

namespace gavelscope::ui {
namespace {

template <typename Condition>
bool ProcessEventsUntil(Condition done) {
  QElapsedTimer timer;
  timer.start();
  while (!done()) {
    if (timer.elapsed() > 120000) return false;
    QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
  }
  return true;
}

// Answers whatever modal window is open, one step per tick: the new-query question with Yes, the
// query dialog with two categories, a bid filter and a saved copy, file dialogs with the path the
// test wants, every other box with OK.
class Robot : public QObject {
 public:
  Robot(std::filesystem::path queryFile, std::filesystem::path exportFile)
      : m_queryFile(std::move(queryFile)), m_exportFile(std::move(exportFile)) {
    connect(&m_timer, &QTimer::timeout, this, &Robot::Step);
    m_timer.start(20);
  }

  std::vector<std::string> titles;

 private:
  void Step() {
    QWidget* modal = QApplication::activeModalWidget();
    if (modal == nullptr || modal == m_busyWith) return;
    if (auto* box = qobject_cast<QMessageBox*>(modal)) {
      titles.push_back(box->windowTitle().toStdString());
      QAbstractButton* answer =
          box->button(QMessageBox::Yes) != nullptr ? box->button(QMessageBox::Yes) : box->button(QMessageBox::Ok);
      Later(answer, [answer] { answer->click(); });
    } else if (auto* files = qobject_cast<QFileDialog*>(modal)) {
      const bool saving = files->windowTitle() == "Save New Gavelscope Query !";
      files->selectFile(QString::fromStdString((saving ? m_queryFile : m_exportFile).string()));
      Later(files, [files] { QMetaObject::invokeMethod(files, "accept"); });
    } else if (auto* query = dynamic_cast<CQueryDialog*>(modal)) {
      if (!std::filesystem::exists(m_queryFile)) {
        QListWidget* list = query->categoryList();
        for (const char* name : {"Antiques", "Books"}) {
          const QList<QListWidgetItem*> found = list->findItems(name, Qt::MatchExactly);
          if (!found.isEmpty()) found.front()->setSelected(true);
        }
        query->edit(1018)->setText("3");
        query->edit(1060)->setText("2");
        Later(query, [query] { query->button(1000)->click(); });
      } else {
        Later(query, [query] { query->button(1)->click(); });
      }
    }
  }

  // Acts from the event loop, not inside this tick: the action may open a modal window of its own.
  template <typename Action>
  void Later(QObject* target, Action action) {
    m_busyWith = qobject_cast<QWidget*>(target);
    QTimer::singleShot(0, target, [this, action] {
      action();
      m_busyWith = nullptr;
    });
  }

  std::filesystem::path m_queryFile;
  std::filesystem::path m_exportFile;
  QWidget* m_busyWith = nullptr;
  QTimer m_timer;
};

std::vector<std::string> SortedLines(const std::string& text, std::size_t skip) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    if (skip > 0) {
      --skip;
    } else {
      lines.push_back(line);
    }
  }
  std::sort(lines.begin(), lines.end());
  return lines;
}

class EndToEndTest : public testing::SandboxTest {};

TEST_F(EndToEndTest, AQueryFromTheQueryTabExportsWhatTheCommandLineFinds) {
  testing::TempFolder folder;
  testing::RecordingBrowser browser;
  app::ControllerConfig config;
  config.profile = sites::CompiledProfile();
  config.net = SandboxNetOptions();
  config.cacheFolder = folder.path();
  config.queryPollInterval = std::chrono::milliseconds(200);
  CMainDialog window(config, nullptr, &browser);
  window.show();
  window.Start(false);
  ASSERT_TRUE(window.controller().Categories(sites::Site::USA).ready.Wait({}));

  Robot robot(folder.path() / "query.sbqry", folder.path() / "results.txt");
  window.OnClick(FaceRegionRect(FaceRegion::TabQuery).center());
  const auto said = [&](const std::string& title) {
    return std::find(robot.titles.begin(), robot.titles.end(), title) != robot.titles.end();
  };
  ASSERT_TRUE(said("Warning - This may take a while !"));
  ASSERT_TRUE(ProcessEventsUntil([&] { return said("Search Complete"); }));
  EXPECT_TRUE(said("Searching !"));
  window.OnClick(FaceRegionRect(FaceRegion::Export).center());
  ASSERT_TRUE(ProcessEventsUntil([&] { return std::filesystem::exists(folder.path() / "results.txt"); }));
  const std::string exported = testing::ReadFileBytes(folder.path() / "results.txt");

  QProcess cli;
  cli.setProcessChannelMode(QProcess::ForwardedErrorChannel);
  cli.start(QStringLiteral(GAVELSCOPE_CLI_PROGRAM),
            {"--sandbox", "query", QString::fromStdString((folder.path() / "query.sbqry").string())});
  ASSERT_TRUE(cli.waitForFinished(120000));
  ASSERT_EQ(cli.exitCode(), 0);
  const std::string printed = cli.readAllStandardOutput().toStdString();

  // The same headings, then the same rows; rows that tie on the sort key may come in either order.
  constexpr std::size_t kHeadingLines = 4;
  const std::vector<std::string> rows = SortedLines(exported, kHeadingLines);
  EXPECT_GT(rows.size(), 5U);
  EXPECT_EQ(rows, SortedLines(printed, kHeadingLines));
  EXPECT_EQ(exported.substr(0, exported.find("\r\n\r\n", exported.find("\r\n\r\n") + 4)),
            printed.substr(0, printed.find("\r\n\r\n", printed.find("\r\n\r\n") + 4)));
}

}  // namespace
}  // namespace gavelscope::ui

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
