// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "sites/ItemPage.h"

#include "base/TextHelpers.h"

namespace gavelscope::sites {

using base::ExtractBetween;
using base::Find;
using base::LastIndexOfCharBefore;
using base::ReplaceAll;

std::string LinkedPageUrl(std::string_view page, LinkedPage which, bool uk) {
  static constexpr std::string_view kAnchor = "<a href=";
  int a = -1;
  if (which == LinkedPage::BidHistory) {
    const int p = Find(page, "History", 0);
    if (p == -1) return {};
    a = Find(page, kAnchor, p);
  } else {
    const std::string_view marker =
        which == LinkedPage::SellersOtherItems ? "<b>View seller's other items</b>" : "Read feedback comments";
    const int p = Find(page, marker, 0);
    if (p == -1) return {};
    // Only the anchor's '<' is looked for: the last tag opening before the marker.
    a = LastIndexOfCharBefore(page, kAnchor, p);
  }
  if (a == -1) return {};
  const int e = Find(page, ">", a);
  if (e == -1) return {};
  std::string link = ExtractBetween(page, a + 9, e - 1);
  ReplaceAll(link, "amp;", "");
  if (uk) ReplaceAll(link, ".com", ".co.uk");
  return link;
}

}  // namespace gavelscope::sites
