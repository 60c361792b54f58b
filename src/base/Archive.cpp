// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "base/Archive.h"

namespace gavelscope::base {

namespace {

constexpr std::uint8_t kLongLength = 0xFF;
constexpr std::uint16_t kWideMark = 0xFFFE;
constexpr std::uint16_t kLongerLength = 0xFFFF;

}  // namespace

void CArchive::WriteByte(std::uint8_t value) {
  m_out.push_back(static_cast<char>(value));
}

void CArchive::WriteWord(std::uint16_t value) {
  WriteByte(static_cast<std::uint8_t>(value & 0xFF));
  WriteByte(static_cast<std::uint8_t>(value >> 8));
}

void CArchive::WriteInt32(std::int32_t value) {
  const auto bits = static_cast<std::uint32_t>(value);
  WriteWord(static_cast<std::uint16_t>(bits & 0xFFFF));
  WriteWord(static_cast<std::uint16_t>(bits >> 16));
}

void CArchive::WriteString(std::string_view text) {
  const std::size_t length = text.size();
  if (length < kLongLength) {
    WriteByte(static_cast<std::uint8_t>(length));
  } else if (length < kWideMark) {
    WriteByte(kLongLength);
    WriteWord(static_cast<std::uint16_t>(length));
  } else {
    WriteByte(kLongLength);
    WriteWord(kLongerLength);
    WriteInt32(static_cast<std::int32_t>(length));
  }
  m_out.append(text);
}

bool CArchive::Take(std::size_t count, std::string_view& taken) {
  if (m_failed || count > m_in.size() - m_pos) {
    m_failed = true;
    return false;
  }
  taken = std::string_view(m_in).substr(m_pos, count);
  m_pos += count;
  return true;
}

bool CArchive::ReadByte(std::uint8_t& value) {
  std::string_view taken;
  if (!Take(1, taken)) return false;
  value = static_cast<std::uint8_t>(taken[0]);
  return true;
}

bool CArchive::ReadWord(std::uint16_t& value) {
  std::string_view taken;
  if (!Take(2, taken)) return false;
  value = static_cast<std::uint16_t>(static_cast<std::uint8_t>(taken[0]) | (static_cast<std::uint8_t>(taken[1]) << 8));
  return true;
}

bool CArchive::ReadInt32(std::int32_t& value) {
  std::uint16_t low = 0;
  std::uint16_t high = 0;
  if (!ReadWord(low) || !ReadWord(high)) return false;
  value = static_cast<std::int32_t>(static_cast<std::uint32_t>(low) | (static_cast<std::uint32_t>(high) << 16));
  return true;
}

bool CArchive::ReadLength(std::uint32_t& length) {
  std::uint8_t first = 0;
  if (!ReadByte(first)) return false;
  if (first != kLongLength) {
    length = first;
    return true;
  }
  std::uint16_t word = 0;
  if (!ReadWord(word)) return false;
  if (word != kLongerLength) {
    length = word;
    return true;
  }
  std::int32_t longer = 0;
  if (!ReadInt32(longer)) return false;
  length = static_cast<std::uint32_t>(longer);
  return true;
}

bool CArchive::ReadString(std::string& text) {
  std::uint8_t first = 0;
  if (!ReadByte(first)) return false;
  bool wide = false;
  std::uint32_t length = first;
  if (first == kLongLength) {
    std::uint16_t word = 0;
    if (!ReadWord(word)) return false;
    if (word == kWideMark) {
      wide = true;
      if (!ReadLength(length)) return false;
    } else if (word == kLongerLength) {
      std::int32_t longer = 0;
      if (!ReadInt32(longer)) return false;
      length = static_cast<std::uint32_t>(longer);
    } else {
      length = word;
    }
  }
  std::string_view taken;
  if (!wide) {
    if (!Take(length, taken)) return false;
    text.assign(taken);
    return true;
  }
  if (length > (m_in.size() - m_pos) / 2 || !Take(std::size_t{length} * 2, taken)) {
    m_failed = true;
    return false;
  }
  text.clear();
  text.reserve(length);
  for (std::size_t i = 0; i < taken.size(); i += 2) {
    const unsigned unit = static_cast<std::uint8_t>(taken[i]) | (static_cast<std::uint8_t>(taken[i + 1]) << 8);
    text.push_back(unit < 0x100 ? static_cast<char>(unit) : '?');
  }
  return true;
}

}  // namespace gavelscope::base
