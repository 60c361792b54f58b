// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <string_view>

namespace gavelscope::fuzz {

// Calls `apply` with each '\n'-separated piece of `data`. A CR before the line feed stays, as the
// feed reader leaves it.
template <typename Apply>
void ForEachLine(std::string_view data, Apply apply) {
  while (true) {
    const auto end = data.find('\n');
    apply(data.substr(0, end));
    if (end == std::string_view::npos) return;
    data.remove_prefix(end + 1);
  }
}

}  // namespace gavelscope::fuzz
