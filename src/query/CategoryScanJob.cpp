// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "query/CategoryScanJob.h"

#include <chrono>

#include "base/Pause.h"
#include "base/TextHelpers.h"
#include "hotitems/HotItemRecord.h"
#include "net/Session.h"
#include "net/TextFeed.h"
#include "sites/ListingScan.h"

namespace gavelscope::query {

namespace {

constexpr std::chrono::milliseconds kPauseAfterListing{100};

}  // namespace

CLoadEachCategoryHotItemsQueryThread::CLoadEachCategoryHotItemsQueryThread(IQueryHost& host,
                                                                           const sites::Profile& profile,
                                                                           net::NetOptions options,
                                                                           const QueryDefinition& query,
                                                                           std::string categoryLink)
    : m_host(host),
      m_profile(profile),
      m_options(std::move(options)),
      m_strCategoryLink(std::move(categoryLink)),
      m_site(query.site),
      m_strKeywords(base::TrimWhiteSpace(query.keywords)),
      m_nPageDepth(query.pageDepth),
      m_bids(query.bids),
      m_price(query.price),
      m_days(query.days) {}

CLoadEachCategoryHotItemsQueryThread::~CLoadEachCategoryHotItemsQueryThread() {
  m_bFinished = true;
}

bool CLoadEachCategoryHotItemsQueryThread::Running(const std::stop_token& stop) const {
  return !stop.stop_requested() && m_host.IsQueryRunning();
}

void CLoadEachCategoryHotItemsQueryThread::Abandon() {
  m_bFinished = true;
}

void CLoadEachCategoryHotItemsQueryThread::RunScan(std::stop_token stop) {
  // The session, and with it every kept-alive connection, lives only while the job runs: a query of
  // many entries holds descriptors for its running jobs alone, not for those waiting their turn.
  m_pSession = net::Session::Create(m_options);
  const sites::Site site = uk() ? sites::Site::UK : sites::Site::USA;
  m_arrListingLinks = BuildListingLinks(m_host.SiteData(site).strHomePage, m_strCategoryLink, m_profile.site(site));
  for (const std::string& link : m_arrListingLinks) {
    if (!Running(stop)) break;
    if (!ScanListing(FetchListingPage(link, stop), stop)) break;
    base::PauseUnlessStopped(kPauseAfterListing, stop);
  }
  m_pSession.reset();
  m_bFinished = true;
}

std::string CLoadEachCategoryHotItemsQueryThread::FetchListingPage(const std::string& url, std::stop_token stop) {
  std::string page;
  net::FeedOpenResult opened = net::OpenTextFeed(m_pSession, url, stop);
  if (opened.feed) {
    for (std::string line; opened.feed->ReadLine(line);) page += line;
  }
  // A failed page keeps what arrived; the next page starts on a fresh session.
  if (!opened.feed || opened.feed->failed()) {
    opened.feed.reset();
    if (!m_bFinished) m_pSession = net::Session::Create(m_options);
  }
  return page;
}

bool CLoadEachCategoryHotItemsQueryThread::ScanListing(std::string page, std::stop_token stop) {
  const bool isUK = uk();
  const sites::SiteConfig& site = m_profile.site(isUK ? sites::Site::UK : sites::Site::USA);
  int pagesMovedPast = 0;
  int s = base::Find(page, site.itemLinkPrefix, 0);
  int t = base::Find(page, ">", s);
  while (s != -1) {
    if (pagesMovedPast >= m_nPageDepth) return true;
    if (!Running(stop)) return false;
    const sites::ListingRow row = ParseRow(page, s, t, site, isUK);
    if (sites::MatchesKeywords(row.title, m_strKeywords)) FilterAndAdd(row);
    if (row.s2 != -1) {
      s = row.s2;
      t = base::Find(page, ">", s);
      continue;
    }
    m_host.IncrementPagesSearched();
    const int c = base::Find(page, sites::kContinueMarker, row.t2);
    if (c == -1) return true;
    if (!Running(stop)) return false;
    if (++pagesMovedPast >= m_nPageDepth) return true;
    const std::string next = NextPageUrl(page, c, m_profile, isUK);
    // An address that may not be fetched ends the listing, as a page that could not be read would.
    if (next.empty()) return true;
    page = FetchListingPage(next, stop);
    s = base::Find(page, site.itemLinkPrefix, 0);
    t = base::Find(page, ">", s);
  }
  return true;
}

void CLoadEachCategoryHotItemsQueryThread::FilterAndAdd(const sites::ListingRow& row) {
  auto record = PassingItem(row, m_bids, m_price, m_days);
  if (!record) return;
  // Each job inserts at its own count, so the rows of the jobs interleave from the top as they come.
  record->SetRow(m_nRowsAdded);
  m_host.QueryResults().InsertRow(static_cast<std::size_t>(m_nRowsAdded++), std::move(record));
}

std::shared_ptr<hotitems::CHotItemRecord> PassingItem(const sites::ListingRow& row, const FilterSpec& bids,
                                                      const FilterSpec& price, const FilterSpec& days) {
  if (row.link.empty() || row.timeLeft.empty() || row.title.empty() || row.price.empty()) return nullptr;
  const int priceValue = sites::ParsePrice(row.price);
  if (priceValue == -1) return nullptr;
  if (!bids.Passes(sites::ParseBids(row.bids)) || !price.Passes(priceValue) ||
      !days.Passes(sites::ParseDaysLeft(row.timeLeft))) {
    return nullptr;
  }
  auto record = std::make_shared<hotitems::CHotItemRecord>();
  record->SetItemLink(row.link);
  record->SetEnding(row.timeLeft);
  record->SetTitle(row.title);
  record->SetPrice(row.price);
  record->SetBids(row.bids);
  return record;
}

}  // namespace gavelscope::query
