// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "insights/Formats.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>

#include <nlohmann/json.hpp>

namespace gavelscope::insights {

namespace {

using Json = nlohmann::ordered_json;

// The shortest text that reads back as the same number.
std::string NumberText(double number) {
  char buffer[64];
  const auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, number);
  return error == std::errc() ? std::string(buffer, end) : std::string();
}

std::string Fixed(double number, int decimals) {
  char buffer[400];
  std::snprintf(buffer, sizeof buffer, "%.*f", decimals, number);
  return buffer;
}

// Two decimals at most, without trailing zeros: bids are mostly whole.
std::string Short(double number) {
  std::string text = Fixed(number, 2);
  if (text.find('.') != std::string::npos) {
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text.pop_back();
  }
  return text;
}

void AppendCsvField(std::string& csv, std::string_view field) {
  if (field.find_first_of(",\"\r\n") == std::string_view::npos) {
    csv += field;
    return;
  }
  csv += '"';
  for (const char c : field) {
    if (c == '"') csv += '"';
    csv += c;
  }
  csv += '"';
}

void AppendCsvRecord(std::string& csv, std::span<const std::string> fields) {
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (i > 0) csv += ',';
    AppendCsvField(csv, fields[i]);
  }
  csv += "\r\n";
}

std::string CsvText(const Cell& cell) {
  if (const auto* text = std::get_if<std::string>(&cell)) return *text;
  if (const auto* whole = std::get_if<long>(&cell)) return std::to_string(*whole);
  if (const auto* amount = std::get_if<double>(&cell)) return NumberText(*amount);
  return {};
}

Json JsonValue(const Cell& cell) {
  if (const auto* text = std::get_if<std::string>(&cell)) return *text;
  if (const auto* whole = std::get_if<long>(&cell)) return *whole;
  if (const auto* amount = std::get_if<double>(&cell)) return *amount;
  return nullptr;
}

// Text that is not UTF-8 (none of the tables' is) comes out with replacement characters rather
// than an exception.
std::string Dump(const Json& json, int indent = -1) {
  return json.dump(indent, ' ', false, Json::error_handler_t::replace);
}

}  // namespace

std::string CsvOf(const ListTable& table) {
  std::string csv;
  const std::vector<std::string> header(table.columns.begin(), table.columns.end());
  AppendCsvRecord(csv, header);
  std::vector<std::string> fields;
  for (const std::vector<Cell>& row : table.rows) {
    fields.clear();
    for (const Cell& cell : row) fields.push_back(CsvText(cell));
    AppendCsvRecord(csv, fields);
  }
  return csv;
}

std::string JsonOf(const ListTable& table) {
  // Row by row rather than as one document: a history of 250,000 rows would take far more memory
  // as a tree of values than as its text.
  std::string json = "{\"list\": " + Dump(std::string(ListName(table.list))) +
                     ", \"site\": " + Dump(std::string(SiteName(table.site)));
  if (table.query) json += ", \"query\": " + Dump(*table.query);
  json += ", \"rows\": [";
  bool first = true;
  for (const std::vector<Cell>& row : table.rows) {
    Json object = Json::object();
    for (std::size_t i = 0; i < row.size() && i < table.columns.size(); ++i) {
      object[std::string(table.columns[i])] = JsonValue(row[i]);
    }
    json += first ? "\n" : ",\n";
    json += Dump(object);
    first = false;
  }
  json += table.rows.empty() ? "]}\n" : "\n]}\n";
  return json;
}

std::string StatisticsText(const ListStatistics& statistics) {
  std::string text = "rows        " + std::to_string(statistics.count) + "\n";
  text += "with bids   " + std::to_string(statistics.withBids) + "\n";
  text += "bids        median " + Short(statistics.bids.median) + ", mean " + Short(statistics.bids.mean) + ", max " +
          std::to_string(statistics.bids.max) + "\n";
  for (const auto& [currency, summary] : statistics.currencies) {
    text += "\n" + std::string(CurrencyCode(currency)) + " (" + std::to_string(summary.count) + " rows priced)\n";
    text += "  min " + Fixed(summary.min, 2) + "  q1 " + Fixed(summary.q1, 2) + "  median " + Fixed(summary.median, 2) +
            "  q3 " + Fixed(summary.q3, 2) + "  max " + Fixed(summary.max, 2) + "  mean " + Fixed(summary.mean, 2) +
            "\n";
    long most = 1;
    std::size_t width = 0;
    for (const HistogramBucket& bucket : summary.histogram) {
      most = std::max(most, bucket.count);
      width = std::max(width, Fixed(bucket.from, 2).size() + Fixed(bucket.to, 2).size() + 4);
    }
    for (const HistogramBucket& bucket : summary.histogram) {
      std::string range = Fixed(bucket.from, 2) + " to " + Fixed(bucket.to, 2);
      range.resize(width, ' ');
      // Bars of at most 40 marks, and at least one for a bucket that holds anything.
      const auto bar =
          static_cast<std::size_t>(std::ceil(40.0 * static_cast<double>(bucket.count) / static_cast<double>(most)));
      text += "  " + range + "  " + std::string(bar, '#') + (bar > 0 ? " " : "") + std::to_string(bucket.count) + "\n";
    }
  }
  return text;
}

std::string StatisticsCsv(const ListStatistics& statistics) {
  std::string csv;
  const auto record = [&csv](std::string statistic, std::string currency, std::string from, std::string to,
                             std::string value) {
    const std::string fields[] = {std::move(statistic), std::move(currency), std::move(from), std::move(to),
                                  std::move(value)};
    AppendCsvRecord(csv, fields);
  };
  record("statistic", "currency", "from", "to", "value");
  record("count", "", "", "", std::to_string(statistics.count));
  record("with_bids", "", "", "", std::to_string(statistics.withBids));
  record("bids_median", "", "", "", NumberText(statistics.bids.median));
  record("bids_mean", "", "", "", NumberText(statistics.bids.mean));
  record("bids_max", "", "", "", std::to_string(statistics.bids.max));
  for (const auto& [currency, summary] : statistics.currencies) {
    const std::string code(CurrencyCode(currency));
    record("count", code, "", "", std::to_string(summary.count));
    const std::pair<const char*, double> figures[] = {{"min", summary.min},       {"q1", summary.q1},
                                                      {"median", summary.median}, {"q3", summary.q3},
                                                      {"max", summary.max},       {"mean", summary.mean}};
    for (const auto& [name, value] : figures) record(name, code, "", "", NumberText(value));
    for (const HistogramBucket& bucket : summary.histogram) {
      record("bucket", code, NumberText(bucket.from), NumberText(bucket.to), std::to_string(bucket.count));
    }
  }
  return csv;
}

std::string StatisticsJson(const ListStatistics& statistics) {
  Json json = {{"count", statistics.count}, {"with_bids", statistics.withBids}, {"currencies", Json::object()}};
  for (const auto& [currency, summary] : statistics.currencies) {
    Json histogram = Json::array();
    for (const HistogramBucket& bucket : summary.histogram) {
      histogram.push_back({{"from", bucket.from}, {"to", bucket.to}, {"count", bucket.count}});
    }
    json["currencies"][std::string(CurrencyCode(currency))] = {
        {"min", summary.min}, {"q1", summary.q1},     {"median", summary.median},         {"q3", summary.q3},
        {"max", summary.max}, {"mean", summary.mean}, {"histogram", std::move(histogram)}};
  }
  json["bids"] = {{"median", statistics.bids.median}, {"mean", statistics.bids.mean}, {"max", statistics.bids.max}};
  return Dump(json, 2) + "\n";
}

}  // namespace gavelscope::insights
