// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include "base/UserMessages.h"
#include "hotitems/ItemListCtrl.h"
#include "sites/SiteCategories.h"
#include "sites/SiteProfile.h"

namespace gavelscope::query {

// What a query run and its scan jobs use of the main window.
class IQueryHost {
 public:
  virtual ~IQueryHost() = default;
  virtual bool IsQueryRunning() const = 0;
  virtual void SetQueryRunning(bool running) = 0;
  virtual void IncrementPagesSearched() = 0;
  virtual const sites::SiteCategories& SiteData(sites::Site site) = 0;
  virtual hotitems::CItemListCtrl& QueryResults() = 0;
  virtual base::IUserMessages& Messages() = 0;
};

}  // namespace gavelscope::query
