// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <filesystem>
#include <string>

namespace gavelscope::banner {

// Where the banner rotation shows its pictures: the window's banner control, or a recorder in tests.
class IBannerSink {
 public:
  virtual ~IBannerSink() = default;
  // Called on the banner thread for each banner in turn. `picture` holds the new banner only until
  // the next one replaces it (it is always the same file), so a sink that draws later reads the
  // bytes before it returns. `link` is the page a click on this banner opens.
  virtual void ShowBanner(const std::filesystem::path& picture, const std::string& link) = 0;
};

}  // namespace gavelscope::banner
