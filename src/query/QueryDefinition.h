// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "sites/SiteCategories.h"
#include "sites/SiteProfile.h"

namespace gavelscope::query {

// One numeric filter of a query: the test chosen, and the bound of each test, -1 where none was
// given. Bids are whole bids, prices whole units of the Site's currency, days whole days.
struct FilterSpec {
  enum class Test { Any, Greater, Less, Range };

  Test test = Test::Any;
  std::int32_t greater = -1;
  std::int32_t less = -1;
  std::int32_t from = -1;
  std::int32_t to = -1;

  static FilterSpec GreaterThan(std::int32_t n) { return {Test::Greater, n, -1, -1, -1}; }
  static FilterSpec LessThan(std::int32_t n) { return {Test::Less, -1, n, -1, -1}; }
  static FilterSpec Between(std::int32_t low, std::int32_t high) { return {Test::Range, -1, -1, low, high}; }

  // Greater and less are strict, a range holds both ends. A test whose bound was never given (both
  // bounds, for a range) accepts every value, as "any" does.
  bool Passes(std::int32_t value) const;

  bool operator==(const FilterSpec&) const = default;
};

// The column a finished query list is sorted by.
enum class SortColumn { None, DateEnded, Title, Price, Bids };

// One hot item query. The query dialog shows and collects it, the command line builds it, a query
// file keeps it, and a run carries it out; only the query file knows its field-by-field layout.
struct QueryDefinition {
  sites::Site site = sites::Site::UK;
  // As typed; a query file keeps it, and a scan uses it, without white space at either end.
  std::string keywords;
  std::int32_t pageDepth = 1;
  // The names as the Site's home page shows them; a run is handed their links instead.
  std::vector<std::string> categories;
  FilterSpec bids;
  FilterSpec days;
  FilterSpec price;
  SortColumn sort = SortColumn::None;
  bool ascending = true;

  bool operator==(const QueryDefinition&) const = default;
};

// Each name replaced by the link of the Site's category of that name (exact, first match); a name the
// Site does not list stays as it is, and is looked for on the home page as it stands.
std::vector<std::string> CategoryLinks(const std::vector<std::string>& names, const sites::SiteCategories& site);

}  // namespace gavelscope::query
