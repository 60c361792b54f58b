// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "query/RunSetup.h"

#include <algorithm>

namespace gavelscope::query {

void ConfigureRun(const CMySettings& settings, const sites::SiteCategories& site, CInitialiseHotItemQueryThread& run) {
  run.SetKeywords(settings.GetKeywords());
  run.SetPageDepth(settings.m_nPageDepth);
  if (settings.m_bInternational) run.SetCountry(1);
  // Only the chosen test of each group is handed on, in the order the dialog hands them.
  if (settings.m_bBidsGreater) run.SetBidsGreaterThan(settings.m_nBidsGreater);
  if (settings.m_bPriceGreater) run.SetPriceGreaterThan(settings.m_nPriceGreater);
  if (settings.m_bDaysGreater) run.SetDaysGreaterThan(settings.m_nDaysGreater);
  if (settings.m_bBidsLess) run.SetBidsLessThan(settings.m_nBidsLess);
  if (settings.m_bPriceLess) run.SetPriceLessThan(settings.m_nPriceLess);
  if (settings.m_bDaysLess) run.SetDaysLessThan(settings.m_nDaysLess);
  if (settings.m_bBidsRange) run.SetBidsRange(settings.m_nBidsFrom, settings.m_nBidsTo);
  if (settings.m_bPriceRange) run.SetPriceRange(settings.m_nPriceFrom, settings.m_nPriceTo);
  if (settings.m_bDaysRange) run.SetDaysRange(settings.m_nDaysFrom, settings.m_nDaysTo);
  if (!settings.m_bAscending) run.SetAscending(0);
  if (settings.m_bSortBids) run.SetSortByBids(1);
  if (settings.m_bSortDateEnded) run.SetSortByDateEnded(1);
  if (settings.m_bSortPrice) run.SetSortByPrice(1);
  if (settings.m_bSortTitle) run.SetSortByTitle(1);

  std::vector<std::string> links;
  for (const std::string& name : settings.m_categories) {
    const auto found = std::find(site.arrCategoryNames.begin(), site.arrCategoryNames.end(), name);
    const auto index = static_cast<std::size_t>(found - site.arrCategoryNames.begin());
    links.push_back(found != site.arrCategoryNames.end() && index < site.arrCategoryLinks.size()
                        ? site.arrCategoryLinks[index]
                        : name);
  }
  run.SetCategories(std::move(links));
}

}  // namespace gavelscope::query
