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

TEST(Screenshot, TheWindowOnAnXServerShowsTheLoadedSandbox) {
  const QString picture = QStringLiteral(GAVELSCOPE_SCREENSHOT);
  std::filesystem::create_directories(std::filesystem::path(picture.toStdString()).parent_path());
  std::filesystem::remove(picture.toStdString());
  QTemporaryDir home;
  ASSERT_TRUE(home.isValid());

  QProcess program;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  // The X server's platform, whatever the other window tests use; a folder of its own for the
  // single-instance lock and the downloads.
  environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
  environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), home.path());
  environment.insert(QStringLiteral("XDG_CACHE_HOME"), home.path());
  if (!environment.contains(QStringLiteral("LSAN_OPTIONS"))) {
    environment.insert(QStringLiteral("LSAN_OPTIONS"), QStringLiteral("suppressions=" GAVELSCOPE_LSAN_SUPPRESSIONS));
  }
  program.setProcessEnvironment(environment);
  program.setProcessChannelMode(QProcess::ForwardedChannels);
  program.start(QStringLiteral("xvfb-run"),
                {"-a", "-s", "-screen 0 1024x768x24", QStringLiteral(GAVELSCOPE_PROGRAM), "--sandbox", "--screenshot",
                 picture});
  ASSERT_TRUE(program.waitForStarted());
  ASSERT_TRUE(program.waitForFinished(120000));
  ASSERT_EQ(program.exitCode(), 0);

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
    blueLines += CountPixels(shot, QRect(17, y, 390, 1), [](QColor c) {
                   return c.blue() > 150 && c.red() < 100 && c.green() < 100;
                 }) > 0
                     ? 1
                     : 0;
  }
  EXPECT_GT(blueLines, 100);
}

}  // namespace

int main(int argc, char** argv) {
  QCoreApplication application(argc, argv);
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
