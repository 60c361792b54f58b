// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "sites/SiteProfile.h"

namespace gavelscope::sites {

// One item row cut out of a listing page, and where the next row starts (-1: this was the last).
struct ListingRow {
  std::string link;
  std::string title;
  std::string bids;
  std::string timeLeft;
  std::string price;
  int t2 = -1;  // where the next row and the continue marker are searched from
  int s2 = -1;  // the next row's start
};

// The sub-category listings that follow a category's link on the listing home page, each with the
// ending-first sort suffix; a link that does not lead to the site's listing host is left out.
std::vector<std::string> BuildListingLinks(std::string_view home, std::string_view categoryLink,
                                           const sites::SiteConfig& site);

// The row whose item link starts at s and whose tag ends at t. Rows of the UK site and of the USA
// site differ in their price and cell layout.
ListingRow ParseRow(std::string_view page, int s, int t, const sites::SiteConfig& site, bool uk);

// The address of the next result page, from the continue marker at c; empty when it cannot be read
// or does not lead to the site's listing host.
std::string NextPageUrl(std::string_view page, int c, const sites::Profile& profile, bool uk);

// True when the upper-cased title holds any comma-separated, trimmed field of the keywords; an empty
// list or an empty field matches every title.
bool MatchesKeywords(std::string_view title, std::string_view keywords);
// Whole currency units of a price, or -1 when another currency's text remains.
int ParsePrice(std::string_view price);
// Whole days of a time left ("3d 04h" is 3, "14h 20m" is 0).
int ParseDaysLeft(std::string_view timeLeft);
// The leading number of a bid count ("-" is 0).
int ParseBids(std::string_view bids);

inline constexpr std::string_view kContinueMarker = "title=\"Continue\"";

}  // namespace gavelscope::sites
