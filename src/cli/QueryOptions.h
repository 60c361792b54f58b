// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "query/MySettings.h"

namespace gavelscope::cli {

// One numeric filter as the query dialog offers it: any value, greater, less, or a range.
struct FilterChoice {
  enum class Test { Any, Greater, Less, Range } test = Test::Any;
  std::int32_t a = 0;
  std::int32_t b = 0;
};

// The choices of `query-new`, the command-line face of the query dialog.
struct QueryChoices {
  bool usa = true;
  std::string keywords;
  std::int32_t pageDepth = 1;
  std::vector<std::string> categories;
  FilterChoice bids;
  FilterChoice price;
  FilterChoice days;
  enum class Sort { None, Date, Title, Price, Bids } sort = Sort::None;
  bool descending = false;
  std::filesystem::path output;
};

// Takes the query option at args[i] (and its values); false with `error` set when it is not one or is
// malformed.
bool ParseQueryOption(const std::vector<std::string>& args, std::size_t& i, QueryChoices& choices, std::string& error);

// The settings the query dialog would save for the same choices.
query::CMySettings SettingsFromChoices(const QueryChoices& choices);

}  // namespace gavelscope::cli
