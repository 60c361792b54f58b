// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "app/Archive.h"

#include <gtest/gtest.h>

#include "keywords/CategoryNameObject.h"

namespace gavelscope::app {
namespace {

std::string Stored(std::string_view text) {
  CArchive archive = CArchive::ForStoring();
  archive.WriteString(text);
  return archive.bytes();
}

TEST(Archive, StringsCarryTheLengthFormOfTheirSize) {
  EXPECT_EQ(Stored("ab"), std::string("\x02"
                                      "ab"));
  EXPECT_EQ(Stored(std::string(254, 'x')).substr(0, 1), "\xFE");
  EXPECT_EQ(Stored(std::string(255, 'x')).substr(0, 3), std::string("\xFF\xFF\x00", 3));
  EXPECT_EQ(Stored(std::string(65533, 'x')).substr(0, 3), std::string("\xFF\xFD\xFF", 3));
  EXPECT_EQ(Stored(std::string(65534, 'x')).substr(0, 7), std::string("\xFF\xFF\xFF\xFE\xFF\x00\x00", 7));
  for (std::size_t length : {0U, 254U, 255U, 65533U, 65534U, 70000U}) {
    const std::string text(length, 'q');
    CArchive loading = CArchive::ForLoading(Stored(text));
    std::string back;
    ASSERT_TRUE(loading.ReadString(back)) << length;
    EXPECT_EQ(back, text);
  }
}

TEST(Archive, NumbersAreLittleEndian) {
  CArchive archive = CArchive::ForStoring();
  archive.WriteInt32(-2);
  archive.WriteWord(0x1234);
  EXPECT_EQ(archive.bytes(), std::string("\xFE\xFF\xFF\xFF\x34\x12", 6));
}

TEST(Archive, WideStringsLoadAsSingleBytes) {
  CArchive archive =
      CArchive::ForLoading(std::string("\xFF\xFE\xFF\x03"
                                       "A\0\xA3\0\x3A\x26",
                                       10));
  std::string text;
  ASSERT_TRUE(archive.ReadString(text));
  EXPECT_EQ(text, "A\xA3?");
}

TEST(Archive, TruncatedInputFailsWithoutReadingPastIt) {
  for (std::string bytes : {std::string("\x05"
                                        "ab"),
                            std::string("\xFF\x10"), std::string("\xFF\xFF\xFF\xFF\xFF\xFF\x7F"),
                            std::string("\xFF\xFE\xFF\x05"
                                        "a\0",
                                        6)}) {
    CArchive archive = CArchive::ForLoading(bytes);
    std::string text;
    EXPECT_FALSE(archive.ReadString(text));
    EXPECT_TRUE(archive.failed());
    std::int32_t number = 0;
    EXPECT_FALSE(archive.ReadInt32(number));
  }
}

TEST(CategoryNameObject, StoresAndLoadsItsName) {
  for (const char* name : {"Antiques & Art", ""}) {
    CArchive storing = CArchive::ForStoring();
    keywords::CCategoryNameObject(name).Serialize(storing);
    CArchive loading = CArchive::ForLoading(storing.bytes());
    keywords::CCategoryNameObject back;
    back.Serialize(loading);
    EXPECT_FALSE(loading.failed());
    EXPECT_EQ(back.name(), name);
  }
}

}  // namespace
}  // namespace gavelscope::app
