// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace gavelscope::sites {

struct AuctionRow {
  std::string name;   // decoded
  std::string count;  // as written, between "(" and ")"; empty when the ")" is missing
  std::string link;   // the sub-category listing link
};

// The sub-categories of a listing home page with their counts, in page order. For each category
// link: find it in the page (after the rows of the link before it, else from the top), then the
// listing host after it, then read the links to the site that follow while each is a sub-category
// listing ("ListingItemList"); the first other link ends the category. A category link missing from
// the page adds nothing.
std::vector<AuctionRow> ScanAuctionRows(std::string_view page, const std::vector<std::string>& categoryLinks,
                                        std::string_view listingHost, std::string_view domainSuffix);

}  // namespace gavelscope::sites
