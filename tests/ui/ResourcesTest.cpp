// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "ui/Resources.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QImageReader>

#include <filesystem>

#include "banner/GifBlocks.h"
#include "support/TempFolder.h"
#include "ui/AnimatedPicture.h"

namespace gavelscope::ui {
namespace {

// The window may be started from any folder, so every test runs from the root folder.
class ResourcesTest : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(QDir::setCurrent(QStringLiteral("/"))); }
  void TearDown() override { QDir::setCurrent(m_saved); }
  const QString m_saved = QDir::currentPath();
};

TEST_F(ResourcesTest, EveryPictureIsFoundAtItsSizeAndEveryAnimationPlaysAllItsTimedFrames) {
  const std::tuple<const char*, QSize, bool> pictures[] = {
      {"background.png", {64, 64}, false}, {"stop-active.png", {48, 37}, false}, {"stop-idle.png", {48, 37}, false},
      {"gavelscope.png", {48, 48}, false}, {"usa.gif", {40, 22}, false},         {"usaselected.gif", {40, 22}, true},
      {"uk.gif", {40, 22}, false},         {"ukselected.gif", {40, 22}, true},   {"About.gif", {64, 64}, true}};
  for (const auto& [name, size, animated] : pictures) {
    SCOPED_TRACE(name);
    const QString path = PicturePath(QString::fromLatin1(name));
    ASSERT_TRUE(QFileInfo(path).isAbsolute());
    QImageReader reader(path);
    EXPECT_EQ(reader.imageCount() > 1, animated);
    const QImage image = reader.read();
    ASSERT_FALSE(image.isNull()) << reader.errorString().toStdString();
    EXPECT_EQ(image.size(), size);
    if (!animated) continue;
    const std::string data = testing::ReadFileBytes(path.toStdString());
    banner::GifBlockWalker walker(data);
    std::size_t frames = 0;
    for (; auto frame = walker.NextFrame(); ++frames) {
      EXPECT_TRUE(frame->disposal == 1 || frame->disposal == 2) << frame->disposal;
      EXPECT_TRUE(frame->delay > 0 && frame->delay != 0xFFFFFFFFu) << frame->delay;
    }
    // Every frame must survive being cut out and decoded on its own, or the picture skips it.
    CAnimatedPicture player;
    ASSERT_TRUE(player.LoadFromFile(path));
    EXPECT_EQ(player.frameCount(), frames);
  }
}

}  // namespace
}  // namespace gavelscope::ui
