// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "sites/SiteAddresses.h"

#include "net/AddressCheck.h"

#include <gtest/gtest.h>

namespace gavelscope::sites {
namespace {

TEST(SiteAddresses, OnlyPlainWebAddressesOfTheSitesHostsPass) {
  const Profile profile = CompiledProfile();
  const struct {
    const char* url;
    bool listingPageUsa;  // IsListingPageAddress with Site USA
    bool sitePage;        // IsSiteAddress
  } rows[] = {{"http://listings.ebay.com/Art/A/ListingItemListQQfrpgZ2", true, true},
              {"HTTP://Listings.EBAY.com/Art/", true, true},
              {"https://listings.ebay.com/Art/", true, true},
              {"http://cgi.ebay.co.uk/ws/eBayISAPI.dll?ViewItem&item=1", false, true},
              {"http://listings.ebay.com@evil.example/next?page=2", false, false},
              {"http://evil@listings.ebay.com/Art/", false, false},
              {"http://evil.example/listings.ebay.com/", false, false},
              {"http://cgi.ebay.com.evil.example/item", false, false},
              {"http://notebay.com/item", false, false},
              {"ftp://listings.ebay.com/Art/", false, false},
              {"listings.ebay.com/Art/", false, false},
              {"http://listings.ebay.com /Art/", false, false},
              {"http://evil.example\\@listings.ebay.com/", false, false}};
  for (const auto& row : rows) {
    EXPECT_EQ(IsListingPageAddress(row.url, profile.usa), row.listingPageUsa) << row.url;
    EXPECT_EQ(IsSiteAddress(row.url, profile), row.sitePage) << row.url;
  }
}

TEST(AddressCheckHost, ComparesTheWholeHost) {
  EXPECT_TRUE(net::IsAddressOnHost("http://listings.ebay.co.uk/Art/", "listings.ebay.co.uk"));
  EXPECT_FALSE(net::IsAddressOnHost("http://listings.ebay.co.uk/Art/", "listings.ebay.co"));
  EXPECT_FALSE(net::IsAddressOnHost("http://listings.ebay.co.uk/Art/", ""));
  EXPECT_FALSE(net::IsAddressUnderDomain("http://cgi.ebay.com/item", "ebay.com"));
}

}  // namespace
}  // namespace gavelscope::sites
