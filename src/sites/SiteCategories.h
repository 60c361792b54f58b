// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <string>
#include <vector>

#include "base/ReadinessEvent.h"

namespace gavelscope::sites {

// What the start-up category worker of one Site discovers. Written only before `ready` is set and
// read only after a wait on it, which is all the synchronisation these values need.
struct SiteCategories {
  std::vector<std::string> arrCategoryNames;
  std::vector<std::string> arrCategoryLinks;  // parallel to the names
  std::string strHomePage;                    // the listing home page, lines joined
  base::ReadinessEvent ready;
};

}  // namespace gavelscope::sites
