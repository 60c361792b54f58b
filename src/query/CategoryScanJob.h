// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <atomic>
#include <memory>
#include <stop_token>
#include <string>
#include <vector>

#include "hotitems/HotItemRecord.h"
#include "net/NetOptions.h"
#include "query/QueryHost.h"
#include "query/QueryDefinition.h"
#include "sites/ListingScan.h"
#include "sites/SiteProfile.h"

namespace gavelscope::net {
class Session;
}

namespace gavelscope::query {

// Searches one category of one site: reads up to the page depth of every sub-category listing, and
// adds each item that passes the keyword test and the three filters to the query result list. The
// query run owns the job and reads `IsFinished` once it has started it.
class CLoadEachCategoryHotItemsQueryThread {
 public:
  // Scans the category at `categoryLink` for `query` (its site, keywords, page depth and filters).
  CLoadEachCategoryHotItemsQueryThread(IQueryHost& host, const sites::Profile& profile, net::NetOptions options,
                                       const QueryDefinition& query, std::string categoryLink);
  ~CLoadEachCategoryHotItemsQueryThread();

  bool IsFinished() const { return m_bFinished.load(); }
  // Ends a job that will never run (its thread could not be made): it counts as finished, with no rows.
  void Abandon();

  // The whole job, on a session of its own made for it and released when it ends. A stop request
  // (shutdown) ends it like a cleared query-running flag.
  void RunScan(std::stop_token stop);

 private:
  bool Running(const std::stop_token& stop) const;
  std::string FetchListingPage(const std::string& url, std::stop_token stop);
  // False when the scan was stopped.
  bool ScanListing(std::string page, std::stop_token stop);
  void FilterAndAdd(const sites::ListingRow& row);
  bool uk() const { return m_site == sites::Site::UK; }

  IQueryHost& m_host;
  const sites::Profile m_profile;
  const net::NetOptions m_options;
  std::shared_ptr<net::Session> m_pSession;
  std::vector<std::string> m_arrListingLinks;
  std::int32_t m_nRowsAdded = 0;
  std::atomic<bool> m_bFinished{false};
  const std::string m_strCategoryLink;
  const sites::Site m_site;
  const std::string m_strKeywords;
  const std::int32_t m_nPageDepth;
  const FilterSpec m_bids;
  const FilterSpec m_price;
  const FilterSpec m_days;
};

// The item of a listing row that passes the filters, or null. A row without a link, a time left, a
// title or a price never passes, nor one priced in a currency the site's rules do not read.
std::shared_ptr<hotitems::CHotItemRecord> PassingItem(const sites::ListingRow& row, const FilterSpec& bids,
                                                      const FilterSpec& price, const FilterSpec& days);

}  // namespace gavelscope::query
