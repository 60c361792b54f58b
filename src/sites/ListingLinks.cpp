// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "sites/ListingLinks.h"

#include "base/TextHelpers.h"

namespace gavelscope::sites {

std::string ViewLink(std::string_view listingLink, ListingView view) {
  std::string link(listingLink);
  switch (view) {
    case ListingView::Current:
      break;
    case ListingView::NewToday:
      base::ReplaceAll(link, "list/", "newtoday/all/");
      break;
    case ListingView::EndingToday:
      base::ReplaceAll(link, "list/", "endtoday/all/");
      break;
    case ListingView::GoingGone:
      base::ReplaceAll(link, "list/", "going/all/");
      break;
  }
  return link;
}

}  // namespace gavelscope::sites
