// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <string>

namespace gavelscope::base {

// A plain outcome that crosses threads and layers: success, or the reason it failed.
struct Outcome {
  bool ok = false;
  std::string error;
  // The answer went over a size limit: trying again would only fetch the same too much.
  bool overLimit = false;

  explicit operator bool() const { return ok; }
};

}  // namespace gavelscope::base
