// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "store/ResearchStore.h"

#include <pwd.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <unordered_map>
#include <unordered_set>

#include <nlohmann/json.hpp>

#include "store/Schema.h"
#include "store/Sqlite.h"

namespace gavelscope::store {

namespace {

namespace fs = std::filesystem;

std::string SqliteReason(const sqlite::Error& error) {
  const std::string what = std::string(" (") + error.what() + ")";
  switch (error.primary()) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return "is in use by another program" + what + "; try again in a moment";
    case SQLITE_READONLY:
      return "is read-only" + what;
    case SQLITE_FULL:
      return "cannot grow: the disk is full" + what;
    case SQLITE_NOTADB:
    case SQLITE_CORRUPT:
      return "is damaged or is not a database" + what + "; it was left as it is";
    case SQLITE_CANTOPEN:
      return "cannot be opened" + what;
    case SQLITE_TOOBIG:
      return "holds a value longer than a research store's values may be" + what;
    default:
      return "failed" + what;
  }
}

// Runs `body`, turning whatever it throws into a sentence that names the file.
template <typename Body>
base::Outcome Guarded(const fs::path& file, std::string_view action, std::string_view after, Body body) {
  std::string reason;
  try {
    body();
    return {true, {}};
  } catch (const sqlite::Error& error) {
    reason = SqliteReason(error);
  } catch (const Refusal& refusal) {
    reason = refusal.what();
  } catch (const std::exception& error) {
    reason = std::string("failed (") + error.what() + ")";
  }
  return {false,
          "Cannot " + std::string(action) + " " + file.string() + ": the file " + reason + "." + std::string(after)};
}

// Reads into a fresh answer, which replaces `answer` only when the whole reading worked: a failure
// leaves the fresh one, never half a trend.
template <typename Answered, typename Body>
base::Outcome Answer(const fs::path& file, std::string_view action, Answered fresh, Answered& answer, Body body) {
  Answered result = fresh;
  const base::Outcome outcome = Guarded(file, action, "", [&] { body(result); });
  answer = outcome ? std::move(result) : std::move(fresh);
  return outcome;
}

constexpr std::string_view kNothingRecorded = " Nothing was recorded; the earlier snapshots are kept.";

std::string_view SiteText(sites::Site site) {
  return insights::SiteName(site);
}

sites::Site SiteOf(const std::string& text) {
  return text == "uk" ? sites::Site::UK : sites::Site::USA;
}

// Every row read from the file counts against a limit.
void Count(std::int64_t& rows, std::int64_t limit, std::string_view what) {
  if (++rows > limit) throw Refusal("holds more than " + std::to_string(limit) + " " + std::string(what));
}

template <typename Answered>
Answered OfSite(sites::Site site) {
  Answered answer;
  answer.site = site;
  return answer;
}

QueryTrend QueryNamed(std::string_view name) {
  QueryTrend answer;
  answer.query = name;
  return answer;
}

enum class Holding { Auctions, Keywords };

struct Picked {
  std::int64_t id = 0;
  std::string time;
};

// The Site's last `most` snapshots that hold rows of that kind, newest first.
std::vector<Picked> PickSnapshots(sqlite::Connection& db, sites::Site site, Holding holding, std::int64_t most) {
  sqlite::Statement pick(db, holding == Holding::Auctions ? R"sql(
SELECT id, time FROM snapshots s
WHERE site = ?1 AND EXISTS (SELECT 1 FROM auctions a WHERE a.snapshot = s.id)
ORDER BY time DESC, id DESC LIMIT ?2)sql"
                                                           : R"sql(
SELECT id, time FROM snapshots s
WHERE site = ?1 AND EXISTS (SELECT 1 FROM keywords k WHERE k.snapshot = s.id)
ORDER BY time DESC, id DESC LIMIT ?2)sql");
  // One beyond the bound, so that a store holding more is told, not silently cut.
  pick.Bind(1, SiteText(site)).Bind(2, std::min(most, kMaxSnapshots + 1));
  std::vector<Picked> picked;
  std::int64_t read = 0;
  while (pick.Step()) {
    Count(read, kMaxSnapshots, "snapshots");
    picked.push_back({pick.Integer(0), pick.Text(1)});
  }
  return picked;
}

fs::path HomeFolder() {
  const char* home = std::getenv("HOME");
  if (home != nullptr && home[0] == '/') return home;
  if (const passwd* entry = getpwuid(getuid()); entry != nullptr && entry->pw_dir != nullptr) return entry->pw_dir;
  return fs::temp_directory_path();
}

// The user took every write permission away: the store is kept as it is even for root, whom the
// permission bits would not stop.
bool WritesForbidden(const fs::path& file) {
  struct stat status {};
  return (::stat(file.c_str(), &status) == 0 && (status.st_mode & 0222) == 0) || ::access(file.c_str(), W_OK) != 0;
}

void UseWriteAheadLog(sqlite::Connection& db) {
  {
    sqlite::Statement mode(db, "PRAGMA journal_mode");
    // Set only when it is not yet: setting it writes to the file.
    if (mode.Step() && mode.Text(0) == "wal") return;
  }
  db.Execute("PRAGMA journal_mode = WAL");
}

void CheckVersion(std::int64_t version) {
  if (version > kSchemaVersion) {
    throw Refusal("was written by a newer Gavelscope (layout version " + std::to_string(version) +
                  "; this one reads up to " + std::to_string(kSchemaVersion) + "); it was left as it is");
  }
  if (version < 0) throw Refusal("has a layout no Gavelscope wrote (version " + std::to_string(version) + ")");
}

// Checks that the file is a research store this program can read, and brings an older layout (or a
// new, empty file) up to date.
void Prepare(sqlite::Connection& db) {
  db.Execute("PRAGMA foreign_keys = ON");
  // The first read of the file: one that is not a database at all fails here, before anything is
  // written.
  const std::int64_t version = db.Integer("PRAGMA user_version");
  const bool empty = version == 0 && db.Integer("SELECT count(*) FROM sqlite_schema") == 0;
  if (!empty && db.Integer("PRAGMA application_id") != kApplicationId) {
    throw Refusal("is a database of another program, not a research store; it was left as it is");
  }
  CheckVersion(version);
  if (db.IsReadOnly()) {
    if (version < kSchemaVersion) throw Refusal("is read-only and needs its layout brought up to date first");
    return;
  }
  UseWriteAheadLog(db);
  if (version == kSchemaVersion) return;
  sqlite::Transaction transaction(db);
  // Read again under the write lock: another program may have created or upgraded it meanwhile.
  const std::int64_t now = db.Integer("PRAGMA user_version");
  CheckVersion(now);
  if (now == 0) db.Execute(std::string(SchemaVersion1Sql()).c_str());
  if (now < kSchemaVersion) Migrate(db, now == 0 ? 1 : static_cast<int>(now));
  transaction.Commit();
}

std::vector<AuctionCount> ReadAuctions(sqlite::Connection& db, std::int64_t snapshot) {
  sqlite::Statement rows(db,
                         "SELECT name, link, count_text, count FROM auctions WHERE snapshot = ?1 ORDER BY position");
  rows.Bind(1, snapshot);
  std::vector<AuctionCount> counts;
  std::int64_t read = 0;
  while (rows.Step()) {
    Count(read, kMaxListRows, "auction counts in one snapshot");
    counts.push_back({rows.Text(0), rows.Text(1), rows.Text(2),
                      rows.IsInteger(3) ? std::optional<long>(rows.Integer(3)) : std::nullopt});
  }
  return counts;
}

std::vector<std::string> ReadKeywords(sqlite::Connection& db, std::int64_t snapshot) {
  sqlite::Statement rows(db, "SELECT keyword FROM keywords WHERE snapshot = ?1 ORDER BY position");
  rows.Bind(1, snapshot);
  std::vector<std::string> keywords;
  std::int64_t read = 0;
  while (rows.Step()) {
    Count(read, kMaxListRows, "keywords in one snapshot");
    keywords.push_back(rows.Text(0));
  }
  return keywords;
}

insights::Cell CellOf(const sqlite::Statement& row, int column) {
  if (row.IsNull(column)) return {};
  if (row.IsInteger(column)) return static_cast<long>(row.Integer(column));
  if (row.IsReal(column)) return row.Real(column);
  return row.Text(column);
}

// A query recording's rows, in the columns of insights::ColumnsOf(ListKind::Query).
std::vector<std::vector<insights::Cell>> ReadQueryRows(sqlite::Connection& db, std::int64_t query) {
  sqlite::Statement rows(db,
                         "SELECT time_left, time_left_seconds, title, price_text, price, currency, bids_text, bids, "
                         "link FROM query_rows WHERE query = ?1 ORDER BY position");
  rows.Bind(1, query);
  std::vector<std::vector<insights::Cell>> table;
  std::int64_t read = 0;
  while (rows.Step()) {
    Count(read, kMaxListRows, "rows in one query recording");
    std::vector<insights::Cell>& row = table.emplace_back();
    for (int column = 0; column < 9; ++column) row.push_back(CellOf(rows, column));
  }
  return table;
}

std::string LinkOf(const std::vector<insights::Cell>& row) {
  const auto* link = std::get_if<std::string>(&row.back());
  return link != nullptr ? *link : std::string();
}

// The medians and the mean bids out of stored statistics, which may be anything: what cannot be read
// stays out.
void ReadFigures(const std::string& statistics, QueryPoint& point) {
  const nlohmann::json json = nlohmann::json::parse(statistics, nullptr, /*allow_exceptions=*/false);
  if (!json.is_object()) return;
  const auto currencies = json.find("currencies");
  for (const insights::Currency currency : {insights::Currency::USD, insights::Currency::GBP}) {
    if (currencies == json.end() || !currencies->is_object()) break;
    const auto figures = currencies->find(std::string(insights::CurrencyCode(currency)));
    if (figures == currencies->end() || !figures->is_object()) continue;
    const auto median = figures->find("median");
    if (median != figures->end() && median->is_number()) point.medians[currency] = median->get<double>();
  }
  const auto bids = json.find("bids");
  if (bids != json.end() && bids->is_object()) {
    const auto mean = bids->find("mean");
    if (mean != bids->end() && mean->is_number()) point.meanBids = mean->get<double>();
  }
}

void BindCell(sqlite::Statement& statement, int index, const insights::Cell& cell) {
  if (const auto* text = std::get_if<std::string>(&cell)) {
    statement.Bind(index, std::string_view(*text));
  } else if (const auto* whole = std::get_if<long>(&cell)) {
    statement.Bind(index, static_cast<std::int64_t>(*whole));
  } else if (const auto* amount = std::get_if<double>(&cell)) {
    statement.Bind(index, *amount);
  } else {
    statement.BindNull(index);
  }
}

}  // namespace

fs::path DefaultStorePath() {
  const char* data = std::getenv("XDG_DATA_HOME");
  // The folder conventions only accept absolute paths.
  const fs::path base = data != nullptr && data[0] == '/' ? fs::path(data) : HomeFolder() / ".local" / "share";
  return base / "gavelscope" / "research.sqlite";
}

ResearchStore::ResearchStore(fs::path file, std::unique_ptr<sqlite::Connection> connection)
    : m_file(std::move(file)), m_db(std::move(connection)) {}

ResearchStore::~ResearchStore() = default;

std::unique_ptr<ResearchStore> ResearchStore::Open(const fs::path& file, const OpenOptions& options,
                                                   base::Outcome& result) {
  std::error_code error;
  const bool exists = fs::exists(file, error);
  if (!exists && !options.create) {
    result = {false, "There is no research store at " + file.string() + " yet: nothing has been recorded."};
    return nullptr;
  }
  std::unique_ptr<sqlite::Connection> connection;
  result = Guarded(file, "open the research store", "", [&] {
    if (!exists && file.has_parent_path() && !fs::exists(file.parent_path(), error)) {
      fs::create_directories(file.parent_path(), error);
      if (error) throw Refusal("cannot be created: its folder cannot be made (" + error.message() + ")");
    }
    connection = std::make_unique<sqlite::Connection>(
        file, sqlite::Connection::Options{
                  .readOnly = exists && WritesForbidden(file), .create = !exists, .busyTimeout = options.busyTimeout});
    Prepare(*connection);
  });
  if (!result) return nullptr;
  return std::unique_ptr<ResearchStore>(new ResearchStore(file, std::move(connection)));
}

base::Outcome ResearchStore::Record(const SnapshotData& snapshot, std::int64_t& id, const RecordOptions& options) {
  std::vector<std::int64_t> ids;
  const base::Outcome recorded = Record(std::span(&snapshot, 1), ids, options);
  if (recorded) id = ids.front();
  return recorded;
}

base::Outcome ResearchStore::Record(std::span<const SnapshotData> snapshots, std::vector<std::int64_t>& ids,
                                    const RecordOptions& options) {
  std::vector<std::int64_t> made;
  const base::Outcome recorded = Guarded(m_file, "record a snapshot into", kNothingRecorded, [&] {
    if (m_db->IsReadOnly()) throw Refusal("is read-only");
    sqlite::Transaction transaction(*m_db);
    for (const SnapshotData& snapshot : snapshots) made.push_back(Insert(snapshot));
    if (options.beforeCommit) options.beforeCommit();
    transaction.Commit();
  });
  if (recorded) ids = std::move(made);
  return recorded;
}

std::int64_t ResearchStore::Insert(const SnapshotData& snapshot) {
  sqlite::Statement(*m_db, "INSERT INTO snapshots (time, site) VALUES (?1, ?2)")
      .Bind(1, TimeText(snapshot.time))
      .Bind(2, SiteText(snapshot.site))
      .Run();
  const std::int64_t snapshotId = m_db->LastInsertId();

  sqlite::Statement auction(*m_db, "INSERT INTO auctions VALUES (?1, ?2, ?3, ?4, ?5, ?6)");
  std::int64_t position = 0;
  for (const AuctionCount& row : snapshot.auctions) {
    auction.Reset();
    auction.Bind(1, snapshotId).Bind(2, ++position).Bind(3, row.name).Bind(4, row.link).Bind(5, row.countText);
    auction.Bind(6, row.count ? std::optional<std::int64_t>(*row.count) : std::nullopt).Run();
  }
  sqlite::Statement keyword(*m_db, "INSERT INTO keywords VALUES (?1, ?2, ?3)");
  position = 0;
  for (const std::string& text : snapshot.keywords) {
    keyword.Reset();
    keyword.Bind(1, snapshotId).Bind(2, ++position).Bind(3, text).Run();
  }
  sqlite::Statement query(
      *m_db, "INSERT INTO queries (snapshot, name, site, settings, statistics) VALUES (?1, ?2, ?3, ?4, ?5)");
  sqlite::Statement result(*m_db, "INSERT INTO query_rows VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11)");
  for (const QueryRecording& recording : snapshot.queries) {
    query.Reset();
    query.Bind(1, snapshotId).Bind(2, recording.name).Bind(3, SiteText(recording.site)).Bind(4, recording.settings);
    query.Bind(5, StoredStatistics(recording.statistics)).Run();
    const std::int64_t queryId = m_db->LastInsertId();
    position = 0;
    for (const std::vector<insights::Cell>& row : recording.rows) {
      result.Reset();
      result.Bind(1, queryId).Bind(2, ++position);
      // A short row's missing cells are absent values; a long row's extra ones have no column.
      for (std::size_t column = 0; column < 9; ++column) {
        BindCell(result, static_cast<int>(column) + 3, column < row.size() ? row[column] : insights::Cell());
      }
      result.Run();
    }
  }
  return snapshotId;
}

base::Outcome ResearchStore::Snapshots(std::optional<sites::Site> site, std::vector<SnapshotInfo>& snapshots) {
  snapshots.clear();
  const base::Outcome outcome = Guarded(m_file, "list the snapshots of", "", [&] {
    sqlite::Statement rows(*m_db, R"sql(
SELECT s.id, s.time, s.site,
  (SELECT count(*) FROM auctions WHERE snapshot = s.id),
  (SELECT count(*) FROM keywords WHERE snapshot = s.id),
  (SELECT count(*) FROM queries WHERE snapshot = s.id)
FROM snapshots s WHERE s.site IN ('usa', 'uk') AND (?1 IS NULL OR s.site = ?1) ORDER BY s.time, s.id)sql");
    if (site) rows.Bind(1, SiteText(*site));
    std::int64_t read = 0;
    while (rows.Step()) {
      Count(read, kMaxSnapshots, "snapshots");
      snapshots.push_back(
          {rows.Integer(0), rows.Text(1), SiteOf(rows.Text(2)), rows.Integer(3), rows.Integer(4), rows.Integer(5)});
    }
  });
  if (!outcome) snapshots.clear();  // all or nothing, as for the trends
  return outcome;
}

base::Outcome ResearchStore::Forget(std::chrono::sys_seconds before, std::int64_t& forgotten) {
  std::int64_t gone = 0;
  const base::Outcome removed = Guarded(m_file, "forget snapshots in", " No snapshot was forgotten.", [&] {
    if (m_db->IsReadOnly()) throw Refusal("is read-only");
    sqlite::Transaction transaction(*m_db);
    sqlite::Statement remove(*m_db, "DELETE FROM snapshots WHERE time < ?1");
    remove.Bind(1, TimeText(before)).Run();
    gone = sqlite3_changes64(m_db->handle());
    transaction.Commit();
  });
  if (!removed) return removed;
  forgotten = gone;
  // The file gives the space back only when compacted; the snapshots are gone either way.
  return Guarded(m_file, "compact", " The " + std::to_string(gone) + " snapshots are forgotten all the same.", [&] {
    m_db->Execute("VACUUM");
    m_db->Execute("PRAGMA wal_checkpoint(TRUNCATE)");
  });
}

base::Outcome ResearchStore::TrendsAuctions(sites::Site site, std::optional<std::int64_t> lastN,
                                            std::optional<std::int64_t> topK, AuctionTrend& trend) {
  if ((lastN && *lastN < 1) || (topK && *topK < 1)) {
    trend = OfSite<AuctionTrend>(site);
    return {false, "The number of snapshots and of rows to show must each be at least 1."};
  }
  return Answer(m_file, "read the auction trends of", OfSite<AuctionTrend>(site), trend, [&](AuctionTrend& result) {
    const std::vector<Picked> picked = PickSnapshots(*m_db, site, Holding::Auctions, lastN.value_or(kMaxSnapshots));
    if (picked.empty()) return;
    result.snapshots = static_cast<std::int64_t>(picked.size());
    result.from = picked.back().time;
    result.to = picked.front().time;
    result.rows = CompareAuctions(ReadAuctions(*m_db, picked.back().id), ReadAuctions(*m_db, picked.front().id));
    if (topK && static_cast<std::int64_t>(result.rows.size()) > *topK) {
      result.rows.resize(static_cast<std::size_t>(*topK));
    }
  });
}

base::Outcome ResearchStore::GrowthHistory(sites::Site site, std::int64_t largest, AuctionHistory& history) {
  return Answer(m_file, "read the auction history of", OfSite<AuctionHistory>(site), history, [&](AuctionHistory& result) {
    std::vector<Picked> picked = PickSnapshots(*m_db, site, Holding::Auctions, kMaxSnapshots);
    if (picked.size() < 2) return;
    std::reverse(picked.begin(), picked.end());
    std::vector<AuctionTrendRow> grown =
        CompareAuctions(ReadAuctions(*m_db, picked.front().id), ReadAuctions(*m_db, picked.back().id));
    std::erase_if(grown, [](const AuctionTrendRow& row) { return row.change <= 0; });
    grown.resize(std::min(grown.size(), static_cast<std::size_t>(std::max<std::int64_t>(largest, 0))));
    if (grown.empty()) return;
    std::unordered_map<std::string, std::size_t> followed;
    for (const AuctionTrendRow& row : grown) {
      followed.emplace(AuctionKey(row.link, row.auction), result.series.size());
      result.series.push_back({row.auction, row.link, {}});
    }
    for (const Picked& snapshot : picked) {
      result.times.push_back(snapshot.time);
      for (AuctionSeries& series : result.series) series.counts.emplace_back();
      std::vector<bool> seen(result.series.size());
      for (const AuctionCount& row : ReadAuctions(*m_db, snapshot.id)) {
        const auto it = followed.find(AuctionKey(row.link, row.name));
        // Of two rows with one key, the first counts, as in the comparison.
        if (it == followed.end() || seen[it->second]) continue;
        seen[it->second] = true;
        result.series[it->second].counts.back() = CountOf(row);
      }
    }
  });
}

base::Outcome ResearchStore::TrendsKeywords(sites::Site site, KeywordTrend& trend) {
  return Answer(m_file, "read the keyword trends of", OfSite<KeywordTrend>(site), trend, [&](KeywordTrend& result) {
    const std::vector<Picked> picked = PickSnapshots(*m_db, site, Holding::Keywords, 2);
    if (!picked.empty()) result.to = picked.front().time;
    if (picked.size() < 2) return;
    result.from = picked.back().time;
    CompareKeywords(ReadKeywords(*m_db, picked.back().id), ReadKeywords(*m_db, picked.front().id), result);
  });
}

base::Outcome ResearchStore::TrendsQuery(std::string_view name, QueryTrend& trend) {
  return Answer(m_file, "read the query trends of", QueryNamed(name), trend, [&](QueryTrend& result) {
    sqlite::Statement points(*m_db, R"sql(
SELECT q.id, s.id, s.time, q.site, q.statistics, (SELECT count(*) FROM query_rows r WHERE r.query = q.id)
FROM queries q JOIN snapshots s ON s.id = q.snapshot
WHERE q.name = ?1 AND q.site IN ('usa', 'uk') ORDER BY s.time, s.id, q.id)sql");
    points.Bind(1, name);
    std::vector<std::int64_t> recordings;
    std::int64_t read = 0;
    while (points.Step()) {
      Count(read, kMaxSnapshots, "recordings of one query");
      recordings.push_back(points.Integer(0));
      QueryPoint& point = result.points.emplace_back(
          QueryPoint{points.Integer(1), points.Text(2), SiteOf(points.Text(3)), points.Integer(5), {}, {}});
      ReadFigures(points.Text(4), point);
    }
    if (recordings.size() < 2) return;
    result.since = result.points[result.points.size() - 2].time;
    std::unordered_set<std::string> seen;
    for (const auto& row : ReadQueryRows(*m_db, recordings[recordings.size() - 2])) seen.insert(LinkOf(row));
    for (auto& row : ReadQueryRows(*m_db, recordings.back())) {
      if (!seen.contains(LinkOf(row))) result.newItems.push_back(std::move(row));
    }
  });
}

}  // namespace gavelscope::store
