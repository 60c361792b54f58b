// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
//
// A hot item query reads the listing home page for a category's sub-category listings, then each
// listing page row by row. The scan job fetches its pages itself, so this drives the same steps
// over one page: the listing links, the rows with the job's filters, the continue link, and the
// result list's sorts.
//
// Input: the page, then the last bytes choose the site and the filters, and the first bytes (each
// string ended by a backslash and one other byte) give the query's keywords and the category link.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "FuzzFakes.h"
#include "base/TextHelpers.h"
#include "hotitems/HotItemRecord.h"
#include "hotitems/ItemListCtrl.h"
#include "query/CategoryScanJob.h"
#include "sites/ListingScan.h"
#include "sites/SiteProfile.h"

namespace gavelscope::fuzz {
namespace {

query::FilterSpec ChooseFilter(FuzzedDataProvider& input) {
  switch (input.ConsumeIntegralInRange(0, 3)) {
    case 0:
      return {};
    case 1:
      return query::FilterSpec::GreaterThan(input.ConsumeIntegral<std::int32_t>());
    case 2:
      return query::FilterSpec::LessThan(input.ConsumeIntegral<std::int32_t>());
    default: {
      const auto low = input.ConsumeIntegral<std::int32_t>();
      return query::FilterSpec::Between(low, input.ConsumeIntegral<std::int32_t>());
    }
  }
}

}  // namespace
}  // namespace gavelscope::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace gavelscope;
  static const sites::Profile profile = sites::CompiledProfile();
  FuzzedDataProvider input(data, size);
  const bool uk = input.ConsumeBool();
  const query::FilterSpec filters[3] = {fuzz::ChooseFilter(input), fuzz::ChooseFilter(input),
                                        fuzz::ChooseFilter(input)};
  const std::string keywords(base::TrimWhiteSpace(input.ConsumeRandomLengthString(64)));
  const std::string categoryLink = input.ConsumeRandomLengthString(256);
  const std::string page = input.ConsumeRemainingBytesAsString();
  const sites::SiteConfig& site = profile.site(uk ? sites::Site::UK : sites::Site::USA);

  (void)sites::BuildListingLinks(page, categoryLink, site);

  fuzz::NullBrowser browser;
  fuzz::NullMessages messages;
  fuzz::NullPages pages;
  hotitems::CItemListCtrl results(hotitems::ItemListVariant::QueryResults, browser, messages, pages,
                                  hotitems::DateOrder::MonthFirst);
  int s = base::Find(page, site.itemLinkPrefix, 0);
  int t = base::Find(page, ">", s);
  while (s != -1) {
    const sites::ListingRow row = sites::ParseRow(page, s, t, site, uk);
    if (sites::MatchesKeywords(row.title, keywords)) {
      if (auto item = query::PassingItem(row, filters[0], filters[1], filters[2])) results.AppendRow(std::move(item));
    }
    if (row.s2 != -1) {
      s = row.s2;
      t = base::Find(page, ">", s);
      continue;
    }
    const int c = base::Find(page, sites::kContinueMarker, row.t2);
    if (c != -1) (void)sites::NextPageUrl(page, c, profile, uk);
    break;
  }
  for (int column = 0; column < hotitems::CItemListCtrl::kColumnCount; ++column) {
    results.SortItems(column, true);
    results.SortItems(column, false);
  }
  return 0;
}
