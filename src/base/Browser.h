// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <string_view>

namespace gavelscope::base {

// Opens a page in the user's web browser without making the caller wait.
class IBrowser {
 public:
  virtual ~IBrowser() = default;
  virtual void OpenUrlInBrowser(std::string_view url) = 0;
};

}  // namespace gavelscope::base
