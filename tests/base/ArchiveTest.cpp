// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "base/Archive.h"

#include <gtest/gtest.h>

namespace gavelscope::base {
namespace {

TEST(Archive, NumbersAreLittleEndian) {
  CArchive archive = CArchive::ForStoring();
  archive.WriteInt32(-2);
  archive.WriteWord(0x1234);
  EXPECT_EQ(archive.bytes(), std::string("\xFE\xFF\xFF\xFF\x34\x12", 6));
}

TEST(Archive, WideStringsLoadAsSingleBytes) {
  CArchive archive = CArchive::ForLoading(std::string("\xFF\xFE\xFF\x03\x41\0\xA3\0\x3A\x26", 10));
  std::string text;
  ASSERT_TRUE(archive.ReadString(text));
  EXPECT_EQ(text, "A\xA3?");
}

TEST(Archive, TruncatedInputFailsWithoutReadingPastIt) {
  for (std::string bytes : {std::string("\x05\x61\x62"), std::string("\xFF\x10"),
                            std::string("\xFF\xFF\xFF\xFF\xFF\xFF\x7F"), std::string("\xFF\xFE\xFF\x05\x61\0", 6)}) {
    CArchive archive = CArchive::ForLoading(bytes);
    std::string text;
    EXPECT_FALSE(archive.ReadString(text));
    EXPECT_TRUE(archive.failed());
    std::int32_t number = 0;
    EXPECT_FALSE(archive.ReadInt32(number));
  }
}

}  // namespace
}  // namespace gavelscope::base
