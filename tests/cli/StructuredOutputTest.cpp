// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include <gtest/gtest.h>

#include <algorithm>

#include <nlohmann/json.hpp>

#include "RunInProcess.h"
#include "insights/ListTable.h"
#include "support/TempFolder.h"

namespace gavelscope::cli {
namespace {

std::string RunSandbox(std::vector<std::string> args) {
  args.insert(args.begin(), "--sandbox");
  const Ran ran = RunCommand(args);
  EXPECT_EQ(ran.status, kExitOk) << ran.err;
  return ran.out;
}

std::vector<std::string> Split(const std::string& text, const std::string& separator) {
  std::vector<std::string> parts;
  std::size_t at = 0;
  for (std::size_t next; (next = text.find(separator, at)) != std::string::npos; at = next + separator.size()) {
    parts.push_back(text.substr(at, next - at));
  }
  parts.push_back(text.substr(at));
  return parts;
}

// RFC 4180 records: quoted fields may hold commas, quotes (doubled) and line breaks.
std::vector<std::vector<std::string>> ParseCsv(std::string_view csv) {
  std::vector<std::vector<std::string>> records(1, std::vector<std::string>(1));
  bool quoted = false;
  for (std::size_t i = 0; i < csv.size(); ++i) {
    if (quoted && csv.substr(i, 2) == "\"\"") {
      records.back().back() += csv[i++];
    } else if (csv[i] == '"') {
      quoted = !quoted;
    } else if (!quoted && csv[i] == ',') {
      records.back().emplace_back();
    } else if (!quoted && csv.substr(i, 2) == "\r\n") {
      records.emplace_back(1);
      ++i;
    } else {
      records.back().back() += csv[i];
    }
  }
  records.pop_back();  // after the last CR LF
  return records;
}

struct ListCase {
  const char* name;
  std::vector<std::string> args;     // QUERY stands for a query file
  std::string separator;             // between the cells of an export line
  std::vector<std::string> columns;  // the export line's cells, as columns
  bool stats;
};

void PrintTo(const ListCase& c, std::ostream* os) {
  *os << c.name;
}

class StructuredOutput : public ::testing::TestWithParam<ListCase> {};

// CSV and JSON hold the rows of the text export in its order, each of its cells decoded to UTF-8.
TEST_P(StructuredOutput, HoldsTheRowsOfTheTextExport) {
  const ListCase& c = GetParam();
  testing::TempFolder folder;
  std::vector<std::string> args = c.args;
  if (args.back() == "QUERY") {
    args.back() = (folder / "antiques.sbqry").string();
    // One category makes one scan job, so the rows come in the same order on every run.
    RunSandbox({"query-new", "--category", "Antiques", "--page-depth", "2", "--output", args.back()});
  }
  const auto with = [&](std::vector<std::string> more) {
    more.insert(more.begin(), args.begin(), args.end());
    return RunSandbox(more);
  };
  std::vector<std::string> lines = Split(with({}), "\r\n");
  ASSERT_GT(lines.size(), 6u);
  lines.erase(lines.begin(), lines.begin() + 4);  // the export's heading
  lines.pop_back();                               // after the last CR LF
  const auto csv = ParseCsv(with({"--format", "csv"}));
  const auto json = nlohmann::json::parse(with({"--format", "json"}));
  ASSERT_EQ(csv.size(), lines.size() + 1);
  ASSERT_EQ(json["rows"].size(), lines.size());
  EXPECT_EQ(json["list"], c.name);
  for (std::size_t row = 0; row < lines.size(); ++row) {
    const std::vector<std::string> cells = Split(lines[row], c.separator);
    ASSERT_EQ(cells.size(), c.columns.size()) << lines[row];
    for (std::size_t i = 0; i < cells.size(); ++i) {
      SCOPED_TRACE(c.columns[i] + " of row " + std::to_string(row));
      const std::string expected = insights::Utf8FromWindows1252(cells[i]);
      const auto column = std::find(csv[0].begin(), csv[0].end(), c.columns[i]) - csv[0].begin();
      EXPECT_EQ(csv[row + 1].at(static_cast<std::size_t>(column)), expected);
      const nlohmann::json& value = json["rows"][row][c.columns[i]];
      EXPECT_EQ(value.is_string() ? value.get<std::string>() : value.dump(), expected);
    }
  }
  if (!c.stats) return;
  EXPECT_EQ(nlohmann::json::parse(with({"--stats", "--format", "json"}))["count"], lines.size());
}

INSTANTIATE_TEST_SUITE_P(
    Cli, StructuredOutput,
    ::testing::Values(
        ListCase{"keywords", {"keywords", "--site", "usa"}, "\t\t\t\t", {"position", "keyword"}, false},
        ListCase{"auctions", {"auctions", "--site", "uk"}, "\t\t", {"position", "count_text", "auction"}, false},
        ListCase{
            "history", {"history", "--site", "uk"}, "\t\t\t", {"date_ended", "bids_text", "price_text", "title"}, true},
        ListCase{"query", {"query", "QUERY"}, "\t\t\t", {"time_left", "bids_text", "price_text", "title"}, true}),
    [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace gavelscope::cli
