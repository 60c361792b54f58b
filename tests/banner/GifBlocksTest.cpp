// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "banner/GifBlocks.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <regex>
#include <sstream>

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
std::string Comment() {
  return std::string("\x21\xFE\x03hey\x00", 7);
}
std::string Loop() {
  return std::string("\x21\xFF\x0BNETSCAPE2.0\x03\x01\x00\x00\x00", 19);
}

struct Walked {
  int count = 0;
  std::vector<GifFrame> frames;
};

// Walks data held in a buffer of exactly its size, so that a read past the end is a sanitizer error.
Walked Walk(std::string_view data) {
  auto exact = std::make_unique<char[]>(data.size() + 0);
  std::copy(data.begin(), data.end(), exact.get());
  GifBlockWalker walker(std::string_view(exact.get(), data.size()));
  Walked walked;
  walked.count = walker.CountGraphicBlocks();
  walker.Rewind();
  while (auto frame = walker.NextFrame()) walked.frames.push_back(std::move(*frame));
  return walked;
}

TEST(GifBlocks, SplitsFramesWithTheirTimingDisposalAndPlace) {
  const std::string gif = Header() + Loop() + Control(0, 2) + Image(0, 0, 4, 2) + Comment() + Control(50, 3) +
                          Image(1, 1, 2, 1) + Image(3, 0, 1, 1) + "\x3B";
  GifBlockWalker walker(gif);
  ASSERT_TRUE(walker.IsGif());
  EXPECT_EQ(walker.ScreenWidth(), 4);
  EXPECT_EQ(walker.GlobalColourTableSize(), 6U);
  EXPECT_EQ(walker.BackgroundColour(), 0x1E140AU);
  const Walked walked = Walk(gif);
  EXPECT_EQ(walked.count, 3);
  ASSERT_EQ(walked.frames.size(), 3U);
  EXPECT_EQ(walked.frames[0].delay, 0U);
  EXPECT_EQ(walked.frames[0].disposal, 2);
  EXPECT_EQ(walked.frames[1].delay, 50U);
  EXPECT_EQ(walked.frames[1].disposal, 3);
  EXPECT_EQ(walked.frames[1].left, 1);
  EXPECT_EQ(walked.frames[1].width, 2);
  // Without a graphic control extension a frame waits for ever.
  EXPECT_EQ(walked.frames[2].delay, 0xFFFFFFFFU);
  // Each frame is a GIF of its own: header and table, its blocks, a trailer.
  EXPECT_EQ(walked.frames[1].file, Header() + Control(50, 3) + Image(1, 1, 2, 1) + "\x3B");
  // Moved onto a screen of its own size, the frame gives a decoder nothing else to fill.
  EXPECT_EQ(FrameFileAtOrigin(walked.frames[1], 2, 1), Header(2, 1) + Control(50, 3) + Image(0, 0, 2, 1) + "\x3B");
}

TEST(GifBlocks, UnknownExtensionsEndTheWalkAndPlainTextIsAGraphicBlock) {
  const std::string plainText = std::string("\x21\x01\x0C", 3) + std::string(12, '\0') + std::string("\x02hi\x00", 4);
  EXPECT_EQ(Walk(Header() + plainText + Image(0, 0, 1, 1) + "\x3B").count, 2);
  const std::string unknown = std::string("\x21\x2A\x01x\x00", 5);
  EXPECT_EQ(Walk(Header() + Image(0, 0, 1, 1) + unknown + Image(0, 0, 1, 1) + "\x3B").count, 1);
}

TEST(GifBlocks, DamagedDataGivesTheFramesBeforeTheDamage) {
  const std::string gif = Header() + Control(10, 1) + Image(0, 0, 4, 2) + Control(20, 1) + Image(0, 0, 4, 2) + "\x3B";
  for (std::size_t length = 0; length <= gif.size(); ++length) {
    const Walked walked = Walk(gif.substr(0, length));
    EXPECT_LE(walked.frames.size(), 2U) << length;
    EXPECT_EQ(walked.count, static_cast<int>(walked.frames.size())) << length;
  }
  EXPECT_FALSE(GifBlockWalker("GIF8").IsGif());
  EXPECT_FALSE(GifBlockWalker("\x89PNG\r\n\x1A\n and more bytes").IsGif());
}

// The third-party files and what an independent walk found in them (SOURCES.md).
struct Expected {
  int frames = 0;
  std::vector<std::pair<std::uint32_t, int>> timing;  // delay and disposal, for files of few frames
};

std::map<std::string, Expected> ExpectationsFromSources(const std::filesystem::path& sources) {
  std::ifstream in(sources);
  std::map<std::string, Expected> table;
  const std::regex row(R"(^\| ([^ |]+\.gif) \| \d+ \| [^|]+ \| [^|]+ \| (\d+) \| ([^|]*) \|)");
  for (std::string line; std::getline(in, line);) {
    std::smatch match;
    if (!std::regex_search(line, match, row)) continue;
    Expected expected;
    expected.frames = std::stoi(match[2]);
    std::stringstream runs(match[3]);
    for (std::string run; std::getline(runs, run, ',');) {
      std::smatch value;
      if (!std::regex_search(run, value, std::regex(R"(([-\d]+)/([-\d]+)(?: x(\d+))?)"))) continue;
      const std::uint32_t delay = value[1] == "-" ? 0xFFFFFFFF : static_cast<std::uint32_t>(std::stoul(value[1]));
      const int disposal = value[2] == "-" ? 0 : std::stoi(value[2]);
      const int times = value[3].matched ? std::stoi(value[3]) : 1;
      for (int i = 0; i < times; ++i) expected.timing.emplace_back(delay, disposal);
    }
    table[match[1]] = expected;
  }
  return table;
}

std::string ReadAll(const std::filesystem::path& file) {
  return testing::ReadFileBytes(file);
}

const std::filesystem::path kGifFolder = std::filesystem::path(GAVELSCOPE_TEST_DATA_DIR) / "gif";

TEST(GifBlocks, WalksTheThirdPartyFilesAsTheIndependentWalkDid) {
  const auto table = ExpectationsFromSources(kGifFolder / "SOURCES.md");
  ASSERT_GE(table.size(), 40U);
  // Where our block rules differ from the independent walk, ours hold.
  const std::map<std::string, std::pair<int, const char*>> differences{
      {"pygif-test-suite/unknown-extension.gif", {0, "an extension of unknown label ends the walk"}},
      {"pygif-test-suite/plain-text.gif", {2, "a plain-text extension is a graphic block of its own"}},
  };
  for (const auto& [name, expected] : table) {
    const Walked walked = Walk(ReadAll(kGifFolder / name));
    if (const auto rule = differences.find(name); rule != differences.end()) {
      EXPECT_EQ(walked.count, rule->second.first) << name << ": " << rule->second.second;
      continue;
    }
    EXPECT_EQ(walked.count, expected.frames) << name;
    ASSERT_EQ(walked.frames.size(), static_cast<std::size_t>(walked.count)) << name;
    if (expected.timing.size() != walked.frames.size()) continue;
    for (std::size_t i = 0; i < walked.frames.size(); ++i) {
      EXPECT_EQ(walked.frames[i].delay, expected.timing[i].first) << name << " frame " << i;
      EXPECT_EQ(walked.frames[i].disposal, expected.timing[i].second) << name << " frame " << i;
    }
  }
}

TEST(GifBlocks, NoCutOfARealFileReadsPastItsEnd) {
  for (const auto& entry : std::filesystem::recursive_directory_iterator(kGifFolder)) {
    if (entry.path().extension() != ".gif") continue;
    const std::string data = ReadAll(entry.path());
    // The largest files are cut at a stride that still lands in every kind of block.
    const std::size_t stride = data.size() > 100000 ? 61 : 1;
    const int full = Walk(data).count;
    for (std::size_t length = 0; length < data.size(); length += stride) {
      EXPECT_LE(Walk(std::string_view(data).substr(0, length)).count, full) << entry.path() << " cut at " << length;
    }
  }
}

}  // namespace
}  // namespace gavelscope::banner
