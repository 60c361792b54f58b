// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <string_view>

namespace gavelscope::net {

// Addresses put together from page text are only as honest as the page. Before one is fetched it
// must be plain http or https, carry no user name or password (text glued after a host turns that
// host into a user name and names another host), and lead to the host the scan expects. libcurl's
// own URL parser decides, so the host checked is the host libcurl would connect to.

// True when `url` may be fetched and its host is `host` (letter case aside).
bool IsAddressOnHost(std::string_view url, std::string_view host);
// True when `url` may be fetched and its host ends with one of the domain suffixes (".ebay.com").
bool IsAddressUnderDomain(std::string_view url, std::string_view domainSuffix);

}  // namespace gavelscope::net
