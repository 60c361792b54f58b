// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <stop_token>
#include <string>
#include <string_view>

namespace gavelscope::base {

// Where a view fetches a whole page: the main window's shared session, renewed after a failure.
class IPageSource {
 public:
  virtual ~IPageSource() = default;
  // The page with its lines joined, or what was read before a failure (usually nothing).
  virtual std::string GetPageText(std::string_view url, std::stop_token stop) = 0;
};

}  // namespace gavelscope::base
