// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
//
// The installed program on a real X server: started from the root folder on the sandbox under Xvfb,
// it saves a picture of its window once the start-up loads are done, and the picture is checked here.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

#include <functional>

namespace {

TEST(Install, TheInstalledProgramStartsFromAnyFolderAndShowsTheLoadedSandboxWithItsPictures) {
  QTemporaryDir prefix;
  ASSERT_TRUE(prefix.isValid());
  ASSERT_EQ(QProcess::execute(QStringLiteral(GAVELSCOPE_CMAKE),
                              {"--install", QStringLiteral(GAVELSCOPE_BUILD_DIR), "--prefix", prefix.path()}),
            0);
  // The programs, the pictures and the stand-in sites prove themselves below.
  for (const char* file : {"bin/gavelscope-cli", "share/applications/gavelscope.desktop",
                           "share/icons/hicolor/48x48/apps/gavelscope.png"}) {
    EXPECT_TRUE(QFileInfo(prefix.filePath(QString::fromLatin1(file))).isFile()) << file;
  }

  // The X server's platform, whatever the other window tests use; a folder of its own for the
  // single-instance lock and the downloads. The picture lands where the README says.
  qunsetenv("QT_QPA_PLATFORM");
  qputenv("XDG_RUNTIME_DIR", prefix.path().toUtf8());
  qputenv("XDG_CACHE_HOME", prefix.path().toUtf8());
  if (qEnvironmentVariableIsEmpty("LSAN_OPTIONS"))
    qputenv("LSAN_OPTIONS", "suppressions=" GAVELSCOPE_LSAN_SUPPRESSIONS);
  const QString picture = QStringLiteral(GAVELSCOPE_SCREENSHOT);
  ASSERT_TRUE(QDir().mkpath(QFileInfo(picture).path()));
  QFile::remove(picture);
  ASSERT_TRUE(QDir::setCurrent(QStringLiteral("/")));
  ASSERT_EQ(QProcess::execute(QStringLiteral("xvfb-run"),
                              {"-a", "-s", "-screen 0 1024x768x24", prefix.filePath(QStringLiteral("bin/gavelscope")),
                               "--sandbox", "--screenshot", picture}),
            0);

  const QImage shot(picture);
  const QImage flag(prefix.filePath(QStringLiteral("share/gavelscope/usaselected.gif")));
  ASSERT_FALSE(shot.isNull() || flag.isNull());
  // The installed USA flag is drawn at its place.
  EXPECT_EQ(shot.pixelColor(15 + flag.width() / 2, 551 + flag.height() / 2),
            flag.pixelColor(flag.width() / 2, flag.height() / 2));
  const auto count = [&shot](QRect area, const std::function<bool(QColor)>& wanted) {
    int pixels = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
      for (int x = area.left(); x <= area.right(); ++x) pixels += wanted(shot.pixelColor(x, y)) ? 1 : 0;
    }
    return pixels;
  };
  // The run has completed: the bar's filled part is red.
  EXPECT_GT(count(QRect(231, 122, 239, 11), [](QColor c) { return c == QColor(255, 0, 0); }), 50);
  // The tree lists the sandbox's categories in blue, one per line.
  int blueLines = 0;
  for (int y = 137; y < 533; ++y) {
    blueLines +=
        count(QRect(17, y, 390, 1), [](QColor c) { return c.blue() > 150 && c.red() < 100 && c.green() < 100; }) > 0;
  }
  EXPECT_GT(blueLines, 100);
}

}  // namespace

int main(int argc, char** argv) {
  QCoreApplication application(argc, argv);
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
