// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
//
// The real program on a real X server: started on the sandbox under Xvfb, it saves a picture of
// its window once the start-up loads are done, and the picture is checked here.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

#include <filesystem>

namespace {

int CountPixels(const QImage& image, const QRect& area, const std::function<bool(QColor)>& wanted) {
  int count = 0;
  for (int y = area.top(); y <= area.bottom(); ++y) {
    for (int x = area.left(); x <= area.right(); ++x) count += wanted(image.pixelColor(x, y)) ? 1 : 0;
  }
  return count;
}

// Runs `program` with `arguments` on a fresh X server from `folder`, with a private runtime and
// cache folder; true when it ended with exit code 0.
bool RunOnXServer(const QString& program, const QStringList& arguments, const QString& folder = {}) {
  QTemporaryDir home;
  QProcess process;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  // The X server's platform, whatever the other window tests use; a folder of its own for the
  // single-instance lock and the downloads.
  environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
  environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), home.path());
  environment.insert(QStringLiteral("XDG_CACHE_HOME"), home.path());
  if (!environment.contains(QStringLiteral("LSAN_OPTIONS"))) {
    environment.insert(QStringLiteral("LSAN_OPTIONS"), QStringLiteral("suppressions=" GAVELSCOPE_LSAN_SUPPRESSIONS));
  }
  process.setProcessEnvironment(environment);
  process.setProcessChannelMode(QProcess::ForwardedChannels);
  if (!folder.isEmpty()) process.setWorkingDirectory(folder);
  process.start(QStringLiteral("xvfb-run"), QStringList{"-a", "-s", "-screen 0 1024x768x24", program} + arguments);
  return home.isValid() && process.waitForStarted() && process.waitForFinished(120000) &&
         process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

TEST(Screenshot, TheWindowOnAnXServerShowsTheLoadedSandbox) {
  const QString picture = QStringLiteral(GAVELSCOPE_SCREENSHOT);
  std::filesystem::create_directories(std::filesystem::path(picture.toStdString()).parent_path());
  std::filesystem::remove(picture.toStdString());
  ASSERT_TRUE(RunOnXServer(QStringLiteral(GAVELSCOPE_PROGRAM), {"--sandbox", "--screenshot", picture}));

  const QImage shot(picture);
  ASSERT_FALSE(shot.isNull()) << picture.toStdString();
  EXPECT_EQ(shot.size(), QSize(794, 593));
  // "Todays Keywords" is the selected tab; the other three are white.
  EXPECT_EQ(shot.pixelColor(151, 8), QColor(255, 204, 0));
  for (int top : {27, 49, 71}) EXPECT_EQ(shot.pixelColor(151, top + 3), QColor(Qt::white)) << top;
  // The run has completed: the bar's filled part is red.
  EXPECT_GT(CountPixels(shot, QRect(231, 122, 239, 11), [](QColor c) { return c == QColor(255, 0, 0); }), 50);
  // The tree lists the sandbox's categories in blue, one per line.
  int blueLines = 0;
  for (int y = 137; y < 533; ++y) {
    blueLines += CountPixels(shot, QRect(17, y, 390, 1),
                             [](QColor c) { return c.blue() > 150 && c.red() < 100 && c.green() < 100; }) > 0
                     ? 1
                     : 0;
  }
  EXPECT_GT(blueLines, 100);
}

TEST(Install, TheInstalledProgramStartsFromAnyFolderAndFindsItsPicturesAndItsSandbox) {
  QTemporaryDir prefix;
  ASSERT_TRUE(prefix.isValid());
  QProcess install;
  install.setProcessChannelMode(QProcess::ForwardedChannels);
  install.start(QStringLiteral(GAVELSCOPE_CMAKE),
                {"--install", QStringLiteral(GAVELSCOPE_BUILD_DIR), "--prefix", prefix.path()});
  ASSERT_TRUE(install.waitForFinished(120000));
  ASSERT_EQ(install.exitCode(), 0);
  const std::filesystem::path root = prefix.path().toStdString();
  for (const char* file : {"bin/gavelscope", "bin/gavelscope-cli", "share/gavelscope/usaselected.gif",
                           "share/applications/gavelscope.desktop", "share/icons/hicolor/48x48/apps/gavelscope.png",
                           "share/gavelscope/sandbox/sandbox.py", "share/gavelscope/sandbox/sitegen.py"}) {
    EXPECT_TRUE(std::filesystem::is_regular_file(root / file)) << file;
  }

  const QString picture = prefix.filePath(QStringLiteral("shot.png"));
  ASSERT_TRUE(RunOnXServer(prefix.filePath(QStringLiteral("bin/gavelscope")), {"--sandbox", "--screenshot", picture},
                           QStringLiteral("/")));
  const QImage shot(picture);
  const QImage tile(prefix.filePath(QStringLiteral("share/gavelscope/background.png")));
  ASSERT_FALSE(shot.isNull());
  ASSERT_FALSE(tile.isNull());
  // The background is the installed tile, repeated; the USA flag is drawn at its place.
  for (QPoint at : {QPoint(3, 3), QPoint(tile.width() + 5, 7), QPoint(9, tile.height() + 2)}) {
    EXPECT_EQ(shot.pixelColor(at), tile.pixelColor(at.x() % tile.width(), at.y() % tile.height())) << at.x();
  }
  const QImage flag(prefix.filePath(QStringLiteral("share/gavelscope/usaselected.gif")));
  EXPECT_EQ(shot.pixelColor(15 + flag.width() / 2, 551 + flag.height() / 2),
            flag.pixelColor(flag.width() / 2, flag.height() / 2));
}

}  // namespace

int main(int argc, char** argv) {
  QCoreApplication application(argc, argv);
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
