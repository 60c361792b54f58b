// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace gavelscope::sites {

// Appends the top-level categories of a listing home page, in page order: every anchor of the form
// <a href="LINK"><b>NAME</b></a> (COUNT. The name is decoded; the link is cut where the anchor text
// begins, minus three characters, so an address directly followed by ">" loses its last character
// (the home pages end their category addresses with "/"). At most kMaxCategories are taken.
void ParseCategoryAnchors(std::string_view page, std::vector<std::string>& names, std::vector<std::string>& links);

}  // namespace gavelscope::sites
