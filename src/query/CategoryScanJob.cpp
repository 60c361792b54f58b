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
                                                                           const QuerySpec& query,
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
    if (sites::MatchesKeywords(row.title, m_strKeywords))
      FilterAndAdd(row.link, row.timeLeft, row.title, row.price, row.bids);
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

void CLoadEachCategoryHotItemsQueryThread::FilterAndAdd(const std::string& link, const std::string& timeLeft,
                                                        const std::string& title, const std::string& price,
                                                        const std::string& bids) {
  if (link.empty() || timeLeft.empty() || title.empty() || price.empty()) return;
  const int priceValue = sites::ParsePrice(price);
  if (priceValue == -1) return;
  if (m_bids.Passes(sites::ParseBids(bids)) && m_price.Passes(priceValue) &&
      m_days.Passes(sites::ParseDaysLeft(timeLeft))) {
    AddResult(link, timeLeft, title, price, bids);
  }
}

void CLoadEachCategoryHotItemsQueryThread::AddResult(const std::string& link, const std::string& timeLeft,
                                                     const std::string& title, const std::string& price,
                                                     const std::string& bids) {
  auto record = std::make_shared<hotitems::CHotItemRecord>();
  record->SetItemLink(link);
  record->SetEnding(timeLeft);
  record->SetTitle(title);
  record->SetPrice(price);
  record->SetBids(bids);
  hotitems::CItemListCtrl& list = m_host.QueryResults();
  std::lock_guard busy(m_host.ResultListBusy());
  const int row = list.InsertItem(m_nRowsAdded++, record->GetEnding());
  list.SetItemText(row, 1, title);
  list.SetItemText(row, 2, price);
  list.SetItemText(row, 3, bids);
  record->SetRow(row);
  list.SetItemData(row, std::move(record));
}

}  // namespace gavelscope::query
