// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "cli/QueryOptions.h"

#include <charconv>

#include "net/NetOptions.h"

namespace gavelscope::cli {

namespace {

bool ReadInt(const std::string& text, std::int32_t& value) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() && end == text.data() + text.size();
}

// --NAME-greater N, --NAME-less N, --NAME-range A B
bool ParseFilter(const std::vector<std::string>& args, std::size_t& i, const std::string& name, FilterChoice& filter,
                 std::string& error) {
  const std::string& arg = args[i];
  FilterChoice::Test test = FilterChoice::Test::Any;
  if (arg == "--" + name + "-greater") test = FilterChoice::Test::Greater;
  if (arg == "--" + name + "-less") test = FilterChoice::Test::Less;
  if (arg == "--" + name + "-range") test = FilterChoice::Test::Range;
  if (test == FilterChoice::Test::Any) return false;
  const std::size_t values = test == FilterChoice::Test::Range ? 2 : 1;
  if (filter.test != FilterChoice::Test::Any) {
    error = "only one " + name + " test may be given";
    return false;
  }
  if (i + values >= args.size() || !ReadInt(args[i + 1], filter.a) ||
      (values == 2 && !ReadInt(args[i + 2], filter.b))) {
    error = arg + " needs " + (values == 2 ? "two whole numbers" : "a whole number");
    return false;
  }
  // -1 is how a query file says "not set": a bound of -1 could not be saved.
  if (filter.a == -1 || (values == 2 && filter.b == -1)) {
    error = arg + " cannot take -1";
    return false;
  }
  filter.test = test;
  i += values;
  return true;
}

void Apply(const FilterChoice& filter, void (query::CMySettings::*greater)(std::int32_t),
           void (query::CMySettings::*less)(std::int32_t),
           void (query::CMySettings::*range)(std::int32_t, std::int32_t), query::CMySettings& settings) {
  switch (filter.test) {
    case FilterChoice::Test::Any:
      break;
    case FilterChoice::Test::Greater:
      (settings.*greater)(filter.a);
      break;
    case FilterChoice::Test::Less:
      (settings.*less)(filter.a);
      break;
    case FilterChoice::Test::Range:
      (settings.*range)(filter.a, filter.b);
      break;
  }
}

}  // namespace

bool ParseQueryOption(const std::vector<std::string>& args, std::size_t& i, QueryChoices& choices, std::string& error) {
  const std::string& arg = args[i];
  const bool hasValue = i + 1 < args.size();
  if (arg == "--site" && hasValue && (args[i + 1] == "usa" || args[i + 1] == "uk")) {
    choices.usa = args[++i] == "usa";
    return true;
  }
  if (arg == "--keywords" && hasValue) {
    choices.keywords = args[++i];
    return true;
  }
  if (arg == "--page-depth" && hasValue) {
    if (!ReadInt(args[i + 1], choices.pageDepth) || choices.pageDepth < 1 || choices.pageDepth > 10000) {
      error = "--page-depth is a whole number from 1 to 10000";
      return false;
    }
    ++i;
    return true;
  }
  if (arg == "--category" && hasValue) {
    // A file the program itself would refuse to load is not written.
    if (choices.categories.size() >= static_cast<std::size_t>(net::limits::kMaxQueryCategories)) {
      error = "a query holds at most " + std::to_string(net::limits::kMaxQueryCategories) + " categories";
      return false;
    }
    choices.categories.push_back(args[++i]);
    return true;
  }
  if (arg == "--sort" && hasValue) {
    const std::string& value = args[++i];
    if (value == "date")
      choices.sort = QueryChoices::Sort::Date;
    else if (value == "title")
      choices.sort = QueryChoices::Sort::Title;
    else if (value == "price")
      choices.sort = QueryChoices::Sort::Price;
    else if (value == "bids")
      choices.sort = QueryChoices::Sort::Bids;
    else {
      error = "--sort is date, title, price or bids";
      return false;
    }
    return true;
  }
  if (arg == "--descending") {
    choices.descending = true;
    return true;
  }
  if (arg == "--output" && hasValue) {
    choices.output = args[++i];
    if (choices.output.empty()) {
      error = "--output needs a file name";
      return false;
    }
    return true;
  }
  for (auto [name, filter] : {std::pair{"bids", &choices.bids}, {"price", &choices.price}, {"days", &choices.days}}) {
    if (ParseFilter(args, i, name, *filter, error)) return true;
    if (!error.empty()) return false;
  }
  error = "unknown option: " + arg;
  return false;
}

query::CMySettings SettingsFromChoices(const QueryChoices& choices) {
  using query::CMySettings;
  CMySettings settings;
  settings.SetKeywords(choices.keywords);
  settings.SetPageDepth(choices.pageDepth);
  if (choices.usa) settings.SetCountry(1);
  Apply(choices.bids, &CMySettings::SetBidsGreaterThan, &CMySettings::SetBidsLessThan, &CMySettings::SetBidsRange,
        settings);
  Apply(choices.price, &CMySettings::SetPriceGreaterThan, &CMySettings::SetPriceLessThan, &CMySettings::SetPriceRange,
        settings);
  Apply(choices.days, &CMySettings::SetDaysGreaterThan, &CMySettings::SetDaysLessThan, &CMySettings::SetDaysRange,
        settings);
  if (choices.descending) settings.SetAscending(0);
  switch (choices.sort) {
    case QueryChoices::Sort::None:
      break;
    case QueryChoices::Sort::Bids:
      settings.SetSortByBids(1);
      break;
    case QueryChoices::Sort::Date:
      settings.SetSortByDateEnded(1);
      break;
    case QueryChoices::Sort::Price:
      settings.SetSortByPrice(1);
      break;
    case QueryChoices::Sort::Title:
      settings.SetSortByTitle(1);
      break;
  }
  settings.SetCategories(choices.categories);
  return settings;
}

}  // namespace gavelscope::cli
