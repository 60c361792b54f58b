// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

#include "insights/Statistics.h"
#include "store/Sqlite.h"

namespace gavelscope::store {

// Why a store cannot be used, as the rest of a sentence about it: "holds more than ... rows". Thrown
// inside the store only, like sqlite::Error.
class Refusal : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The layout a store has once opened by this program (PRAGMA user_version).
inline constexpr int kSchemaVersion = 2;
// PRAGMA application_id of every research store ("GvSc"): a database of another program, opened by
// mistake, is told apart from ours and left alone.
inline constexpr std::int32_t kApplicationId = 0x47765363;

// A store is outside input like any file: reads stop at these many rows of one list (a snapshot's
// auction counts or keywords, a query's results) and at these many snapshots, with a message rather
// than without end. A real Site has some 30,000 sub-categories; a year of daily records is 730
// snapshots of both Sites.
inline constexpr std::int64_t kMaxListRows = 1'000'000;
inline constexpr std::int64_t kMaxSnapshots = 100'000;

// The first layout exactly as version 1 wrote it, application id and user_version included. A new
// store starts from it and goes through every migration, so that a new store and an upgraded old
// one can never differ.
std::string_view SchemaVersion1Sql();

// Brings a store of version `from` (at least 1) up to kSchemaVersion, one version at a time, inside
// the caller's transaction.
void Migrate(sqlite::Connection& connection, int from);

// A query's statistics as a store keeps them: insights' JSON object, on one line.
std::string StoredStatistics(const insights::ListStatistics& statistics);

}  // namespace gavelscope::store
