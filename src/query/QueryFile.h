// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <filesystem>
#include <string>

#include "net/NetOptions.h"
#include "query/MySettings.h"

namespace gavelscope::query {

// A query file is one archive object, the settings, followed by its category names as
// CCategoryNameObject objects: the first with its class record, the rest referring to it.
std::string SaveQueryBytes(const CMySettings& settings);

// Reads what SaveQueryBytes writes, and also the other tag forms the archive format allows (null
// categories, long tags, references to categories read earlier). On failure returns false with the
// reason in `error` and leaves `out` as it was; data after the last category is ignored.
bool LoadQueryBytes(std::string bytes, CMySettings& out, std::string& error);

// Nothing half-written is left behind: a failed save keeps what the file held before, and its
// error is the system's reason.
net::NetResult SaveQueryFile(const std::filesystem::path& file, const CMySettings& settings);
net::NetResult LoadQueryFile(const std::filesystem::path& file, CMySettings& out);

// One "field: value" line per field in declaration order, then one "category: NAME" line per
// category.
std::string DescribeSettings(const CMySettings& settings);

}  // namespace gavelscope::query
