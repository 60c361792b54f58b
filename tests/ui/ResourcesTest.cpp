// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "ui/Resources.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>

#include <string>

#include "banner/GifBlocks.h"
#include "ui/AnimatedPicture.h"

namespace gavelscope::ui {
namespace {

struct Picture {
  const char* name;
  QSize size;
  bool animated;
};

const Picture kPictures[] = {
    {"background.png", {64, 64}, false}, {"stop-active.png", {48, 37}, false}, {"stop-idle.png", {48, 37}, false},
    {"gavelscope.png", {48, 48}, false}, {"usa.gif", {40, 22}, false},         {"usaselected.gif", {40, 22}, true},
    {"uk.gif", {40, 22}, false},         {"ukselected.gif", {40, 22}, true},   {"About.gif", {64, 64}, true},
};

// The window may be started from any folder, so every test runs from the root folder.
class ResourcesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    m_saved = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(QStringLiteral("/")));
  }
  void TearDown() override { QDir::setCurrent(m_saved); }

 private:
  QString m_saved;
};

TEST_F(ResourcesTest, EveryPictureIsFoundAndDecodesAtItsSize) {
  for (const Picture& picture : kPictures) {
    SCOPED_TRACE(picture.name);
    const QString path = PicturePath(QString::fromLatin1(picture.name));
    ASSERT_FALSE(path.isEmpty());
    EXPECT_TRUE(QFileInfo(path).isAbsolute());
    EXPECT_EQ(QImageReader(path).imageCount() > 1, picture.animated);
    QImageReader reader(path);
    const QImage image = reader.read();
    ASSERT_FALSE(image.isNull()) << reader.errorString().toStdString();
    EXPECT_EQ(image.size(), picture.size);
  }
}

TEST_F(ResourcesTest, AnimationsCarryTheirTimingAndPlayInTheWindowsPicture) {
  for (const Picture& picture : kPictures) {
    if (!picture.animated) continue;
    SCOPED_TRACE(picture.name);
    const QString path = PicturePath(QString::fromLatin1(picture.name));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    const std::string data(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    banner::GifBlockWalker walker(data);
    std::size_t frames = 0;
    while (auto frame = walker.NextFrame()) {
      ++frames;
      EXPECT_TRUE(frame->disposal == 1 || frame->disposal == 2) << frame->disposal;
      EXPECT_GT(frame->delay, 0u);
      EXPECT_NE(frame->delay, 0xFFFFFFFFu);
    }
    EXPECT_GT(frames, 1u);
    // Every frame must survive being cut out and decoded on its own, or the picture skips it.
    CAnimatedPicture player;
    ASSERT_TRUE(player.LoadFromFile(path));
    EXPECT_EQ(player.frameCount(), frames);
  }
}

// A file put into a folder beside this program for one test, removed afterwards with any folder
// made for it.
class PlacedFile {
 public:
  PlacedFile(const QString& folder, const QString& name) : m_folder(QDir::cleanPath(folder)) {
    m_madeFolder = !QFileInfo::exists(m_folder) && QDir().mkpath(m_folder);
    m_path = m_folder + QLatin1Char('/') + name;
    QFile file(m_path);
    m_written = file.open(QIODevice::WriteOnly) && file.write("probe") == 5;
  }
  ~PlacedFile() {
    QFile::remove(m_path);
    if (m_madeFolder) QDir().rmpath(m_folder);
  }
  PlacedFile(const PlacedFile&) = delete;
  PlacedFile& operator=(const PlacedFile&) = delete;

  bool written() const { return m_written; }
  const QString& path() const { return m_path; }

 private:
  QString m_folder;
  QString m_path;
  bool m_madeFolder = false;
  bool m_written = false;
};

TEST_F(ResourcesTest, PrefersTheBuildFolderThenTheInstalledFolderThenNothing) {
  const QString name = QStringLiteral("ResourcesTest-probe.png");
  const QString programFolder = QCoreApplication::applicationDirPath();
  EXPECT_TRUE(PicturePath(name).isEmpty());
  {
    const PlacedFile installed(programFolder + QStringLiteral("/../share/gavelscope"), name);
    ASSERT_TRUE(installed.written());
    EXPECT_EQ(PicturePath(name), installed.path());
    const PlacedFile built(programFolder + QStringLiteral("/resources"), name);
    ASSERT_TRUE(built.written());
    EXPECT_EQ(PicturePath(name), built.path());
  }
  EXPECT_TRUE(PicturePath(name).isEmpty());
}

}  // namespace
}  // namespace gavelscope::ui
