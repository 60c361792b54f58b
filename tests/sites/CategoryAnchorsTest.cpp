// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "sites/CategoryAnchors.h"

#include <gtest/gtest.h>

namespace gavelscope::sites {
namespace {

TEST(CategoryAnchors, ReadsBoldAnchorsFollowedByACountInPageOrder) {
  using Texts = std::vector<std::string>;
  const struct {
    std::string page;
    Texts names, links;
  } rows[] = {// The cut stops three characters before the anchor text, so the closing "/" goes too.
              {"<html><a href=\"http://listings.ebay.com/Books/list/\"><b>Books</b></a> (1,234)<br>"
               "<a href=\"http://listings.ebay.com/Toys/list/\"><b>Toys &amp; Hobbies</b></a> (55)</html>",
               {"Books", "Toys & Hobbies"},
               {"http://listings.ebay.com/Books/list", "http://listings.ebay.com/Toys/list"}},
              // Both backward searches stop at the last '<': an inner <b> starts the name, and the anchor is
              // taken to begin at the outer <b>, which leaves no room for a link.
              {"<a href=\"http://h/Art/\"><b>Art &amp; <b>Craft</b></a> (7)", {"Craft"}, {""}},
              {"<html><a href=\"http://h/x/\">plain</a> (3)</html>", {}, {}}};
  for (const auto& row : rows) {
    Texts names, links;
    ParseCategoryAnchors(row.page, names, links);
    EXPECT_EQ(names, row.names) << row.page;
    EXPECT_EQ(links, row.links) << row.page;
  }
}

}  // namespace
}  // namespace gavelscope::sites
