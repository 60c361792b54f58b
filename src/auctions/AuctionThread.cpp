// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "auctions/AuctionThread.h"

#include "sites/AuctionScan.h"

namespace gavelscope::auctions {

CAuctionThread::CAuctionThread(sites::Site site, const sites::Profile& profile, const sites::SiteCategories& categories,
                               CAuctionListCtrl& list, base::IRunEvents& events)
    : m_listingHost(profile.site(site).listingHost),
      m_domainSuffix(profile.site(site).domainSuffix),
      m_categories(categories),
      m_list(list),
      m_events(events) {}

void CAuctionThread::Run(std::stop_token stop) {
  if (m_categories.ready.Wait(stop)) {
    // The page and links do not change once the event is set; the scan reads them in place.
    std::vector<sites::AuctionRow> rows =
        sites::ScanAuctionRows(m_categories.strHomePage, m_categories.arrCategoryLinks, m_listingHost, m_domainSuffix);
    m_list.Clear();
    m_list.SetRedraw(false);
    for (sites::AuctionRow& row : rows) {
      auto record = std::make_shared<const CAuctionRecord>(std::move(row.link));
      m_list.AppendRow({std::move(row.name), std::move(row.count), std::move(record)});
    }
    m_list.SortByCount();
    m_list.SetRedraw(true);
  }
  m_events.OnThreadFinished();
}

}  // namespace gavelscope::auctions
