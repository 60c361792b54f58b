// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
//
// The listing home page of either site, read at start-up for the top-level categories.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "sites/CategoryAnchors.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::vector<std::string> names;
  std::vector<std::string> links;
  gavelscope::sites::ParseCategoryAnchors(std::string_view(reinterpret_cast<const char*>(data), size), names, links);
  // The views pair the two lists by index.
  if (names.size() != links.size()) std::abort();
  return 0;
}
