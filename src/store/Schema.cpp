// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "store/Schema.h"

#include <vector>

#include <nlohmann/json.hpp>

#include "insights/Formats.h"

namespace gavelscope::store {

namespace {

// Never edit: stores of version 1 exist with exactly this layout. A change is a new migration.
constexpr std::string_view kVersion1 = R"sql(
PRAGMA application_id = 1198936931;
CREATE TABLE snapshots (
  id INTEGER PRIMARY KEY,
  time TEXT NOT NULL,
  site TEXT NOT NULL CHECK (site IN ('usa', 'uk'))
);
CREATE TABLE auctions (
  snapshot INTEGER NOT NULL REFERENCES snapshots (id) ON DELETE CASCADE,
  position INTEGER NOT NULL,
  name TEXT NOT NULL,
  link TEXT NOT NULL,
  count_text TEXT NOT NULL,
  count INTEGER,
  PRIMARY KEY (snapshot, position)
) WITHOUT ROWID;
CREATE TABLE keywords (
  snapshot INTEGER NOT NULL REFERENCES snapshots (id) ON DELETE CASCADE,
  position INTEGER NOT NULL,
  keyword TEXT NOT NULL,
  PRIMARY KEY (snapshot, position)
) WITHOUT ROWID;
CREATE TABLE queries (
  id INTEGER PRIMARY KEY,
  snapshot INTEGER NOT NULL REFERENCES snapshots (id) ON DELETE CASCADE,
  name TEXT NOT NULL,
  site TEXT NOT NULL CHECK (site IN ('usa', 'uk')),
  settings TEXT NOT NULL
);
CREATE INDEX queries_by_snapshot ON queries (snapshot);
CREATE TABLE query_rows (
  query INTEGER NOT NULL REFERENCES queries (id) ON DELETE CASCADE,
  position INTEGER NOT NULL,
  time_left TEXT,
  time_left_seconds INTEGER,
  title TEXT,
  price_text TEXT,
  price REAL,
  currency TEXT,
  bids_text TEXT,
  bids INTEGER,
  link TEXT,
  PRIMARY KEY (query, position)
) WITHOUT ROWID;
PRAGMA user_version = 1;
)sql";

// Version 2: each query's statistics kept beside its rows, so that `trends query` reads one value per
// snapshot instead of every row; and the indexes the trends look up snapshots and queries by.
void MigrateTo2(sqlite::Connection& connection) {
  connection.Execute(R"sql(
ALTER TABLE queries ADD COLUMN statistics TEXT NOT NULL DEFAULT '{}';
CREATE INDEX snapshots_by_site_time ON snapshots (site, time);
CREATE INDEX queries_by_name ON queries (name, snapshot);
)sql");
  // The queries recorded before have their statistics worked out from their rows, as Record does.
  std::vector<std::int64_t> queries;
  sqlite::Statement list(connection, "SELECT id FROM queries");
  while (list.Step()) queries.push_back(list.Integer(0));
  sqlite::Statement rows(connection, "SELECT price, currency, bids FROM query_rows WHERE query = ?1");
  sqlite::Statement update(connection, "UPDATE queries SET statistics = ?2 WHERE id = ?1");
  for (const std::int64_t query : queries) {
    std::vector<insights::ItemFigures> figures;
    rows.Reset();
    rows.Bind(1, query);
    while (rows.Step()) {
      if (static_cast<std::int64_t>(figures.size()) == kMaxListRows) {
        throw Refusal("holds a query of more than " + std::to_string(kMaxListRows) + " rows");
      }
      insights::ItemFigures item{std::nullopt, static_cast<long>(rows.Integer(2))};
      const std::string currency = rows.Text(1);
      if (!rows.IsNull(0) && (currency == "USD" || currency == "GBP")) {
        item.price =
            insights::Money{rows.Real(0), currency == "USD" ? insights::Currency::USD : insights::Currency::GBP};
      }
      figures.push_back(item);
    }
    update.Reset();
    update.Bind(1, query).Bind(2, StoredStatistics(insights::Summarise(figures))).Run();
  }
  connection.Execute("PRAGMA user_version = 2");
}

}  // namespace

std::string_view SchemaVersion1Sql() {
  return kVersion1;
}

void Migrate(sqlite::Connection& connection, int from) {
  // Index v - 1 takes a store from version v to v + 1.
  using Step = void (*)(sqlite::Connection&);
  static constexpr Step kSteps[] = {MigrateTo2};
  static_assert(std::size(kSteps) == kSchemaVersion - 1);
  for (int version = from; version < kSchemaVersion; ++version) kSteps[version - 1](connection);
}

std::string StoredStatistics(const insights::ListStatistics& statistics) {
  // The same object the command line's --stats --format json writes, without its indentation.
  const nlohmann::ordered_json json = nlohmann::ordered_json::parse(insights::StatisticsJson(statistics));
  return json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

}  // namespace gavelscope::store
