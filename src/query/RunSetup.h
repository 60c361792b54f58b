// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include "query/MySettings.h"
#include "query/QueryRun.h"
#include "sites/SiteCategories.h"

namespace gavelscope::query {

// Hands a saved query to a run the way Start Query does: the filters in the dialog's order, the sort,
// and each category name replaced by its link from the site's home page (a name the site does not
// list is scanned for as it is).
void ConfigureRun(const CMySettings& settings, const sites::SiteCategories& site, CInitialiseHotItemQueryThread& run);

}  // namespace gavelscope::query
