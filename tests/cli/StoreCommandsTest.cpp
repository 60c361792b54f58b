// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include <gtest/gtest.h>

#include <map>
#include <optional>

#include <nlohmann/json.hpp>

#include "RunInProcess.h"
#include "support/TempFolder.h"

namespace gavelscope::cli {
namespace {

using Json = nlohmann::json;

// `day` moves the stand-in sites on, as a later day's recording would see them.
Ran RunStore(const std::vector<std::string>& args, int day = 0) {
  return RunCommand(args, {"--day", std::to_string(day)});
}

Json RunJson(const std::vector<std::string>& args, int day = 0) {
  const Ran ran = RunStore(args, day);
  EXPECT_EQ(ran.status, kExitOk) << ran.err;
  return Json::parse(ran.out, nullptr, /*allow_exceptions=*/false);
}

std::optional<long> CountOf(const Json& value) {
  return value.is_null() ? std::nullopt : std::optional<long>(value.get<long>());
}

// A sub-category's count by its link (its name without one), the first row of a key counting.
std::map<std::string, std::optional<long>> Counts(const Json& auctions) {
  std::map<std::string, std::optional<long>> counts;
  for (const Json& row : auctions["rows"]) {
    const std::string link = row["link"].is_string() ? row["link"].get<std::string>() : "";
    counts.emplace(link.empty() ? row["name"].get<std::string>() : link, CountOf(row["count"]));
  }
  return counts;
}

// Two days of the UK stand-in site recorded, with a query each day: the trends are what the two days'
// own lists say changed, and forgetting empties the store.
TEST(StoreCommands, RecordsTwoDaysAndTellsWhatChanged) {
  testing::TempFolder folder;
  const std::string db = (folder / "research.sqlite").string();
  const std::string query = (folder / "art.sbqry").string();
  ASSERT_EQ(RunStore({"query-new", "--site", "uk", "--category", "Art", "--output", query}).status, kExitOk);

  std::vector<Json> days;
  for (const int day : {0, 1}) {
    days.push_back(RunJson({"--sandbox", "auctions", "--site", "uk", "--format", "json"}, day));
    const Ran recorded = RunStore({"--sandbox", "record", "--site", "uk", "--query", query, "--db", db}, day);
    ASSERT_EQ(recorded.status, kExitOk) << recorded.err;
    const std::string expected = "Recorded snapshot " + std::to_string(day + 1) + ": uk, " +
                                 std::to_string(days.back()["rows"].size()) + " auction counts, ";
    EXPECT_TRUE(recorded.out.starts_with(expected)) << recorded.out;
    EXPECT_NE(recorded.out.find(", 1 query ("), std::string::npos) << recorded.out;
  }

  const Json trend = RunJson({"trends", "auctions", "--site", "uk", "--format", "json", "--db", db});
  EXPECT_EQ(trend["snapshots"], 2);
  const auto first = Counts(days[0]);
  const auto last = Counts(days[1]);
  std::map<std::string, std::optional<long>> both = first;
  both.insert(last.begin(), last.end());
  ASSERT_EQ(trend["rows"].size(), both.size());
  int changed = 0;
  for (const Json& row : trend["rows"]) {
    const std::string link = row["link"].get<std::string>();
    const std::string key = link.empty() ? row["auction"].get<std::string>() : link;
    const std::optional<long> before = first.contains(key) ? first.at(key) : std::nullopt;
    const std::optional<long> after = last.contains(key) ? last.at(key) : std::nullopt;
    EXPECT_EQ(CountOf(row["first"]), before) << key;
    EXPECT_EQ(CountOf(row["last"]), after) << key;
    EXPECT_EQ(row["change"].get<long>(), after.value_or(0) - before.value_or(0)) << key;
    changed += before != after;
  }
  EXPECT_GT(changed, 0) << "the second day changed nothing, so the comparison shows nothing";

  const Json top = RunJson({"trends", "auctions", "--site", "uk", "--top", "3", "--format", "json", "--db", db});
  ASSERT_EQ(top["rows"].size(), 3U);
  EXPECT_EQ(top["rows"][0], trend["rows"][0]);

  const Json listed = RunJson({"snapshots", "--format", "json", "--db", db});
  ASSERT_EQ(listed["snapshots"].size(), 2U);
  EXPECT_EQ(listed["snapshots"][1]["auctions"], days[1]["rows"].size());
  EXPECT_EQ(RunJson({"snapshots", "--site", "usa", "--format", "json", "--db", db})["snapshots"].size(), 0U);

  const Json recordings = RunJson({"trends", "query", "art.sbqry", "--format", "json", "--db", db});
  ASSERT_EQ(recordings["snapshots"].size(), 2U);
  EXPECT_EQ(recordings["snapshots"][1]["site"], "uk");
  EXPECT_GT(recordings["snapshots"][1]["rows"].get<long>(), 0);
  EXPECT_EQ(recordings["since"], listed["snapshots"][0]["time"]);

  const Json keywords = RunJson({"trends", "keywords", "--site", "uk", "--format", "json", "--db", db});
  EXPECT_EQ(keywords["from"], listed["snapshots"][0]["time"]);
  EXPECT_EQ(keywords["to"], listed["snapshots"][1]["time"]);

  const Ran forgot = RunStore({"forget", "--before", "9999-12-31", "--db", db});
  EXPECT_EQ(forgot.status, kExitOk) << forgot.err;
  EXPECT_EQ(forgot.out, "Forgot 2 snapshots taken before 9999-12-31T00:00:00Z.\n");
  EXPECT_EQ(RunJson({"snapshots", "--format", "json", "--db", db})["snapshots"].size(), 0U);
}

struct FailureCase {
  const char* name;
  std::vector<std::string> args;  // --db names a store that is not there
  int status;
  std::string what;  // a part of what standard error says
};

void PrintTo(const FailureCase& c, std::ostream* os) {
  *os << c.name;
}

class StoreFailures : public ::testing::TestWithParam<FailureCase> {};

// Told at once, with nothing printed, nothing started and no store made.
TEST_P(StoreFailures, SayWhatIsWrong) {
  const FailureCase& c = GetParam();
  testing::TempFolder folder;
  std::vector<std::string> args = c.args;
  args.insert(args.end(), {"--db", (folder / "none.sqlite").string()});
  const Ran ran = RunStore(args);
  EXPECT_EQ(ran.status, c.status);
  EXPECT_EQ(ran.out, "");
  EXPECT_NE(ran.err.find(c.what), std::string::npos) << ran.err;
  EXPECT_FALSE(std::filesystem::exists(folder / "none.sqlite"));
}

INSTANTIATE_TEST_SUITE_P(
    Cli, StoreFailures,
    ::testing::Values(
        FailureCase{"NoStore", {"snapshots"}, kExitFailure, "There is no research store at "},
        FailureCase{"NoStoreToForget", {"forget", "--before", "2026-01-01"}, kExitFailure, "There is no research store"},
        FailureCase{"NoStoreForTrends", {"trends", "keywords", "--site", "uk"}, kExitFailure, "no research store"},
        FailureCase{"NoQueryFile", {"record", "--site", "uk", "--query", "/nonexistent/q.sbqry"}, kExitFailure,
                    "Cannot Load File"},
        FailureCase{"LastZero", {"trends", "auctions", "--site", "uk", "--last", "0"}, kExitUsage,
                    "--last: \"0\" is not a whole number of at least 1"},
        FailureCase{"TopNotANumber", {"trends", "auctions", "--site", "uk", "--top", "3x"}, kExitUsage,
                    "--top: \"3x\" is not a whole number of at least 1"},
        FailureCase{"NoSuchDay", {"forget", "--before", "2026-02-30"}, kExitUsage,
                    "--before: \"2026-02-30\" is not a day YYYY-MM-DD"},
        FailureCase{"NoBefore", {"forget"}, kExitUsage, "--before is required"},
        FailureCase{"NoKind", {"trends", "--site", "uk"}, kExitUsage, "trends needs a kind"},
        FailureCase{"UnknownKind", {"trends", "prices", "--site", "uk"}, kExitUsage, "unexpected argument: prices"},
        FailureCase{"TrendsWithoutSite", {"trends", "auctions"}, kExitUsage, "--site is required"},
        FailureCase{"QueryWithoutName", {"trends", "query"}, kExitUsage, "trends query needs a query file's name"},
        FailureCase{"LastOfKeywords", {"trends", "keywords", "--site", "uk", "--last", "2"}, kExitUsage,
                    "--last is for trends auctions only"},
        FailureCase{"RecordSiteUnknown", {"record", "--site", "fr"}, kExitUsage, "\"fr\" is not usa|uk|both"}),
    [](const ::testing::TestParamInfo<FailureCase>& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace gavelscope::cli
