// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <stop_token>
#include <string>

#include "app/RunEvents.h"
#include "app/SiteCategories.h"
#include "auctions/AuctionListCtrl.h"
#include "net/SiteProfile.h"

namespace gavelscope::auctions {

// Fills one Site's auction list from the listing home page that the start-up fetched: waits until the
// Site's categories are in, reads each category's sub-categories and counts, and sorts them. It
// fetches nothing itself, so after a refresh it starts at once from the start-up's page.
class CAuctionThread {
 public:
  CAuctionThread(net::Site site, const net::Profile& profile, const app::SiteCategories& categories,
                 CAuctionListCtrl& list, app::IRunEvents& events);

  // The whole job, then the completion report. A stop request ends the wait.
  void Run(std::stop_token stop);

 private:
  std::string m_listingHost;
  std::string m_domainSuffix;
  const app::SiteCategories& m_categories;
  CAuctionListCtrl& m_list;
  app::IRunEvents& m_events;
};

class CAuctionThreadUSA : public CAuctionThread {
 public:
  CAuctionThreadUSA(const net::Profile& profile, const app::SiteCategories& categories, CAuctionListCtrl& list,
                    app::IRunEvents& events)
      : CAuctionThread(net::Site::USA, profile, categories, list, events) {}
};

class CAuctionThreadUK : public CAuctionThread {
 public:
  CAuctionThreadUK(const net::Profile& profile, const app::SiteCategories& categories, CAuctionListCtrl& list,
                   app::IRunEvents& events)
      : CAuctionThread(net::Site::UK, profile, categories, list, events) {}
};

}  // namespace gavelscope::auctions
