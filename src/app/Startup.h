// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <stop_token>

#include "net/NetOptions.h"
#include "sites/SiteProfile.h"

namespace gavelscope::app {

// Opens the UK site's root page on a session of its own, without reading it: true when the server
// answered. Nothing starts without it.
net::NetResult ProbeConnectivity(const sites::Profile& profile, const net::NetOptions& options,
                                 std::stop_token stop = {});

}  // namespace gavelscope::app
