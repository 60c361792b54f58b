// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <string>
#include <string_view>

namespace gavelscope::sites {

// The pages an item page links to, as an item list's context menu offers them.
enum class LinkedPage { BidHistory, SellersOtherItems, SellerFeedback };

// The address of a linked page found on an item page; empty when the marker, the link or its end is
// missing, in which case nothing is to be opened. The UK site's history lists its links with the
// USA domain, which `uk` puts right.
std::string LinkedPageUrl(std::string_view itemPage, LinkedPage which, bool uk);

}  // namespace gavelscope::sites
