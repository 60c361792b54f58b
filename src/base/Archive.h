// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace gavelscope::base {

// The byte format the saved files use: little-endian numbers and length-prefixed single-byte
// strings. An archive either stores (into its buffer) or loads (from its own copy of the bytes). A load never
// reads past its bytes: a read that would fails, and so does every read after it.
class CArchive {
 public:
  static CArchive ForStoring() { return CArchive(true, {}); }
  static CArchive ForLoading(std::string bytes) { return CArchive(false, std::move(bytes)); }

  bool IsStoring() const { return m_storing; }
  bool failed() const { return m_failed; }
  // What a storing archive has written so far.
  const std::string& bytes() const { return m_out; }

  void WriteInt32(std::int32_t value);
  void WriteWord(std::uint16_t value);
  void WriteByte(std::uint8_t value);
  // Length prefix (one byte below 255; 0xFF and a word up to 65533; 0xFF, 0xFFFF and a 32-bit
  // length beyond), then the bytes.
  void WriteString(std::string_view text);

  bool ReadInt32(std::int32_t& value);
  bool ReadWord(std::uint16_t& value);
  bool ReadByte(std::uint8_t& value);
  // Also accepts the wide-string form (0xFF, 0xFFFE, then a length and UTF-16 units); units beyond
  // one byte become '?', since all text here is single-byte.
  bool ReadString(std::string& text);

  // Marks the load as failed, for readers that find bytes they cannot accept.
  void Fail() { m_failed = true; }

 private:
  CArchive(bool storing, std::string in) : m_storing(storing), m_in(std::move(in)) {}
  bool Take(std::size_t count, std::string_view& taken);
  bool ReadLength(std::uint32_t& length);

  bool m_storing;
  std::string m_out;
  std::string m_in;
  std::size_t m_pos = 0;
  bool m_failed = false;
};

}  // namespace gavelscope::base
