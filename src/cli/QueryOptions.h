// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "query/QuerySpec.h"

namespace gavelscope::cli {

// The choices of `query-new`, the command-line face of the query dialog: the query (on the USA site
// unless told otherwise, as the dialog opens) and the file to save it in.
struct QueryChoices {
  query::QuerySpec query = [] {
    query::QuerySpec spec;
    spec.site = sites::Site::USA;
    return spec;
  }();
  std::filesystem::path output;
};

// Takes the query option at args[i] (and its values); false with `error` set when it is not one or is
// malformed.
bool ParseQueryOption(const std::vector<std::string>& args, std::size_t& i, QueryChoices& choices, std::string& error);

}  // namespace gavelscope::cli
