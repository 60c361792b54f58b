// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
//
// The research store on data made by hand: trends worked out here, files that are read-only, locked,
// damaged or old, and a recording process killed half-way.
#include "store/ResearchStore.h"

#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <nlohmann/json.hpp>

#include "store/Render.h"
#include "store/Schema.h"
#include "support/TempFolder.h"

namespace gavelscope::store {
namespace {

using namespace std::chrono_literals;
using sites::Site;

std::chrono::sys_seconds Day(int day) {
  return std::chrono::sys_days(std::chrono::year(2026) / 3 / 1) + std::chrono::days(day) + 6h;
}

AuctionCount Count(std::string name, std::string link, std::optional<long> count) {
  return {std::move(name), std::move(link), count ? std::to_string(*count) : "", count};
}

// A query result row in the list's columns: time left, seconds, title, price text, price, currency,
// bids text, bids, link.
std::vector<insights::Cell> Item(double pounds, long bids, std::string link) {
  return {"1d 02h",       93600L, "Item " + link,       "GBP " + std::to_string(pounds),
          pounds,         "GBP",  std::to_string(bids), bids,
          std::move(link)};
}

QueryRecording Query(std::string name, std::vector<std::vector<insights::Cell>> rows) {
  std::vector<insights::ItemFigures> figures;
  for (const auto& row : rows) {
    figures.push_back({insights::Money{std::get<double>(row[4]), insights::Currency::GBP}, std::get<long>(row[7])});
  }
  return {std::move(name), Site::UK, R"({"site":"uk"})", std::move(rows), insights::Summarise(figures)};
}

SnapshotData Snap(Site site, int day, std::vector<AuctionCount> auctions, std::vector<std::string> keywords = {},
                  std::vector<QueryRecording> queries = {}) {
  return {site, Day(day), std::move(auctions), std::move(keywords), std::move(queries)};
}

class StoreTest : public ::testing::Test {
 protected:
  std::unique_ptr<ResearchStore> Open(std::chrono::milliseconds busy = 5s) {
    base::Outcome opened;
    auto store = ResearchStore::Open(m_file, {.create = true, .busyTimeout = busy}, opened);
    EXPECT_TRUE(opened) << opened.error;
    return store;
  }
  void Record(ResearchStore& store, SnapshotData snapshot) {
    std::int64_t id = 0;
    const base::Outcome recorded = store.Record(snapshot, id);
    ASSERT_TRUE(recorded) << recorded.error;
  }
  // Everything a reader sees, as one text.
  static std::string Contents(ResearchStore& store) {
    std::vector<SnapshotInfo> snapshots;
    AuctionTrend auctions;
    QueryTrend query;
    EXPECT_TRUE(store.Snapshots(std::nullopt, snapshots));
    EXPECT_TRUE(store.TrendsAuctions(Site::UK, std::nullopt, std::nullopt, auctions));
    EXPECT_TRUE(store.TrendsQuery("toys.sbqry", query));
    return Render(snapshots, Format::Json) + Render(auctions, Format::Json) + Render(query, Format::Json);
  }

  testing::TempFolder m_folder;
  std::filesystem::path m_file = m_folder / "data" / "research.sqlite";
};

TEST_F(StoreTest, AuctionTrendsCompareTheFirstAndLastSnapshotBySubCategoryLink) {
  auto store = Open();
  Record(*store,
         Snap(Site::UK, 0,
              {Count("VHS", "l/vhs", 100), Count("DVD", "l/dvd", 50), Count("Zero", "l/zero", 0),
               Count("Gone", "l/gone", 30), Count("No link", "", 10), Count("Unread", "l/unread", std::nullopt)}));
  Record(*store, Snap(Site::UK, 1, {Count("VHS", "l/vhs", 1000)}));
  Record(*store, Snap(Site::USA, 2, {Count("VHS", "l/vhs", 7)}));
  Record(*store, Snap(Site::UK, 2,
                      {Count("VHS", "l/vhs", 150), Count("DVDs", "l/dvd", 40), Count("Zero", "l/zero", 5),
                       Count("New", "l/new", 70), Count("No link", "", 12), Count("Unread", "l/unread", 9)}));

  AuctionTrend trend;
  ASSERT_TRUE(store->TrendsAuctions(Site::UK, std::nullopt, std::nullopt, trend));
  // Largest change first. DVDs was renamed: its link says it is the same sub-category.
  EXPECT_EQ(nlohmann::json::parse(Render(trend, Format::Json)), nlohmann::json::parse(R"({"site": "uk",
      "snapshots": 3, "from": "2026-03-01T06:00:00Z", "to": "2026-03-03T06:00:00Z", "rows": [
      {"auction": "New", "link": "l/new", "first": null, "last": 70, "change": 70, "percent": null, "status": "appeared"},
      {"auction": "VHS", "link": "l/vhs", "first": 100, "last": 150, "change": 50, "percent": 50.0, "status": "kept"},
      {"auction": "Unread", "link": "l/unread", "first": null, "last": 9, "change": 9, "percent": null, "status": "kept"},
      {"auction": "Zero", "link": "l/zero", "first": 0, "last": 5, "change": 5, "percent": null, "status": "kept"},
      {"auction": "No link", "link": "", "first": 10, "last": 12, "change": 2, "percent": 20.0, "status": "kept"},
      {"auction": "DVDs", "link": "l/dvd", "first": 50, "last": 40, "change": -10, "percent": -20.0, "status": "kept"},
      {"auction": "Gone", "link": "l/gone", "first": 30, "last": null, "change": -30, "percent": -100.0,
       "status": "vanished"}]})"));

  // The last two UK snapshots only, and the top two rows only.
  ASSERT_TRUE(store->TrendsAuctions(Site::UK, 2, 2, trend));
  EXPECT_EQ(trend.from, "2026-03-02T06:00:00Z");
  ASSERT_EQ(trend.rows.size(), 2U);
  EXPECT_EQ(trend.rows[0].auction, "New");
  EXPECT_EQ(trend.rows[1].auction, "DVDs");  // appeared since the middle one, where VHS was 1000
  ASSERT_TRUE(store->TrendsAuctions(Site::USA, std::nullopt, std::nullopt, trend));
  EXPECT_EQ(trend.snapshots, 1);
  EXPECT_EQ(trend.rows[0].change, 0);

  // The chart's lines: the two that grew most, through every UK snapshot; the USA's one has no line.
  AuctionHistory history;
  ASSERT_TRUE(store->GrowthHistory(Site::UK, 2, history));
  EXPECT_EQ(history.times,
            (std::vector<std::string>{"2026-03-01T06:00:00Z", "2026-03-02T06:00:00Z", "2026-03-03T06:00:00Z"}));
  ASSERT_EQ(history.series.size(), 2U);
  EXPECT_EQ(history.series[0].auction, "New");
  EXPECT_EQ(history.series[0].counts, (std::vector<std::optional<long>>{std::nullopt, std::nullopt, 70}));
  EXPECT_EQ(history.series[1].counts, (std::vector<std::optional<long>>{100, 1000, 150}));
  ASSERT_TRUE(store->GrowthHistory(Site::USA, 2, history));
  EXPECT_TRUE(history.times.empty() && history.series.empty());
}

TEST_F(StoreTest, KeywordTrendsListWhatEnteredLeftAndMovedBetweenTheLastTwoSnapshots) {
  auto store = Open();
  Record(*store, Snap(Site::USA, 0, {}, {"zippo", "lego"}));
  Record(*store, Snap(Site::USA, 1, {}, {"lego", "nokia", "café table", "pyrex"}));
  Record(*store, Snap(Site::USA, 2, {}, {"café table", "lego", "ipod", "nokia", "lego"}));
  Record(*store, Snap(Site::USA, 3, {Count("VHS", "l/vhs", 1)}, {}));  // no keywords: not compared

  KeywordTrend trend;
  ASSERT_TRUE(store->TrendsKeywords(Site::USA, trend));
  EXPECT_EQ(trend.from, "2026-03-02T06:00:00Z");
  const nlohmann::json json = nlohmann::json::parse(Render(trend, Format::Json));
  EXPECT_EQ(json, nlohmann::json::parse(R"({"site": "usa", "from": "2026-03-02T06:00:00Z",
      "to": "2026-03-03T06:00:00Z", "entered": [{"keyword": "ipod", "position": 3}],
      "left": [{"keyword": "pyrex", "position": 4}],
      "moves": [{"keyword": "café table", "from": 3, "to": 1, "change": 2},
                {"keyword": "lego", "from": 1, "to": 2, "change": -1},
                {"keyword": "nokia", "from": 2, "to": 4, "change": -2}]})"));
}

TEST_F(StoreTest, QueryTrendsGiveEachRecordingsFiguresAndTheItemsNewSinceTheOneBefore) {
  auto store = Open();
  Record(*store, Snap(Site::UK, 0, {}, {}, {Query("toys.sbqry", {Item(5, 1, "i/1"), Item(7, 3, "i/2")})}));
  Record(*store, Snap(Site::UK, 1, {}, {}, {Query("other.sbqry", {Item(1, 1, "i/9")})}));
  Record(*store, Snap(Site::UK, 2, {}, {},
                      {Query("toys.sbqry", {Item(10, 1, "i/3"), Item(20, 2, "i/2"), Item(40, 6, "i/4")})}));

  QueryTrend trend;
  ASSERT_TRUE(store->TrendsQuery("toys.sbqry", trend));
  ASSERT_EQ(trend.points.size(), 2U);
  EXPECT_EQ(trend.points[0].rows, 2);
  EXPECT_EQ(trend.points[0].medians.at(insights::Currency::GBP), 6.0);
  EXPECT_EQ(trend.points[1].medians.at(insights::Currency::GBP), 20.0);
  EXPECT_EQ(trend.points[1].meanBids, 3.0);
  EXPECT_EQ(trend.since, "2026-03-01T06:00:00Z");
  const nlohmann::json json = nlohmann::json::parse(Render(trend, Format::Json));
  EXPECT_EQ(json["snapshots"][1]["median"], nlohmann::json::parse(R"({"GBP": 20.0})"));
  ASSERT_EQ(json["new_items"].size(), 2U);
  EXPECT_EQ(json["new_items"][0]["link"], "i/3");
  EXPECT_EQ(json["new_items"][1]["link"], "i/4");
  EXPECT_EQ(json["new_items"][1]["bids"], 6);
}

TEST_F(StoreTest, ForgetRemovesOlderSnapshotsWithEverythingInThem) {
  auto store = Open();
  for (int day = 0; day < 3; ++day) {
    Record(*store,
           Snap(Site::UK, day, {Count("VHS", "l/vhs", day)}, {"lego"}, {Query("toys.sbqry", {Item(1, 1, "i")})}));
  }
  std::int64_t forgotten = 0;
  ASSERT_TRUE(store->Forget(Day(2) - 1s, forgotten));
  EXPECT_EQ(forgotten, 2);
  std::vector<SnapshotInfo> left;
  ASSERT_TRUE(store->Snapshots(Site::UK, left));
  EXPECT_EQ(Render(left, Format::Json),
            "{\"snapshots\": [\n{\"id\":3,\"time\":\"2026-03-03T06:00:00Z\",\"site\":\"uk\",\"auctions\":1,"
            "\"keywords\":1,\"queries\":1}\n]}\n");
  // Nothing of the forgotten ones stays behind.
  sqlite3* db = nullptr;
  ASSERT_EQ(sqlite3_open(m_file.c_str(), &db), SQLITE_OK);
  sqlite3_stmt* rows = nullptr;
  sqlite3_prepare_v2(db, "SELECT (SELECT count(*) FROM auctions) + (SELECT count(*) FROM query_rows)", -1, &rows,
                     nullptr);
  ASSERT_EQ(sqlite3_step(rows), SQLITE_ROW);
  EXPECT_EQ(sqlite3_column_int(rows, 0), 2);
  sqlite3_finalize(rows);
  sqlite3_close(db);
}

// What an earlier program left: a store of the first layout, written straight with SQLite.
TEST_F(StoreTest, AVersionOneStoreOpensWithItsSnapshotsAndGainsQueryStatistics) {
  std::filesystem::create_directories(m_file.parent_path());
  sqlite3* db = nullptr;
  ASSERT_EQ(sqlite3_open(m_file.c_str(), &db), SQLITE_OK);
  const std::string setUp = std::string(SchemaVersion1Sql()) + R"sql(
INSERT INTO snapshots VALUES (1, '2025-12-01T06:00:00Z', 'uk');
INSERT INTO auctions VALUES (1, 1, 'VHS', 'l/vhs', '1,000', 1000);
INSERT INTO keywords VALUES (1, 1, 'lego');
INSERT INTO queries VALUES (1, 1, 'toys.sbqry', 'uk', '{}');
INSERT INTO query_rows VALUES (1, 1, '1d', 86400, 'Jug', 'GBP 4.00', 4.0, 'GBP', '2', 2, 'i/1'),
                              (1, 2, '2d', 172800, 'Mug', 'GBP 8.00', 8.0, 'GBP', '4', 4, 'i/2');)sql";
  ASSERT_EQ(sqlite3_exec(db, setUp.c_str(), nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(db);
  sqlite3_close(db);

  auto store = Open();
  Record(*store,
         Snap(Site::UK, 0, {Count("VHS", "l/vhs", 1500)}, {"lego"}, {Query("toys.sbqry", {Item(9, 1, "i/1")})}));
  AuctionTrend auctions;
  ASSERT_TRUE(store->TrendsAuctions(Site::UK, std::nullopt, std::nullopt, auctions));
  EXPECT_EQ(auctions.from, "2025-12-01T06:00:00Z");
  EXPECT_EQ(auctions.rows[0].change, 500);
  QueryTrend query;
  ASSERT_TRUE(store->TrendsQuery("toys.sbqry", query));
  ASSERT_EQ(query.points.size(), 2U);
  EXPECT_EQ(query.points[0].medians.at(insights::Currency::GBP), 6.0);
  EXPECT_EQ(query.points[0].meanBids, 3.0);
}

// A store that cannot be written, or read, says so and stays byte for byte as it was.
TEST_F(StoreTest, AStoreThatCannotBeUsedGivesItsReasonAndKeepsItsBytes) {
  struct Case {
    const char* name;
    std::function<void(const std::filesystem::path&)> spoil;
    const char* message;  // of the open when it fails, else of the record
  };
  const Case cases[] = {
      {"read-only", [](const auto& file) { chmod(file.c_str(), 0444); }, "is read-only. Nothing was recorded"},
      {"locked", nullptr, "is in use by another program (database is locked); try again in a moment."},
      {"damaged", [](const auto& file) { testing::WriteFileBytes(file, std::string(4096, '\x5A')); },
       "is damaged or is not a database (file is not a database); it was left as it is."},
      {"another program's",
       [](const auto& file) {
         std::filesystem::remove(file);
         sqlite3* db = nullptr;
         sqlite3_open(file.c_str(), &db);
         sqlite3_exec(db, "CREATE TABLE notes (text TEXT)", nullptr, nullptr, nullptr);
         sqlite3_close(db);
       },
       "is a database of another program"},
      {"newer",
       [](const auto& file) {
         sqlite3* db = nullptr;
         sqlite3_open(file.c_str(), &db);
         sqlite3_exec(db, "PRAGMA user_version = 9", nullptr, nullptr, nullptr);
         sqlite3_close(db);
       },
       "was written by a newer Gavelscope (layout version 9; this one reads up to 2)"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    std::filesystem::remove_all(m_file.parent_path());
    Record(*Open(), Snap(Site::UK, 0, {Count("VHS", "l/vhs", 1)}));
    if (c.spoil) c.spoil(m_file);
    sqlite3* locker = nullptr;
    if (c.spoil == nullptr) {
      sqlite3_open(m_file.c_str(), &locker);
      ASSERT_EQ(sqlite3_exec(locker, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr), SQLITE_OK);
    }
    const std::string before = testing::ReadFileBytes(m_file);

    base::Outcome outcome;
    auto store = ResearchStore::Open(m_file, {.create = true, .busyTimeout = 20ms}, outcome);
    std::int64_t id = 0;
    if (store) outcome = store->Record(Snap(Site::UK, 1, {Count("VHS", "l/vhs", 2)}), id);
    EXPECT_FALSE(outcome);
    EXPECT_NE(outcome.error.find(m_file.string() + ": the file " + c.message), std::string::npos) << outcome.error;
    std::vector<SnapshotInfo> readable;  // a store that opened still answers
    if (store) {
      EXPECT_TRUE(store->Snapshots(std::nullopt, readable) && readable.size() == 1U);
    }
    store.reset();
    sqlite3_close(locker);
    EXPECT_EQ(testing::ReadFileBytes(m_file), before);
    chmod(m_file.c_str(), 0644);
  }
}

// The parent waits for the child to be inside its transaction, with every row written, and kills it.
TEST_F(StoreTest, AProcessKilledWhileRecordingLeavesTheStoreAsItWas) {
  {
    auto store = Open();
    Record(*store, Snap(Site::UK, 0, {Count("VHS", "l/vhs", 1)}, {"lego"}, {Query("toys.sbqry", {Item(1, 1, "i/1")})}));
  }
  const std::string before = [&] { return Contents(*Open()); }();

  int inside[2], never[2];
  ASSERT_EQ(pipe(inside), 0);
  ASSERT_EQ(pipe(never), 0);
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    base::Outcome opened;
    auto store = ResearchStore::Open(m_file, {}, opened);
    // Enough rows that SQLite spills pages into the log before the commit.
    std::vector<std::vector<insights::Cell>> rows;
    for (int i = 0; i < 20000; ++i) rows.push_back(Item(i, i % 7, "i/" + std::to_string(i)));
    std::vector<AuctionCount> counts(500, Count("VHS", "l/vhs", 99));
    std::int64_t id = 0;
    RecordOptions options{.beforeCommit = [&] {
      char byte = 'x';
      (void)!write(inside[1], &byte, 1);
      (void)!read(never[0], &byte, 1);
    }};
    if (store) store->Record(Snap(Site::UK, 1, counts, {"nokia"}, {Query("toys.sbqry", std::move(rows))}), id, options);
    _exit(1);
  }
  close(inside[1]);  // so that a child that dies early ends the wait below
  char byte = 0;
  ASSERT_EQ(read(inside[0], &byte, 1), 1) << "the child never got inside its transaction";
  kill(child, SIGKILL);
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
  for (const int fd : {inside[0], never[0], never[1]}) close(fd);

  EXPECT_EQ(Contents(*Open()), before);
}

TEST(DefaultStorePath, FollowsAnAbsoluteDataHomeAndElseTheHomeFolder) {
  const std::pair<const char*, const char*> cases[] = {
      {"/data", "/data/gavelscope/research.sqlite"},
      {"relative", "/home/ann/.local/share/gavelscope/research.sqlite"},
      {nullptr, "/home/ann/.local/share/gavelscope/research.sqlite"},
  };
  const char* home = std::getenv("HOME");
  const char* data = std::getenv("XDG_DATA_HOME");
  const std::string saved[] = {home ? home : "", data ? data : ""};
  setenv("HOME", "/home/ann", 1);
  for (const auto& [dataHome, path] : cases) {
    dataHome != nullptr ? setenv("XDG_DATA_HOME", dataHome, 1) : unsetenv("XDG_DATA_HOME");
    EXPECT_EQ(DefaultStorePath(), path) << (dataHome != nullptr ? dataHome : "unset");
  }
  home != nullptr ? setenv("HOME", saved[0].c_str(), 1) : unsetenv("HOME");
  data != nullptr ? setenv("XDG_DATA_HOME", saved[1].c_str(), 1) : unsetenv("XDG_DATA_HOME");
}

// A measurement rather than a test: run it with --gtest_also_run_disabled_tests on a Release build.
}  // namespace
}  // namespace gavelscope::store
