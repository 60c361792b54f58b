// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <string>
#include <string_view>

namespace gavelscope::sites {

// The views of a listing page the menus offer, in menu order.
enum class ListingView { Current, NewToday, EndingToday, GoingGone };

// The URL of one view of a listing page: the "list/" segment of the link names the current listings
// and is swapped for the view's own. A link without it opens the current listings in every view.
std::string ViewLink(std::string_view listingLink, ListingView view);

}  // namespace gavelscope::sites
