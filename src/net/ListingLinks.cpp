// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "net/ListingLinks.h"

#include "net/TextHelpers.h"

namespace gavelscope::net {

std::string ViewLink(std::string_view listingLink, ListingView view) {
  std::string link(listingLink);
  switch (view) {
    case ListingView::Current:
      break;
    case ListingView::NewToday:
      ReplaceAll(link, "list/", "newtoday/all/");
      break;
    case ListingView::EndingToday:
      ReplaceAll(link, "list/", "endtoday/all/");
      break;
    case ListingView::GoingGone:
      ReplaceAll(link, "list/", "going/all/");
      break;
  }
  return link;
}

}  // namespace gavelscope::net
