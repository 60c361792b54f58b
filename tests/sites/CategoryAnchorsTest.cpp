// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "sites/CategoryAnchors.h"

#include <gtest/gtest.h>

namespace gavelscope::sites {
namespace {

struct Found {
  std::vector<std::string> names;
  std::vector<std::string> links;
};

Found Parse(std::string_view page) {
  Found found;
  ParseCategoryAnchors(page, found.names, found.links);
  return found;
}

TEST(CategoryAnchors, ReadsNamesAndLinksInPageOrder) {
  const Found found = Parse(
      "<html><a href=\"http://listings.ebay.com/Books/list/\"><b>Books</b></a> (1,234)<br>"
      "<a href=\"http://listings.ebay.com/Toys/list/\"><b>Toys &amp; Hobbies</b></a> (55)</html>");
  EXPECT_EQ(found.names, (std::vector<std::string>{"Books", "Toys & Hobbies"}));
  // The cut stops three characters before the anchor text, so the closing "/" goes too.
  EXPECT_EQ(found.links,
            (std::vector<std::string>{"http://listings.ebay.com/Books/list", "http://listings.ebay.com/Toys/list"}));
}

TEST(CategoryAnchors, BoldInsideANameCutsItAtTheLastTag) {
  // Both backward searches stop at the last '<': an inner <b> starts the name, and the anchor is
  // taken to begin at the outer <b>, which leaves no room for a link.
  const Found found = Parse("<a href=\"http://h/Art/\"><b>Art &amp; <b>Craft</b></a> (7)");
  EXPECT_EQ(found.names, std::vector<std::string>{"Craft"});
  EXPECT_EQ(found.links, std::vector<std::string>{""});
}

TEST(CategoryAnchors, EntitiesInANameAreDecoded) {
  const Found found = Parse("<a href=\"http://h/Art/\"><b>Arts &#39;n&#39; Crafts &amp; More</b></a> (7)");
  EXPECT_EQ(found.names, std::vector<std::string>{"Arts 'n' Crafts & More"});
  EXPECT_EQ(found.links, std::vector<std::string>{"http://h/Art"});
}

TEST(CategoryAnchors, PageWithoutCategoriesGivesNothing) {
  EXPECT_TRUE(Parse("").names.empty());
  EXPECT_TRUE(Parse("<html><a href=\"http://h/x/\">plain</a> (3)</html>").links.empty());
}

TEST(CategoryAnchors, MarkerWithoutAnAnchorStaysInsideThePage) {
  // No '<' before the marker at all: the cuts fall back to the edges of the page, never outside it.
  const Found found = Parse("xx</b></a> (1)");
  ASSERT_EQ(found.names.size(), 1U);
  EXPECT_EQ(found.names[0], "");
  EXPECT_EQ(found.links.size(), 1U);
}

}  // namespace
}  // namespace gavelscope::sites
