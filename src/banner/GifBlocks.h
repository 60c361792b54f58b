// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace gavelscope::banner {

// One frame of an animated GIF as a complete little GIF of its own: the file's header, screen
// descriptor and global colour table, then the frame's blocks, then a trailer. The picture control
// hands it to an image decoder.
struct GifFrame {
  std::string file;
  std::uint32_t delay = 0xFFFFFFFF;  // hundredths of a second; all ones without a graphic control
  int disposal = 0;
  int width = 0;
  int height = 0;
  int left = 0;
  int top = 0;
  // Where the image descriptor starts in `file`; 0 for a frame of plain text, which has none.
  std::size_t imageAt = 0;
};

// The frame's file on a screen of `width` x `height` with its image moved to the top left corner, so
// that a decoder makes only that corner of the frame: given the size of the part of the frame that
// lies on the picture, exactly that part, and no pixel of the picture around it.
std::string FrameFileAtOrigin(const GifFrame& frame, int width, int height);

// Walks the blocks of GIF data without decoding any image. Every read is checked against the end
// of the data: a block that does not fit ends the walk where it stands.
class GifBlockWalker {
 public:
  explicit GifBlockWalker(std::string_view data);

  // The data starts with "GIF" and holds its screen descriptor.
  bool IsGif() const { return m_isGif; }
  int ScreenWidth() const { return m_width; }
  int ScreenHeight() const { return m_height; }
  std::size_t GlobalColourTableSize() const { return m_globalTableSize; }
  // The global table's entry at the background index as 0x00BBGGRR, when there is a table.
  std::optional<std::uint32_t> BackgroundColour() const { return m_background; }

  // The number of graphic blocks, walking from the start.
  int CountGraphicBlocks();
  // Back to the first block.
  void Rewind();
  // The next frame, or nullopt at the trailer, at a block of an unknown kind, or where the data ends.
  std::optional<GifFrame> NextFrame();

 private:
  enum class Block { Application, Comment, GraphicControl, PlainText, Image, Trailer, Unknown };
  Block KindAt(std::size_t position) const;
  long SubBlocksLength(std::size_t offset) const;
  long BlockLength(std::size_t position) const;
  bool SkipBlock();
  // Skips application and comment extensions; false at the end of the data.
  bool SkipNonGraphic();
  bool SkipNextGraphicBlock();
  std::uint16_t Word(std::size_t offset) const;

  std::string_view m_data;
  bool m_isGif = false;
  int m_width = 0;
  int m_height = 0;
  std::size_t m_globalTableSize = 0;
  std::optional<std::uint32_t> m_background;
  std::size_t m_position = 0;
};

}  // namespace gavelscope::banner
