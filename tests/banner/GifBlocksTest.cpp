// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "banner/GifBlocks.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <regex>

#include "support/TempFolder.h"

namespace gavelscope::banner {
namespace {

// Building blocks of hand-made GIFs.
std::string Word(int value) {
  return {static_cast<char>(value & 0xFF), static_cast<char>((value >> 8) & 0xFF)};
}
std::string Header(int width = 4, int height = 2) {
  // A two-entry global table whose background entry (index 1) is red 10, green 20, blue 30.
  return std::string("GIF89a") + Word(width) + Word(height) + std::string("\x80\x01\x00", 3) +
         std::string("\0\0\0", 3) + "\x0A\x14\x1E";
}
std::string Control(int delay, int disposal) {
  return std::string("\x21\xF9\x04", 3) + static_cast<char>(disposal << 2) + Word(delay) + std::string("\0\0", 2);
}
std::string Image(int left, int top, int width, int height) {
  return "\x2C" + Word(left) + Word(top) + Word(width) + Word(height) + std::string("\x00\x02\x02\x4C\x01\x00", 6);
}
const std::string kComment("\x21\xFE\x03hey\x00", 7);
const std::string kLoop("\x21\xFF\x0BNETSCAPE2.0\x03\x01\x00\x00\x00", 19);

// The graphic block count and the frames, walked from a buffer of exactly the data's size, so that a
// read past the end is a sanitizer error.
std::pair<int, std::vector<GifFrame>> Walk(std::string_view data) {
  auto exact = std::make_unique<char[]>(data.size());
  std::copy(data.begin(), data.end(), exact.get());
  GifBlockWalker walker(std::string_view(exact.get(), data.size()));
  std::pair<int, std::vector<GifFrame>> walked{walker.CountGraphicBlocks(), {}};
  walker.Rewind();
  while (auto frame = walker.NextFrame()) walked.second.push_back(std::move(*frame));
  return walked;
}

TEST(GifBlocks, SplitsFramesWithTheirTimingDisposalAndPlace) {
  const std::string gif = Header() + kLoop + Control(0, 2) + Image(0, 0, 4, 2) + kComment + Control(50, 3) +
                          Image(1, 1, 2, 1) + Image(3, 0, 1, 1) + "\x3B";
  EXPECT_FALSE(GifBlockWalker("GIF8").IsGif());
  EXPECT_FALSE(GifBlockWalker("\x89PNG\r\n\x1A\n and more bytes").IsGif());
  GifBlockWalker walker(gif);
  ASSERT_TRUE(walker.IsGif());
  EXPECT_EQ(walker.ScreenWidth(), 4);
  EXPECT_EQ(walker.GlobalColourTableSize(), 6U);
  EXPECT_EQ(walker.BackgroundColour(), 0x1E140AU);
  const auto [count, frames] = Walk(gif);
  EXPECT_EQ(count, 3);
  ASSERT_EQ(frames.size(), 3U);
  EXPECT_EQ(frames[0].delay, 0U);
  EXPECT_EQ(frames[0].disposal, 2);
  EXPECT_EQ(frames[1].delay, 50U);
  EXPECT_EQ(frames[1].disposal, 3);
  EXPECT_EQ(frames[1].left, 1);
  EXPECT_EQ(frames[1].width, 2);
  // Without a graphic control extension a frame waits for ever.
  EXPECT_EQ(frames[2].delay, 0xFFFFFFFFU);
  // Each frame is a GIF of its own: header and table, its blocks, a trailer.
  EXPECT_EQ(frames[1].file, Header() + Control(50, 3) + Image(1, 1, 2, 1) + "\x3B");
  // Moved onto a screen of its own size, the frame gives a decoder nothing else to fill.
  EXPECT_EQ(FrameFileAtOrigin(frames[1], 2, 1), Header(2, 1) + Control(50, 3) + Image(0, 0, 2, 1) + "\x3B");
}

TEST(GifBlocks, UnknownExtensionsEndTheWalkAndPlainTextIsAGraphicBlock) {
  const std::string plainText = std::string("\x21\x01\x0C", 3) + std::string(12, '\0') + std::string("\x02hi\x00", 4);
  EXPECT_EQ(Walk(Header() + plainText + Image(0, 0, 1, 1) + "\x3B").first, 2);
  const std::string unknown = std::string("\x21\x2A\x01x\x00", 5);
  EXPECT_EQ(Walk(Header() + Image(0, 0, 1, 1) + unknown + Image(0, 0, 1, 1) + "\x3B").first, 1);
}

// Damaged files among them give the frames before the damage.
TEST(GifBlocks, WalksTheThirdPartyFilesIntoAsManyFramesAsTheIndependentWalkFound) {
  const std::filesystem::path folder = std::filesystem::path(GAVELSCOPE_TEST_DATA_DIR) / "gif";
  // Where our block rules differ from the independent walk, ours hold (see the hand-made test above).
  std::map<std::string, int> frames{{"pygif-test-suite/unknown-extension.gif", 0},
                                    {"pygif-test-suite/plain-text.gif", 2}};
  std::ifstream sources(folder / "SOURCES.md");
  const std::regex row(R"(^\| ([^ |]+\.gif) \| \d+ \| [^|]+ \| [^|]+ \| (\d+) \|)");
  std::smatch match;
  for (std::string line; std::getline(sources, line);) {
    if (std::regex_search(line, match, row)) frames.try_emplace(match[1], std::stoi(match[2]));
  }
  ASSERT_GE(frames.size(), 40U);
  for (const auto& [name, expected] : frames) {
    const auto [count, frames] = Walk(testing::ReadFileBytes(folder / name));
    EXPECT_EQ(count, expected) << name;
    EXPECT_EQ(frames.size(), static_cast<std::size_t>(count)) << name;
  }
}

}  // namespace
}  // namespace gavelscope::banner
