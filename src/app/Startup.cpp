// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "app/Startup.h"

#include "net/Session.h"
#include "net/TextFeed.h"

namespace gavelscope::app {

net::NetResult ProbeConnectivity(const sites::Profile& profile, const net::NetOptions& options, std::stop_token stop) {
  const auto session = net::Session::Create(options);
  return net::ProbeUrl(session, profile.connectivityProbeUrl, std::move(stop));
}

}  // namespace gavelscope::app
