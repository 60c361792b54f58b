// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
//
// Banner pictures come from the vendor's FTP server and are walked before any decoder sees them.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "banner/GifBlocks.h"

using gavelscope::banner::GifBlockWalker;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  GifBlockWalker walker(std::string_view(reinterpret_cast<const char*>(data), size));
  (void)walker.ScreenWidth();
  (void)walker.ScreenHeight();
  (void)walker.BackgroundColour();
  const int blocks = walker.CountGraphicBlocks();
  walker.Rewind();
  int frames = 0;
  while (const auto frame = walker.NextFrame()) {
    ++frames;
    // Each cut frame goes to the image decoder as a GIF of its own holding exactly that frame.
    GifBlockWalker single(frame->file);
    if (!single.IsGif() || single.CountGraphicBlocks() != 1) std::abort();
    if (frames > blocks) std::abort();
  }
  // The window decides between a still picture and an animation on the count, then plays the
  // frames it cuts: the two walks must agree.
  if (frames != blocks) std::abort();
  return 0;
}
