// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <atomic>
#include <memory>
#include <stop_token>
#include <string>
#include <vector>

#include "net/NetOptions.h"
#include "query/QueryHost.h"
#include "sites/SiteProfile.h"

namespace gavelscope::query {
class Session;
}

namespace gavelscope::query {

// One numeric filter of a query: a group whose bounds were never given accepts every value.
struct NumericFilter {
  bool any = false;
  bool greater = false;
  bool less = false;
  bool range = false;
  std::int32_t greaterThan = -1;
  std::int32_t lessThan = -1;
  std::int32_t from = -1;
  std::int32_t to = -1;

  void SetGreaterThan(std::int32_t n);
  void SetLessThan(std::int32_t n);
  void SetRange(std::int32_t low, std::int32_t high);
  // Greater and less are strict; a range holds both ends.
  bool Passes(std::int32_t value) const;
};

// Searches one category of one site: reads up to the page depth of every sub-category listing, and
// adds each item that passes the keyword test and the three filters to the query result list. The
// query run owns the job and reads `IsFinished` once it has started it.
class CLoadEachCategoryHotItemsQueryThread {
 public:
  CLoadEachCategoryHotItemsQueryThread(IQueryHost& host, const sites::Profile& profile, net::NetOptions options);
  ~CLoadEachCategoryHotItemsQueryThread();

  void SetCategoryLink(std::string link) { m_strCategoryLink = std::move(link); }
  void SetKeywords(std::string_view keywords);
  void SetPageDepth(std::int32_t depth) { m_nPageDepth = depth; }
  void SetCountry(std::int32_t international) { m_bInternational = international; }
  void SetBidsGreaterThan(std::int32_t n) { m_bids.SetGreaterThan(n); }
  void SetBidsLessThan(std::int32_t n) { m_bids.SetLessThan(n); }
  void SetBidsRange(std::int32_t from, std::int32_t to) { m_bids.SetRange(from, to); }
  void SetPriceGreaterThan(std::int32_t n) { m_price.SetGreaterThan(n); }
  void SetPriceLessThan(std::int32_t n) { m_price.SetLessThan(n); }
  void SetPriceRange(std::int32_t from, std::int32_t to) { m_price.SetRange(from, to); }
  void SetDaysGreaterThan(std::int32_t n) { m_days.SetGreaterThan(n); }
  void SetDaysLessThan(std::int32_t n) { m_days.SetLessThan(n); }
  void SetDaysRange(std::int32_t from, std::int32_t to) { m_days.SetRange(from, to); }

  const NumericFilter& bids() const { return m_bids; }
  const NumericFilter& price() const { return m_price; }
  const NumericFilter& days() const { return m_days; }
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
  void FilterAndAdd(const std::string& link, const std::string& timeLeft, const std::string& title,
                    const std::string& price, const std::string& bids);
  void AddResult(const std::string& link, const std::string& timeLeft, const std::string& title,
                 const std::string& price, const std::string& bids);
  bool uk() const { return m_bInternational == 0; }

  IQueryHost& m_host;
  const sites::Profile m_profile;
  const net::NetOptions m_options;
  std::shared_ptr<net::Session> m_pSession;
  std::vector<std::string> m_arrListingLinks;
  std::int32_t m_nRowsAdded = 0;
  std::atomic<bool> m_bFinished{false};
  std::string m_strCategoryLink;
  std::int32_t m_bInternational = 0;
  std::string m_strKeywords;
  std::int32_t m_nPageDepth = 1;
  NumericFilter m_bids;
  NumericFilter m_price;
  NumericFilter m_days;
};

}  // namespace gavelscope::query
