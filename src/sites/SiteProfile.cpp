// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "sites/SiteProfile.h"

namespace gavelscope::sites {

Profile CompiledProfile() {
  Profile profile;
  profile.usa = SiteConfig{
      .listingRoot = "http://listings.ebay.com",
      .listingHost = "listings.ebay.com",
      .domainSuffix = ".ebay.com",
      .itemLinkPrefix = "http://cgi.ebay.com/ws/eBayISAPI.dll?ViewItem&amp;category",
      .mainWebHost = "",
      .categoryListPath = "/CategoryListUSA.txt",
      .currency = "Dollars",
  };
  profile.uk = SiteConfig{
      .listingRoot = "http://listings.ebay.co.uk",
      .listingHost = "listings.ebay.co.uk",
      .domainSuffix = ".ebay.co.uk",
      .itemLinkPrefix = "http://cgi.ebay.co.uk/ws/eBayISAPI.dll?ViewItem&amp;category",
      .mainWebHost = "http://www.ebay.co.uk/",
      .categoryListPath = "/CategoryListUK.txt",
      .currency = "Pounds",
  };
  profile.vendor = VendorConfig{
      .webServer = "http://www.gavelscope.example",
      .bannerListPath = "/GavelscopeBanners.txt",
      .historyFileName = "HotItemList.txt",
      .ftp = net::FtpAccount{.host = "ftp.gavelscope.example", .port = 21, .user = "gavelscope", .password = "h0tlist"},
      .supportEmail = "support@gavelscope.example",
  };
  profile.signInPage = "http://cgi1.ebay.com/aw-cgi/eBayISAPI.dll?MyEbayLogin";
  profile.connectivityProbeUrl = profile.uk.mainWebHost;
  return profile;
}

}  // namespace gavelscope::sites
