// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "base/Outcome.h"
#include "sites/SiteProfile.h"
#include "store/Snapshot.h"
#include "store/Trends.h"

namespace gavelscope::store {

namespace sqlite {
class Connection;
}

// $XDG_DATA_HOME/gavelscope/research.sqlite, or ~/.local/share/gavelscope/research.sqlite when
// XDG_DATA_HOME is unset or not an absolute path. A place, not a setting: nothing is created here.
std::filesystem::path DefaultStorePath();

struct OpenOptions {
  // Create the file, and its folder, when missing. Without it a missing store is a failure
  // ("There is no research store at PATH yet ...").
  bool create = true;
  // How long a call waits for another program's write (the CLI's record while the window reads,
  // say) before it fails with "... is in use by another program".
  std::chrono::milliseconds busyTimeout{5000};
};

struct RecordOptions {
  // Called inside the transaction once every row is written, just before it commits. Tests stop
  // the process there to show that a snapshot is recorded whole or not at all.
  std::function<void()> beforeCommit;
};

// The research store: one SQLite file of snapshots of the lists, kept between runs, and the trends
// read from them. The file is in WAL mode, so the window can read while the command line records;
// PRAGMA user_version says its layout, and an older layout is brought up to date when opened.
//
// Every call returns an Outcome: on failure its text names the file and says what went wrong in
// words ("Cannot record a snapshot into /x/research.sqlite: the file is read-only. Nothing was
// recorded; the earlier snapshots are kept."). A failure never changes what the file held: every
// write is one transaction, and a file that is damaged, of another program or of a newer version is
// left exactly as it is.
//
// One object is for one thread; two objects on one file (in one process or two) are fine.
class ResearchStore {
 public:
  // Opens (or creates) the store, upgrading its layout when older: the store, or null with the
  // reason in `result`. A file whose write permission bits are all off is opened read-only, for
  // every user: Record and Forget then fail, the trends still answer.
  static std::unique_ptr<ResearchStore> Open(const std::filesystem::path& file, const OpenOptions& options,
                                             base::Outcome& result);
  ~ResearchStore();
  ResearchStore(const ResearchStore&) = delete;
  ResearchStore& operator=(const ResearchStore&) = delete;

  const std::filesystem::path& file() const { return m_file; }

  // Records one snapshot of a Site, as one transaction; `id` is its number. A snapshot time equal to
  // an earlier one is fine: snapshots of the same second keep the order they were recorded in.
  base::Outcome Record(const SnapshotData& snapshot, std::int64_t& id, const RecordOptions& options = {});
  // Records several snapshots as one transaction: all of them or none. `ids` in their order.
  base::Outcome Record(std::span<const SnapshotData> snapshots, std::vector<std::int64_t>& ids,
                       const RecordOptions& options = {});

  // Every snapshot, or those of one Site, oldest first.
  base::Outcome Snapshots(std::optional<sites::Site> site, std::vector<SnapshotInfo>& snapshots);

  // Removes every snapshot taken before `before` as one transaction, then compacts the file
  // (VACUUM). `forgotten` says how many went.
  base::Outcome Forget(std::chrono::sys_seconds before, std::int64_t& forgotten);

  // Each sub-category's count in the first and the last of the Site's last `lastN` snapshots that
  // hold auction counts (all of them by default), ranked by change, largest growth first; only the
  // first `topK` rows (all by default). Both at least 1 when given. No snapshots: no rows, no times.
  base::Outcome TrendsAuctions(sites::Site site, std::optional<std::int64_t> lastN, std::optional<std::int64_t> topK,
                               AuctionTrend& trend);

  // The `largest` sub-categories that grew most from the Site's first snapshot to its last, each with
  // its count in every snapshot. Fewer than two snapshots, or nothing grew: no series.
  base::Outcome GrowthHistory(sites::Site site, std::int64_t largest, AuctionHistory& history);

  // The Top 100 keywords of the Site's last two snapshots that hold keywords: entered, left, moved.
  base::Outcome TrendsKeywords(sites::Site site, KeywordTrend& trend);

  // Every recording of the query of that file name, oldest first, and the items of the last one that
  // the one before did not have (by item link).
  base::Outcome TrendsQuery(std::string_view name, QueryTrend& trend);

 private:
  ResearchStore(std::filesystem::path file, std::unique_ptr<sqlite::Connection> connection);
  // Writes one snapshot's rows inside the caller's transaction; its id.
  std::int64_t Insert(const SnapshotData& snapshot);

  std::filesystem::path m_file;
  std::unique_ptr<sqlite::Connection> m_db;
};

}  // namespace gavelscope::store
