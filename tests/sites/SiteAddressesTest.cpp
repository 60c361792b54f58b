// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "sites/SiteAddresses.h"

#include "net/AddressCheck.h"

#include <gtest/gtest.h>

namespace gavelscope::sites {
namespace {

struct AddressCase {
  const char* name;
  const char* url;
  bool listingPageUSA;  // IsListingPageAddress with Site USA
  bool itemPage;        // IsSiteAddress
};

void PrintTo(const AddressCase& c, std::ostream* os) {
  *os << c.name;
}

class AddressCheck : public ::testing::TestWithParam<AddressCase> {};

TEST_P(AddressCheck, OnlyPlainAddressesOfTheExpectedHostPass) {
  const AddressCase& c = GetParam();
  const Profile profile = CompiledProfile();
  EXPECT_EQ(IsListingPageAddress(c.url, profile.usa), c.listingPageUSA) << c.url;
  EXPECT_EQ(IsSiteAddress(c.url, profile), c.itemPage) << c.url;
}

INSTANTIATE_TEST_SUITE_P(
    Addresses, AddressCheck,
    ::testing::Values(
        AddressCase{"ListingPage", "http://listings.ebay.com/Art/A/ListingItemListQQfrpgZ2", true, true},
        AddressCase{"HostInCapitals", "HTTP://Listings.EBAY.com/Art/", true, true},
        AddressCase{"Https", "https://listings.ebay.com/Art/", true, true},
        AddressCase{"ItemPageOfEachSite", "http://cgi.ebay.co.uk/ws/eBayISAPI.dll?ViewItem&item=1", false, true},
        AddressCase{"ListingHostAsUserName", "http://listings.ebay.com@evil.example/next?page=2", false, false},
        AddressCase{"UserNameOnTheRightHost", "http://evil@listings.ebay.com/Art/", false, false},
        AddressCase{"PasswordOnTheRightHost", "http://a:b@cgi.ebay.com/item", false, false},
        AddressCase{"UserNameWithoutHost", "http://cgi.ebay.com@/item", false, false},
        AddressCase{"OtherHost", "http://evil.example/listings.ebay.com/", false, false},
        AddressCase{"DomainOnlyAsAPrefix", "http://cgi.ebay.com.evil.example/item", false, false},
        AddressCase{"DomainWithoutItsDot", "http://notebay.com/item", false, false},
        AddressCase{"BareDomain", "http://ebay.com/item", false, false},
        AddressCase{"Ftp", "ftp://listings.ebay.com/Art/", false, false},
        AddressCase{"File", "file:///etc/passwd", false, false},
        AddressCase{"NoScheme", "listings.ebay.com/Art/", false, false}, AddressCase{"Empty", "", false, false},
        AddressCase{"SpaceInHost", "http://listings.ebay.com /Art/", false, false},
        AddressCase{"BackslashAfterHost", "http://evil.example\\@listings.ebay.com/", false, false}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(AddressCheckHost, ComparesTheWholeHost) {
  EXPECT_TRUE(net::IsAddressOnHost("http://listings.ebay.co.uk/Art/", "listings.ebay.co.uk"));
  EXPECT_FALSE(net::IsAddressOnHost("http://listings.ebay.co.uk/Art/", "listings.ebay.co"));
  EXPECT_FALSE(net::IsAddressOnHost("http://listings.ebay.co.uk/Art/", ""));
  EXPECT_FALSE(net::IsAddressUnderDomain("http://cgi.ebay.com/item", "ebay.com"));
}

}  // namespace
}  // namespace gavelscope::sites
