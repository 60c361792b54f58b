// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "query/QueryDefinition.h"

#include <algorithm>

namespace gavelscope::query {

namespace {

constexpr std::int32_t kNotGiven = -1;

}  // namespace

bool FilterSpec::Passes(std::int32_t value) const {
  switch (test) {
    case Test::Any:
      return true;
    case Test::Greater:
      return greater == kNotGiven || value > greater;
    case Test::Less:
      return less == kNotGiven || value < less;
    case Test::Range:
      return (from == kNotGiven && to == kNotGiven) || (from <= value && value <= to);
  }
  return true;
}

std::vector<std::string> CategoryLinks(const std::vector<std::string>& names, const sites::SiteCategories& site) {
  std::vector<std::string> links;
  links.reserve(names.size());
  for (const std::string& name : names) {
    const auto found = std::find(site.arrCategoryNames.begin(), site.arrCategoryNames.end(), name);
    const auto index = static_cast<std::size_t>(found - site.arrCategoryNames.begin());
    links.push_back(found != site.arrCategoryNames.end() && index < site.arrCategoryLinks.size()
                        ? site.arrCategoryLinks[index]
                        : name);
  }
  return links;
}

}  // namespace gavelscope::query
