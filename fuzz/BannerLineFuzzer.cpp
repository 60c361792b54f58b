// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
//
// The banner list comes from the vendor's web server; each line names a picture and how long it
// stays.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "FuzzLines.h"
#include "banner/LoadBannerThread.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  gavelscope::fuzz::ForEachLine(std::string_view(reinterpret_cast<const char*>(data), size), [](std::string_view line) {
    const auto entry = gavelscope::banner::ParseBannerLine(line);
    // An entry without a file name would fetch the FTP server's directory listing as a picture.
    if (entry && entry->file.empty()) std::abort();
  });
  return 0;
}
