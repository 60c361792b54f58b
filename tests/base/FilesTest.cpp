// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "base/Files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <set>
#include <thread>

#include "support/TempFolder.h"

namespace gavelscope::base {
namespace {

using testing::ReadFileBytes;
using testing::TempFolder;
using testing::WriteFileBytes;

mode_t ModeOf(const std::filesystem::path& file) {
  return static_cast<mode_t>(std::filesystem::status(file).permissions());
}

// Everything in the folder: a write must leave no temporary file behind.
std::set<std::string> Names(const TempFolder& folder) {
  std::set<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder.path())) names.insert(entry.path().filename());
  return names;
}

TEST(Files, RegularFilesAreReplacedWholeAndKeepTheirMode) {
  TempFolder folder;
  ASSERT_TRUE(WriteWholeFile(folder / "new.txt", "fresh"));
  EXPECT_EQ(ReadFileBytes(folder / "new.txt"), "fresh");
  const mode_t mask = umask(0);
  umask(mask);
  EXPECT_EQ(ModeOf(folder / "new.txt"), 0666 & ~mask);

  // A file of the user's own named like a temporary one is nobody's business but the user's.
  WriteFileBytes(folder / "notes.txt", "old");
  WriteFileBytes(folder / "notes.txt.part", "the user's");
  chmod((folder / "notes.txt").c_str(), 0600);
  ASSERT_TRUE(WriteWholeFile(folder / "notes.txt", "new"));
  EXPECT_EQ(ReadFileBytes(folder / "notes.txt"), "new");
  EXPECT_EQ(ModeOf(folder / "notes.txt"), 0600U);
  EXPECT_EQ(ReadFileBytes(folder / "notes.txt.part"), "the user's");
  EXPECT_EQ(Names(folder), (std::set<std::string>{"new.txt", "notes.txt", "notes.txt.part"}));
}

// A link, a pipe or a device is written through, and stays what it was.
TEST(Files, LinksPipesAndDevicesAreWrittenThrough) {
  TempFolder folder;
  std::filesystem::create_directory(folder / "real");
  WriteFileBytes(folder / "real" / "target.txt", "old");
  std::filesystem::create_symlink("real/target.txt", folder / "link.txt");
  std::filesystem::create_symlink("real/absent.txt", folder / "dangling.txt");
  ASSERT_TRUE(WriteWholeFile(folder / "link.txt", "through the link"));
  ASSERT_TRUE(WriteWholeFile(folder / "dangling.txt", "created"));
  EXPECT_TRUE(std::filesystem::is_symlink(folder / "link.txt"));
  EXPECT_EQ(ReadFileBytes(folder / "real" / "target.txt"), "through the link");
  EXPECT_EQ(ReadFileBytes(folder / "real" / "absent.txt"), "created");

  const auto fifo = folder / "pipe";
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  std::string received;
  std::thread reader([&] { received = ReadFileBytes(fifo); });
  EXPECT_TRUE(WriteWholeFile(fifo, "down the pipe"));
  reader.join();
  EXPECT_EQ(received, "down the pipe");
  EXPECT_TRUE(std::filesystem::is_fifo(fifo));

  EXPECT_TRUE(WriteWholeFile("/dev/null", "gone"));
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
  EXPECT_EQ(WriteWholeFile("/dev/full", "no room").error, "No space left on device");
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/full"));
}

TEST(Files, WhatCannotBeWrittenSaysWhyAndChangesNothing) {
  TempFolder folder;
  EXPECT_EQ(WriteWholeFile(folder.path(), "x").error, "Is a directory");
  EXPECT_EQ(WriteWholeFile(folder / "missing" / "x.txt", "x").error, "No such file or directory");
  // Root writes into any folder of its own; the kernel's own folders refuse even root.
  std::filesystem::create_directory(folder / "locked");
  chmod((folder / "locked").c_str(), 0500);
  const std::filesystem::path locked = geteuid() == 0 ? "/sys/kernel" : folder / "locked";
  EXPECT_EQ(WriteWholeFile(locked / "x.txt", "x").error, "Permission denied");
  EXPECT_EQ(Names(folder), (std::set<std::string>{"locked"}));
}

TEST(Files, ReadingTakesOnlyRegularFilesOfBoundedSize) {
  TempFolder folder;
  WriteFileBytes(folder / "small", "12345");
  std::string bytes, error;
  EXPECT_TRUE(ReadWholeFile(folder / "small", 5, bytes, error));
  EXPECT_EQ(bytes, "12345");
  EXPECT_FALSE(ReadWholeFile(folder / "small", 4, bytes, error));
  EXPECT_EQ(error, "larger than 4 bytes");
  EXPECT_FALSE(ReadWholeFile(folder.path(), 100, bytes, error));
  EXPECT_EQ(error, "Is a directory");
  EXPECT_FALSE(ReadWholeFile("/dev/zero", 100, bytes, error));
  EXPECT_EQ(bytes, "12345");
}

TEST(Files, LinesEndAtALineTooLong) {
  TempFolder folder;
  WriteFileBytes(folder / "lines", "one\r\ntwo\n" + std::string(50, 'x') + "\nafter\n");
  std::vector<std::string> lines;
  const auto take = [&](std::string_view line) { return lines.emplace_back(line), true; };
  EXPECT_FALSE(ReadLines(folder / "lines", 10, take));
  EXPECT_EQ(lines, (std::vector<std::string>{"one\r", "two"}));
  lines.clear();
  EXPECT_TRUE(ReadLines(folder / "lines", 50, take));
  EXPECT_EQ(lines.size(), 4U);
}

}  // namespace
}  // namespace gavelscope::base
