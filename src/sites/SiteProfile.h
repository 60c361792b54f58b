// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <string>

#include "net/FtpClient.h"

namespace gavelscope::sites {

enum class Site { USA, UK };

// Where one eBay site lives and how its pages spell it. The host names and suffixes are searched for
// in page text, so they are written exactly as the site writes them in its links.
struct SiteConfig {
  std::string listingRoot;       // fetched as it is for the listing home page
  std::string listingHost;       // as written inside page text
  std::string domainSuffix;      // a dot and the site's domain, as written inside links
  std::string itemLinkPrefix;    // start of an item link inside a listing row, entity-encoded
  std::string mainWebHost;       // the site's own root page; empty where nothing uses it
  std::string categoryListPath;  // on the vendor's web server
  std::string currency;          // the word the query dialog shows
};

struct VendorConfig {
  std::string webServer;
  std::string bannerListPath;
  std::string historyFileName;
  net::FtpAccount ftp;
  std::string supportEmail;
};

// The one compiled-in set of addresses the programs use. Passed down through constructors so that
// nothing in the core reaches for a global.
struct Profile {
  SiteConfig usa;
  SiteConfig uk;
  VendorConfig vendor;
  std::string signInPage;
  // The page whose opening proves that the internet is reachable at start-up.
  std::string connectivityProbeUrl;

  const SiteConfig& site(Site which) const { return which == Site::USA ? usa : uk; }
};

Profile CompiledProfile();

}  // namespace gavelscope::sites
