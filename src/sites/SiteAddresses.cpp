// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "sites/SiteAddresses.h"

#include "net/AddressCheck.h"

namespace gavelscope::sites {

bool IsListingPageAddress(std::string_view url, const SiteConfig& site) {
  return net::IsAddressOnHost(url, site.listingHost);
}

bool IsSiteAddress(std::string_view url, const Profile& profile) {
  return net::IsAddressUnderDomain(url, profile.usa.domainSuffix) ||
         net::IsAddressUnderDomain(url, profile.uk.domainSuffix);
}

}  // namespace gavelscope::sites
