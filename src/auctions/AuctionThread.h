// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <stop_token>
#include <string>

#include "auctions/AuctionListCtrl.h"
#include "base/RunEvents.h"
#include "sites/SiteCategories.h"
#include "sites/SiteProfile.h"

namespace gavelscope::auctions {

// Fills one Site's auction list from the listing home page that the start-up fetched: waits until the
// Site's categories are in, reads each category's sub-categories and counts, and sorts them. It
// fetches nothing itself, so after a refresh it starts at once from the start-up's page.
class CAuctionThread {
 public:
  CAuctionThread(sites::Site site, const sites::Profile& profile, const sites::SiteCategories& categories,
                 CAuctionListCtrl& list, base::IRunEvents& events);

  // The whole job, then the completion report. A stop request ends the wait.
  void Run(std::stop_token stop);

 private:
  std::string m_listingHost;
  std::string m_domainSuffix;
  const sites::SiteCategories& m_categories;
  CAuctionListCtrl& m_list;
  base::IRunEvents& m_events;
};

class CAuctionThreadUSA : public CAuctionThread {
 public:
  CAuctionThreadUSA(const sites::Profile& profile, const sites::SiteCategories& categories, CAuctionListCtrl& list,
                    base::IRunEvents& events)
      : CAuctionThread(sites::Site::USA, profile, categories, list, events) {}
};

class CAuctionThreadUK : public CAuctionThread {
 public:
  CAuctionThreadUK(const sites::Profile& profile, const sites::SiteCategories& categories, CAuctionListCtrl& list,
                   base::IRunEvents& events)
      : CAuctionThread(sites::Site::UK, profile, categories, list, events) {}
};

}  // namespace gavelscope::auctions
