// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <filesystem>
#include <string>

#include "base/Outcome.h"
#include "query/MySettings.h"
#include "query/QueryDefinition.h"

namespace gavelscope::query {

// A query file is one archive object, the settings, followed by its category names as
// CCategoryNameObject objects: the first with its class record, the rest referring to it.
std::string SaveQueryBytes(const CMySettings& settings);

// Reads what SaveQueryBytes writes, and also the other tag forms the archive format allows (null
// categories, long tags, references to categories read earlier). On failure returns false with the
// reason in `error` and leaves `out` as it was; data after the last category is ignored.
bool LoadQueryBytes(std::string bytes, CMySettings& out, std::string& error);

// One "field: value" line per field in declaration order, then one "category: NAME" line per
// category.
std::string DescribeSettings(const CMySettings& settings);

// A query as its file keeps it: the chosen test of each filter through the setters, so a bound of -1
// is not kept, and the keywords without white space at either end.
CMySettings SettingsFromQuery(const QueryDefinition& query);
// The query a file describes: a filter whose group flag is clear accepts any value; otherwise its
// test is the first set of greater, less and range, as the scan reads them; every bound is kept,
// and the sort is the first set of date ended, title, price and bids.
QueryDefinition QueryFromSettings(const CMySettings& settings);

// Nothing half-written is left behind: a failed save keeps what the file held before, and its
// error is the system's reason.
base::Outcome SaveQueryFile(const std::filesystem::path& file, const QueryDefinition& query);
// A file that cannot be read, is not a regular file, is too large or does not hold a query fails
// with "Cannot Load File : PATH".
base::Outcome LoadQueryFile(const std::filesystem::path& file, QueryDefinition& out);
// The file's fields as it stores them, DescribeSettings' way.
base::Outcome DescribeQueryFile(const std::filesystem::path& file, std::string& description);

}  // namespace gavelscope::query
