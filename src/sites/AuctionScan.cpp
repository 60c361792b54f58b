// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "sites/AuctionScan.h"

#include <algorithm>

#include "base/TextHelpers.h"

namespace gavelscope::sites {

using base::DecodeEntities;
using base::ExtractBetween;
using base::Find;
using base::LastIndexOfCharBefore;

std::vector<AuctionRow> ScanAuctionRows(std::string_view page, const std::vector<std::string>& categoryLinks,
                                        std::string_view listingHost, std::string_view domainSuffix) {
  std::vector<AuctionRow> rows;
  // The links come in page order, so each is looked for after the rows of the one before it: the
  // page is read once, not once per category. A link that does not come later is looked for from the
  // top, as every link once was.
  int from = 0;
  for (const std::string& key : categoryLinks) {
    int p = Find(page, key, from);
    if (p == -1 && from > 0) p = Find(page, key, 0);
    int pos = Find(page, listingHost, p);
    while (true) {
      const int d = Find(page, domainSuffix, pos);
      // The tag is read as the nine characters of `<a href="`, the address, a quote and ">".
      const int q = LastIndexOfCharBefore(page, "<", d);
      const int r = Find(page, ">", q);
      std::string link = ExtractBetween(page, q + 9, r - 1);
      if (link.find("ListingItemList") == std::string::npos) break;
      const int s = Find(page, "</a>", r);
      AuctionRow row;
      row.name = ExtractBetween(page, r + 1, s);
      DecodeEntities(row.name);
      const int t = Find(page, "> (", s);
      const int u = Find(page, ")", t);
      row.count = ExtractBetween(page, t + 3, u);
      row.link = std::move(link);
      rows.push_back(std::move(row));
      // A missing ")" ends the category here. Going on from -1 would only find the page's last
      // tag again and again, which on a page ending inside such a link would never stop.
      if (u == -1) break;
      pos = u;
    }
    from = std::max({from, p, pos});
  }
  return rows;
}

}  // namespace gavelscope::sites
