// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <string_view>

#include "sites/SiteProfile.h"

namespace gavelscope::sites {

// A listing page of `site`: on its listing host.
bool IsListingPageAddress(std::string_view url, const SiteConfig& site);
// A page of either site (a listing home page, an item page): under the USA or the UK domain.
bool IsSiteAddress(std::string_view url, const Profile& profile);

}  // namespace gavelscope::sites
