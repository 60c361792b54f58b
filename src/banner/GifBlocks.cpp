// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "banner/GifBlocks.h"

namespace gavelscope::banner {

namespace {

constexpr std::size_t kHeaderAndScreen = 13;

void PutWord(std::string& data, std::size_t offset, int value) {
  if (offset + 2 > data.size()) return;
  data[offset] = static_cast<char>(value & 0xFF);
  data[offset + 1] = static_cast<char>((value >> 8) & 0xFF);
}

}  // namespace

std::string FrameFileAtOrigin(const GifFrame& frame, int width, int height) {
  std::string file = frame.file;
  PutWord(file, 6, width);
  PutWord(file, 8, height);
  if (frame.imageAt != 0) {
    PutWord(file, frame.imageAt + 1, 0);
    PutWord(file, frame.imageAt + 3, 0);
  }
  return file;
}

GifBlockWalker::GifBlockWalker(std::string_view data) : m_data(data) {
  if (data.size() < kHeaderAndScreen || !data.starts_with("GIF")) return;
  m_isGif = true;
  m_width = Word(6);
  m_height = Word(8);
  const auto packed = static_cast<std::uint8_t>(data[10]);
  if ((packed & 0x80) != 0) {
    m_globalTableSize = 3u << ((packed & 7) + 1);
    const std::size_t entry = kHeaderAndScreen + 3 * static_cast<std::uint8_t>(data[11]);
    if (entry + 3 <= data.size()) {
      const auto byte = [&](std::size_t i) { return static_cast<std::uint32_t>(static_cast<std::uint8_t>(data[i])); };
      m_background = byte(entry) | (byte(entry + 1) << 8) | (byte(entry + 2) << 16);
    }
  }
  Rewind();
}

std::uint16_t GifBlockWalker::Word(std::size_t offset) const {
  if (offset + 2 > m_data.size()) return 0;
  return static_cast<std::uint16_t>(static_cast<std::uint8_t>(m_data[offset]) |
                                    (static_cast<std::uint8_t>(m_data[offset + 1]) << 8));
}

void GifBlockWalker::Rewind() {
  m_position = kHeaderAndScreen + m_globalTableSize;
}

GifBlockWalker::Block GifBlockWalker::KindAt(std::size_t position) const {
  if (position >= m_data.size()) return Block::Unknown;
  const auto first = static_cast<std::uint8_t>(m_data[position]);
  if (first == 0x2C) return Block::Image;
  if (first == 0x3B) return Block::Trailer;
  if (first != 0x21 || position + 1 >= m_data.size()) return Block::Unknown;
  switch (static_cast<std::uint8_t>(m_data[position + 1])) {
    case 0xFF:
      return Block::Application;
    case 0xFE:
      return Block::Comment;
    case 0xF9:
      return Block::GraphicControl;
    case 0x01:
      return Block::PlainText;
    default:
      return Block::Unknown;
  }
}

long GifBlockWalker::SubBlocksLength(std::size_t offset) const {
  long sum = 0;
  while (offset < m_data.size()) {
    const auto length = static_cast<std::uint8_t>(m_data[offset]);
    if (length == 0) return sum + 1;
    sum += length + 1;
    offset += length + 1u;
  }
  // No terminator before the end: the block does not fit.
  return 0;
}

long GifBlockWalker::BlockLength(std::size_t position) const {
  const auto withSubBlocks = [&](std::size_t fixed) -> long {
    const long subBlocks = SubBlocksLength(position + fixed);
    return subBlocks <= 0 ? 0 : static_cast<long>(fixed) + subBlocks;
  };
  switch (KindAt(position)) {
    case Block::Application:
      return withSubBlocks(14);
    case Block::Comment:
      return withSubBlocks(2);
    case Block::GraphicControl:
      return 8;
    case Block::PlainText:
      return withSubBlocks(15);
    case Block::Image: {
      if (position + 9 >= m_data.size()) return 0;
      const auto packed = static_cast<std::uint8_t>(m_data[position + 9]);
      const std::size_t localTable = (packed & 0x80) != 0 ? (3u << ((packed & 7) + 1)) : 0;
      return withSubBlocks(11 + localTable);
    }
    case Block::Trailer:
      return 1;
    case Block::Unknown:
      return -1;
  }
  return -1;
}

bool GifBlockWalker::SkipBlock() {
  const long length = BlockLength(m_position);
  if (length <= 0 || m_position + static_cast<std::size_t>(length) > m_data.size()) return false;
  m_position += static_cast<std::size_t>(length);
  return true;
}

bool GifBlockWalker::SkipNonGraphic() {
  while (true) {
    const Block kind = KindAt(m_position);
    if (kind != Block::Application && kind != Block::Comment) return true;
    if (!SkipBlock()) return false;
  }
}

bool GifBlockWalker::SkipNextGraphicBlock() {
  if (!m_isGif || !SkipNonGraphic()) return false;
  Block kind = KindAt(m_position);
  if (kind == Block::GraphicControl) {
    while (kind == Block::GraphicControl || kind == Block::Application || kind == Block::Comment) {
      if (!SkipBlock()) return false;
      kind = KindAt(m_position);
    }
  }
  if (kind != Block::Image && kind != Block::PlainText) return false;
  return SkipBlock();
}

int GifBlockWalker::CountGraphicBlocks() {
  Rewind();
  int count = 0;
  while (SkipNextGraphicBlock()) ++count;
  return count;
}

std::optional<GifFrame> GifBlockWalker::NextFrame() {
  if (!m_isGif || !SkipNonGraphic()) return std::nullopt;
  GifFrame frame;
  const std::size_t start = m_position;
  Block kind = KindAt(m_position);
  if (kind == Block::GraphicControl) {
    if (m_position + 8 > m_data.size()) return std::nullopt;
    frame.delay = Word(m_position + 4);
    frame.disposal = (static_cast<std::uint8_t>(m_data[m_position + 3]) >> 2) & 7;
    while (kind == Block::GraphicControl || kind == Block::Application || kind == Block::Comment) {
      if (!SkipBlock()) return std::nullopt;
      kind = KindAt(m_position);
    }
  }
  if (kind != Block::Image && kind != Block::PlainText) return std::nullopt;
  const std::size_t prefix = kHeaderAndScreen + m_globalTableSize;
  if (kind == Block::Image && m_position + 9 <= m_data.size()) {
    frame.imageAt = prefix + (m_position - start);
    frame.left = Word(m_position + 1);
    frame.top = Word(m_position + 3);
    frame.width = Word(m_position + 5);
    frame.height = Word(m_position + 7);
  }
  if (!SkipBlock()) return std::nullopt;
  frame.file.reserve(prefix + (m_position - start) + 1);
  frame.file.append(m_data.substr(0, prefix));
  frame.file.append(m_data.substr(start, m_position - start));
  frame.file.push_back('\x3B');
  return frame;
}

}  // namespace gavelscope::banner
