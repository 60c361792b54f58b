// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "store/Snapshot.h"

#include <charconv>
#include <cstdio>

#include <nlohmann/json.hpp>

namespace gavelscope::store {

namespace {

using Json = nlohmann::ordered_json;

std::string TextOf(const insights::Cell& cell) {
  const auto* text = std::get_if<std::string>(&cell);
  return text != nullptr ? *text : std::string();
}

std::string_view TestName(query::FilterSpec::Test test) {
  switch (test) {
    case query::FilterSpec::Test::Any:
      return "any";
    case query::FilterSpec::Test::Greater:
      return "greater";
    case query::FilterSpec::Test::Less:
      return "less";
    case query::FilterSpec::Test::Range:
      return "range";
  }
  return "any";
}

std::string_view SortName(query::SortColumn sort) {
  switch (sort) {
    case query::SortColumn::None:
      return "none";
    case query::SortColumn::DateEnded:
      return "date";
    case query::SortColumn::Title:
      return "title";
    case query::SortColumn::Price:
      return "price";
    case query::SortColumn::Bids:
      return "bids";
  }
  return "none";
}

Json FilterJson(const query::FilterSpec& filter) {
  return {{"test", TestName(filter.test)},
          {"greater", filter.greater},
          {"less", filter.less},
          {"from", filter.from},
          {"to", filter.to}};
}

// Digits only, all of them: "2026-03-01" has no room for signs or blanks.
bool ReadNumber(std::string_view text, std::size_t at, std::size_t length, int& value) {
  if (at + length > text.size()) return false;
  for (std::size_t i = at; i < at + length; ++i) {
    if (text[i] < '0' || text[i] > '9') return false;
  }
  return std::from_chars(text.data() + at, text.data() + at + length, value).ec == std::errc();
}

}  // namespace

std::vector<AuctionCount> AuctionCountsOf(std::span<const auctions::AuctionListRow> rows) {
  // Through the list's own table, so that a snapshot holds what the JSON output shows.
  const insights::ListTable table = insights::AuctionsTable(rows, sites::Site::USA);
  std::vector<AuctionCount> counts;
  counts.reserve(table.rows.size());
  for (const std::vector<insights::Cell>& row : table.rows) {
    const auto* count = std::get_if<long>(&row[3]);
    counts.push_back({TextOf(row[1]), TextOf(row[4]), TextOf(row[2]),
                      count != nullptr ? std::optional<long>(*count) : std::nullopt});
  }
  return counts;
}

std::vector<std::string> KeywordsOf(const keywords::CCategoryTree& tree) {
  const insights::ListTable table = insights::KeywordsTable(tree, sites::Site::USA);
  std::vector<std::string> keywords;
  keywords.reserve(table.rows.size());
  for (const std::vector<insights::Cell>& row : table.rows) keywords.push_back(TextOf(row[1]));
  return keywords;
}

SnapshotData SnapshotOf(sites::Site site, std::chrono::sys_seconds time,
                        std::span<const auctions::AuctionListRow> auctions, const keywords::CCategoryTree& tree) {
  return {site, time, AuctionCountsOf(auctions), KeywordsOf(tree), {}};
}

std::string RecordedText(const SnapshotData& snapshot, std::int64_t id) {
  const auto plural = [](std::size_t count, const char* one, const char* many) {
    return std::to_string(count) + " " + (count == 1 ? one : many);
  };
  std::string text = "snapshot " + std::to_string(id) + ": " + std::string(insights::SiteName(snapshot.site)) +
                     ", " + plural(snapshot.auctions.size(), "auction count", "auction counts") + ", " +
                     plural(snapshot.keywords.size(), "keyword", "keywords");
  if (snapshot.queries.empty()) return text;
  std::size_t rows = 0;
  for (const QueryRecording& recording : snapshot.queries) rows += recording.rows.size();
  return text + ", " + plural(snapshot.queries.size(), "query", "queries") + " (" + plural(rows, "row", "rows") + ")";
}

QueryRecording QueryRecordingOf(std::string name, const query::QueryDefinition& settings,
                                std::span<const std::shared_ptr<const hotitems::CHotItemRecord>> results) {
  insights::ListTable table = insights::QueryTable(results, settings.site, name);
  const insights::ListStatistics statistics = insights::Summarise(insights::QueryFigures(results, settings.site));
  return {std::move(name), settings.site, QuerySettingsJson(settings), std::move(table.rows), statistics};
}

std::string QuerySettingsJson(const query::QueryDefinition& settings) {
  Json categories = Json::array();
  for (const std::string& category : settings.categories) categories.push_back(insights::Utf8FromWindows1252(category));
  const Json json = {{"site", insights::SiteName(settings.site)},
                     {"keywords", insights::Utf8FromWindows1252(settings.keywords)},
                     {"page_depth", settings.pageDepth},
                     {"categories", std::move(categories)},
                     {"bids", FilterJson(settings.bids)},
                     {"price", FilterJson(settings.price)},
                     {"days", FilterJson(settings.days)},
                     {"sort", SortName(settings.sort)},
                     {"ascending", settings.ascending}};
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::chrono::sys_seconds NowUtc() {
  return std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
}

std::string TimeText(std::chrono::sys_seconds time) {
  const auto day = std::chrono::floor<std::chrono::days>(time);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss clock(time - day);
  char text[64];
  std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02dZ", static_cast<int>(date.year()),
                static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                static_cast<int>(clock.seconds().count()));
  return text;
}

std::optional<std::chrono::sys_seconds> ParseTime(std::string_view text) {
  int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
  if (!ReadNumber(text, 0, 4, year) || text.substr(4, 1) != "-" || !ReadNumber(text, 5, 2, month) ||
      text.substr(7, 1) != "-" || !ReadNumber(text, 8, 2, day)) {
    return std::nullopt;
  }
  if (text.size() != 10) {
    if (text.size() != 20 || text[10] != 'T' || text[13] != ':' || text[16] != ':' || text[19] != 'Z' ||
        !ReadNumber(text, 11, 2, hour) || !ReadNumber(text, 14, 2, minute) || !ReadNumber(text, 17, 2, second) ||
        hour > 23 || minute > 59 || second > 59) {
      return std::nullopt;
    }
  }
  const std::chrono::year_month_day date{std::chrono::year(year), std::chrono::month(static_cast<unsigned>(month)),
                                         std::chrono::day(static_cast<unsigned>(day))};
  if (!date.ok()) return std::nullopt;
  return std::chrono::sys_days(date) + std::chrono::hours(hour) + std::chrono::minutes(minute) +
         std::chrono::seconds(second);
}

}  // namespace gavelscope::store
