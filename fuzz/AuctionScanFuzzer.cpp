// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
//
// The listing home page again, read this time for the sub-categories and their counts of the
// categories found on the same page.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "FuzzFakes.h"
#include "auctions/AuctionListCtrl.h"
#include "sites/AuctionScan.h"
#include "sites/CategoryAnchors.h"
#include "sites/SiteProfile.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace gavelscope;
  static const sites::Profile profile = sites::CompiledProfile();
  const std::string_view page(reinterpret_cast<const char*>(data), size);
  std::vector<std::string> names;
  std::vector<std::string> links;
  sites::ParseCategoryAnchors(page, names, links);
  fuzz::NullBrowser browser;
  fuzz::NullMessages messages;
  for (sites::Site site : {sites::Site::USA, sites::Site::UK}) {
    const sites::SiteConfig& config = profile.site(site);
    std::vector<sites::AuctionRow> rows = sites::ScanAuctionRows(page, links, config.listingHost, config.domainSuffix);
    auctions::CAuctionListCtrl list(browser, messages);
    std::size_t counter = 0;
    for (sites::AuctionRow& row : rows) {
      auto record = std::make_shared<const auctions::CAuctionRecord>(std::move(row.link));
      list.InsertRow(counter++, {std::move(row.name), std::move(row.count), std::move(record)});
    }
    list.SortByCount();
    (void)list.ExportText();
    for (std::size_t i = 0; i < list.RowCount(); ++i) {
      list.ContextMenuAt(static_cast<int>(i));
      for (sites::ListingView view : {sites::ListingView::Current, sites::ListingView::NewToday,
                                      sites::ListingView::EndingToday, sites::ListingView::GoingGone}) {
        list.OpenView(view);
      }
    }
  }
  return 0;
}
