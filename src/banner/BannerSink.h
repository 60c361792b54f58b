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
  // Called on the banner thread for each banner in turn, before its picture is fetched: from now on a
  // click on the banner opens `link`, also while the download fails and the earlier picture stays.
  virtual void PublishLink(const std::string& link) = 0;
  // Called on the banner thread once the banner's picture has arrived. `picture` holds it only until
  // the next one replaces it (it is always the same file), so a sink that draws later reads the bytes
  // before it returns.
  virtual void ShowBanner(const std::filesystem::path& picture) = 0;
};

}  // namespace gavelscope::banner
