// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "sites/ListingScan.h"

#include <cstdlib>
#include <utility>

#include "base/TextHelpers.h"
#include "sites/SiteAddresses.h"

namespace gavelscope::sites {

using base::ExtractBetween;
using base::Find;
using base::LastIndexOfCharBefore;

namespace {

constexpr std::string_view kAnchorOpening = "<a href=\"";
constexpr std::string_view kCentredCell = "<td align=\"center\"";
constexpr const char* kListingSortSuffix = "QQsosortpropertyZ1";

int Length(std::string_view text) {
  return static_cast<int>(text.size());
}

// The text of the cell whose tag is at x; `end` receives the '<' that closes it.
std::string CellText(std::string_view page, int x, int* end = nullptr) {
  const int g = Find(page, ">", x);
  const int l = Find(page, "<", g);
  if (end != nullptr) *end = l;
  return ExtractBetween(page, g + 1, l);
}

void UpperCase(std::string& text) {
  for (char& c : text) c = (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c;
}

int LeadingInt(std::string_view text) {
  return std::atoi(std::string(text).c_str());
}

}  // namespace

std::vector<std::string> BuildListingLinks(std::string_view home, std::string_view categoryLink,
                                           const sites::SiteConfig& site) {
  std::vector<std::string> links;
  int p = Find(home, categoryLink, 0);
  p = Find(home, site.listingHost, p);
  while (true) {
    const int q = Find(home, site.domainSuffix, p);
    const int a = LastIndexOfCharBefore(home, "<", q);
    const int e = Find(home, ">", a);
    std::string link = ExtractBetween(home, a + 9, e - 1);
    if (link.find("ListingItemList") == std::string::npos) break;
    link += kListingSortSuffix;
    // A listing somewhere else is left out as if it could not be read; the walk goes on after it.
    if (sites::IsListingPageAddress(link, site)) links.push_back(std::move(link));
    // Each link must lie further on than the last; anything else would read the same tag again.
    if (e <= p) break;
    p = e;
  }
  return links;
}

ListingRow ParseRow(std::string_view page, int s, int t, const sites::SiteConfig& site, bool uk) {
  ListingRow row;
  row.link = ExtractBetween(page, s, t - 1);
  const int a = Find(page, "</a>", t);
  int next = Find(page, "<td", a);
  row.title = ExtractBetween(page, t + 1, a);
  if (row.title.find("Listing has pictures") != std::string::npos) {
    // The first anchor was the picture link: the title is the text of the next link to the item.
    const int p = Find(page, row.link, next);
    next = p + Length(row.link) + 1;
    row.title = ExtractBetween(page, next + 1, Find(page, "</a>", next));
  } else if (row.title.find("title=") != std::string::npos) {
    const std::string image = row.title;
    row.title = ExtractBetween(image, Find(image, "title=", 0) + 7, Find(image, "alt=", 0) - 2);
  }
  base::DecodeEntities(row.title);
  base::ReplaceAll(row.link, "&amp;", "&");

  int bidsEnd = -1;
  row.bids = CellText(page, Find(page, kCentredCell, next), &bidsEnd);
  const int timeCell = Find(page, "<td", bidsEnd);
  row.timeLeft = CellText(page, timeCell);
  if (uk && row.timeLeft.size() <= 1) row.timeLeft = CellText(page, Find(page, "<td", timeCell + 3));

  if (uk) {
    row.t2 = Find(page, "<td", Find(page, "<td", t) + 4);
    const int pp = Find(page, ">\xA3", next);
    row.price = ExtractBetween(page, pp + 1, Find(page, "<", pp));
  } else {
    row.t2 = Find(page, "<td", Find(page, "<td", Find(page, "<table", t)) + 4);
    row.price = ExtractBetween(page, next + 3, Find(page, "</span>", next));
    int m = -1;
    for (std::string_view mark : {">$", ">GBP", ">EUR", ">AU", ">C"}) {
      m = Find(row.price, mark, 0);
      if (m != -1) break;
    }
    if (m != -1) row.price = ExtractBetween(row.price, m + 1, Length(row.price));
    UpperCase(row.price);
    base::ReplaceAll(row.price, "</FONT>", "");
    base::ReplaceAll(row.price, "</B>", "");
  }
  row.s2 = Find(page, site.itemLinkPrefix, row.t2);
  // Searches that failed earlier can send t2 back before this row; the next row must lie further on.
  if (row.s2 <= s) row.s2 = -1;
  return row;
}

std::string NextPageUrl(std::string_view page, int c, const sites::Profile& profile, bool uk) {
  const int n = LastIndexOfCharBefore(page, "Next", c);
  const int a = LastIndexOfCharBefore(page, kAnchorOpening, n);
  const int e = Find(page, ">", a);
  std::string href = ExtractBetween(page, a, e - 1);
  base::ReplaceAll(href, kAnchorOpening, "");
  std::string url = profile.usa.listingRoot + href;
  if (uk) base::ReplaceAll(url, ".com", ".co.uk");
  // The href is glued to the listing root, so "@host/..." would make the listing host a user name.
  if (!sites::IsListingPageAddress(url, uk ? profile.uk : profile.usa)) return {};
  return url;
}

bool MatchesKeywords(std::string_view title, std::string_view keywords) {
  // Compared in place, without upper-cased copies: a query tests every row of every page it reads.
  std::size_t start = 0;
  while (true) {
    const std::size_t comma = keywords.find(',', start);
    const std::string_view field = base::TrimWhiteSpace(
        keywords.substr(start, comma == std::string_view::npos ? std::string_view::npos : comma - start));
    if (base::ContainsNoCase(title, field)) return true;
    if (comma == std::string_view::npos) return false;
    start = comma + 1;
  }
}

int ParsePrice(std::string_view price) {
  std::string text(price);
  for (std::string_view mark : {"GBP", "EUR", "AU", "$", "\xA3", ","}) base::ReplaceAll(text, mark, "");
  if (text.find(' ') != std::string::npos) return -1;
  return LeadingInt(text);
}

int ParseDaysLeft(std::string_view timeLeft) {
  const auto d = timeLeft.find('d');
  if (d == std::string_view::npos) return 0;
  return LeadingInt(timeLeft.substr(0, d));
}

int ParseBids(std::string_view bids) {
  return LeadingInt(bids);
}

}  // namespace gavelscope::sites
