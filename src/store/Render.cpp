// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "store/Render.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <utility>
#include <variant>

#include <nlohmann/json.hpp>

#include "insights/Formats.h"

namespace gavelscope::store {

namespace {

using Json = nlohmann::ordered_json;
using insights::Cell;

constexpr std::string_view kSnapshotColumns[] = {"id", "time", "site", "auctions", "keywords", "queries"};
constexpr std::string_view kAuctionColumns[] = {"auction", "link", "first", "last", "change", "percent", "status"};
constexpr std::string_view kKeywordColumns[] = {"status", "keyword", "from", "to", "change"};
constexpr std::string_view kQueryColumns[] = {"snapshot",   "time",       "site",     "rows",
                                              "median_usd", "median_gbp", "mean_bids"};

// Text that is not UTF-8 (a store is outside input) comes out with replacement characters.
std::string Dump(const Json& json) {
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

Json JsonOf(const Cell& cell) {
  if (const auto* text = std::get_if<std::string>(&cell)) return *text;
  if (const auto* whole = std::get_if<long>(&cell)) return *whole;
  if (const auto* amount = std::get_if<double>(&cell)) return *amount;
  return nullptr;
}

template <typename T>
Json JsonOf(const std::optional<T>& value) {
  return value ? Json(*value) : Json(nullptr);
}

template <typename T>
Cell CellOf(const std::optional<T>& value) {
  return value ? Cell(*value) : Cell();
}

// A member of an answer: a value, or a list written one element a line.
using Member = std::variant<Json, std::vector<Json>>;

// One object, its lists laid out as the lists' own JSON output is: one element a line.
std::string JsonText(const std::vector<std::pair<std::string_view, Member>>& members) {
  std::string text = "{";
  for (const auto& [key, member] : members) {
    text += (text.size() > 1 ? ", " : "") + Dump(std::string(key)) + ": ";
    if (const auto* value = std::get_if<Json>(&member)) {
      text += Dump(*value);
      continue;
    }
    const auto& elements = std::get<std::vector<Json>>(member);
    text += "[";
    for (std::size_t i = 0; i < elements.size(); ++i) text += (i > 0 ? ",\n" : "\n") + Dump(elements[i]);
    text += elements.empty() ? "]" : "\n]";
  }
  return text + "}\n";
}

std::string Csv(std::span<const std::string_view> columns, std::vector<std::vector<Cell>> rows) {
  insights::ListTable table;
  table.columns = columns;
  table.rows = std::move(rows);
  return insights::CsvOf(table);
}

std::string Number(double value) {
  char buffer[64];
  const auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, value);
  return error == std::errc() ? std::string(buffer, end) : std::string();
}

std::string Signed(long value) {
  std::string text = std::to_string(value);
  if (value > 0) text.insert(text.begin(), '+');
  return text;
}

template <typename T>
std::string Shown(const std::optional<T>& value) {
  if (!value) return "-";
  if constexpr (std::is_floating_point_v<T>) {
    // Prices and means are read, not computed with: two decimals, as the lists show prices.
    char text[64];
    std::snprintf(text, sizeof text, "%.2f", *value);
    return text;
  } else {
    return std::to_string(*value);
  }
}

std::string Site(sites::Site site) {
  return std::string(insights::SiteName(site));
}

// Columns padded to their widest cell, two spaces apart; numbers to the right, the last column as
// it is.
std::string TextTable(const std::vector<std::string>& header, std::string_view rightAligned,
                      const std::vector<std::vector<std::string>>& rows) {
  std::vector<std::size_t> widths(header.size());
  for (std::size_t c = 0; c < header.size(); ++c) {
    widths[c] = header[c].size();
    for (const auto& row : rows) widths[c] = std::max(widths[c], row[c].size());
  }
  std::string text;
  const auto line = [&](const std::vector<std::string>& cells) {
    for (std::size_t c = 0; c < cells.size(); ++c) {
      const std::string padding(widths[c] - cells[c].size(), ' ');
      const bool last = c + 1 == cells.size();
      text += rightAligned[c] == 'r' ? padding + cells[c] : cells[c] + (last ? "" : padding);
      text += last ? "\n" : "  ";
    }
  };
  line(header);
  for (const auto& row : rows) line(row);
  return text;
}

}  // namespace

std::string Render(std::span<const SnapshotInfo> snapshots, Format format) {
  if (format == Format::Json) {
    std::vector<Json> rows;
    for (const SnapshotInfo& s : snapshots) {
      rows.push_back({{"id", s.id},
                      {"time", s.time},
                      {"site", Site(s.site)},
                      {"auctions", s.auctions},
                      {"keywords", s.keywords},
                      {"queries", s.queries}});
    }
    return JsonText({{"snapshots", std::move(rows)}});
  }
  std::vector<std::vector<Cell>> rows;
  std::vector<std::vector<std::string>> lines;
  for (const SnapshotInfo& s : snapshots) {
    rows.push_back({static_cast<long>(s.id), s.time, Site(s.site), static_cast<long>(s.auctions),
                    static_cast<long>(s.keywords), static_cast<long>(s.queries)});
    lines.push_back({std::to_string(s.id), s.time, Site(s.site), std::to_string(s.auctions), std::to_string(s.keywords),
                     std::to_string(s.queries)});
  }
  if (format == Format::Csv) return Csv(kSnapshotColumns, std::move(rows));
  return TextTable({"id", "time", "site", "auctions", "keywords", "queries"}, "rllrrr", lines);
}

std::string Render(const AuctionTrend& trend, Format format) {
  std::vector<std::vector<Cell>> cells;
  std::vector<Json> objects;
  std::vector<std::vector<std::string>> lines;
  for (const AuctionTrendRow& row : trend.rows) {
    const std::string status(StatusName(row.status));
    objects.push_back({{"auction", row.auction},
                       {"link", row.link},
                       {"first", JsonOf(row.first)},
                       {"last", JsonOf(row.last)},
                       {"change", row.change},
                       {"percent", JsonOf(row.percent)},
                       {"status", status}});
    cells.push_back(
        {row.auction, row.link, CellOf(row.first), CellOf(row.last), row.change, CellOf(row.percent), status});
    std::string percent = row.percent ? Number(*row.percent) + "%" : "-";
    if (row.percent && *row.percent > 0) percent.insert(percent.begin(), '+');
    lines.push_back({Signed(row.change), percent, Shown(row.first), Shown(row.last), status, row.auction});
  }
  if (format == Format::Json) {
    return JsonText({{"site", Site(trend.site)},
                     {"snapshots", trend.snapshots},
                     {"from", JsonOf(trend.from)},
                     {"to", JsonOf(trend.to)},
                     {"rows", std::move(objects)}});
  }
  if (format == Format::Csv) return Csv(kAuctionColumns, std::move(cells));
  if (trend.snapshots == 0) return "Site " + Site(trend.site) + ": no snapshots with auction counts\n";
  return "Site " + Site(trend.site) + ": " + std::to_string(trend.snapshots) + " snapshots from " + *trend.from +
         " to " + *trend.to + "\n" +
         TextTable({"change", "percent", "first", "last", "status", "auction"}, "rrrrll", lines);
}

std::string Render(const KeywordTrend& trend, Format format) {
  if (format == Format::Json) {
    std::vector<Json> entered, left, moves;
    for (const KeywordPlace& place : trend.entered)
      entered.push_back({{"keyword", place.keyword}, {"position", place.position}});
    for (const KeywordPlace& place : trend.left)
      left.push_back({{"keyword", place.keyword}, {"position", place.position}});
    for (const KeywordMove& move : trend.moves) {
      moves.push_back({{"keyword", move.keyword}, {"from", move.from}, {"to", move.to}, {"change", move.change}});
    }
    return JsonText({{"site", Site(trend.site)},
                     {"from", JsonOf(trend.from)},
                     {"to", JsonOf(trend.to)},
                     {"entered", std::move(entered)},
                     {"left", std::move(left)},
                     {"moves", std::move(moves)}});
  }
  if (format == Format::Csv) {
    std::vector<std::vector<Cell>> rows;
    for (const KeywordPlace& place : trend.entered) rows.push_back({"entered", place.keyword, {}, place.position, {}});
    for (const KeywordPlace& place : trend.left) rows.push_back({"left", place.keyword, place.position, {}, {}});
    for (const KeywordMove& move : trend.moves)
      rows.push_back({"moved", move.keyword, move.from, move.to, move.change});
    return Csv(kKeywordColumns, std::move(rows));
  }
  if (!trend.from) return "Site " + Site(trend.site) + ": fewer than two snapshots with keywords\n";
  std::vector<std::vector<std::string>> lines;
  for (const KeywordPlace& place : trend.entered)
    lines.push_back({"entered", "-", std::to_string(place.position), "-", place.keyword});
  for (const KeywordPlace& place : trend.left)
    lines.push_back({"left", std::to_string(place.position), "-", "-", place.keyword});
  for (const KeywordMove& move : trend.moves) {
    lines.push_back({"moved", std::to_string(move.from), std::to_string(move.to), Signed(move.change), move.keyword});
  }
  return "Site " + Site(trend.site) + ": " + *trend.from + " to " + *trend.to + ", " +
         std::to_string(trend.entered.size()) + " entered, " + std::to_string(trend.left.size()) + " left, " +
         std::to_string(trend.moves.size()) + " moved\n" +
         TextTable({"status", "from", "to", "change", "keyword"}, "lrrrl", lines);
}

std::string Render(const QueryTrend& trend, Format format) {
  const auto median = [](const QueryPoint& point, insights::Currency currency) {
    const auto found = point.medians.find(currency);
    return found != point.medians.end() ? std::optional<double>(found->second) : std::nullopt;
  };
  if (format == Format::Json) {
    std::vector<Json> points, items;
    for (const QueryPoint& point : trend.points) {
      Json medians = Json::object();
      for (const auto& [currency, value] : point.medians)
        medians[std::string(insights::CurrencyCode(currency))] = value;
      points.push_back({{"snapshot", point.snapshot},
                        {"time", point.time},
                        {"site", Site(point.site)},
                        {"rows", point.rows},
                        {"median", std::move(medians)},
                        {"mean_bids", JsonOf(point.meanBids)}});
    }
    const auto columns = insights::ColumnsOf(insights::ListKind::Query);
    for (const auto& row : trend.newItems) {
      Json object = Json::object();
      for (std::size_t c = 0; c < row.size() && c < columns.size(); ++c)
        object[std::string(columns[c])] = JsonOf(row[c]);
      items.push_back(std::move(object));
    }
    return JsonText({{"query", trend.query},
                     {"snapshots", std::move(points)},
                     {"since", JsonOf(trend.since)},
                     {"new_items", std::move(items)}});
  }
  std::vector<std::vector<Cell>> rows;
  std::vector<std::vector<std::string>> lines;
  for (const QueryPoint& point : trend.points) {
    const auto usd = median(point, insights::Currency::USD);
    const auto gbp = median(point, insights::Currency::GBP);
    rows.push_back({static_cast<long>(point.snapshot), point.time, Site(point.site), static_cast<long>(point.rows),
                    CellOf(usd), CellOf(gbp), CellOf(point.meanBids)});
    lines.push_back(
        {point.time, Site(point.site), std::to_string(point.rows), Shown(usd), Shown(gbp), Shown(point.meanBids)});
  }
  if (format == Format::Csv) return Csv(kQueryColumns, std::move(rows));
  std::string text = "Query " + trend.query + ": " + std::to_string(trend.points.size()) + " recordings\n";
  if (trend.points.empty()) return text;
  text += TextTable({"time", "site", "rows", "median USD", "median GBP", "mean bids"}, "llrrrr", lines);
  if (!trend.since) return text;
  text += "New since " + *trend.since + ": " + std::to_string(trend.newItems.size()) + " items\n";
  std::vector<std::vector<std::string>> items;
  const auto textOf = [](const Cell& cell) {
    const auto* value = std::get_if<std::string>(&cell);
    return value != nullptr ? *value : std::string();
  };
  for (const auto& row : trend.newItems) {
    if (row.size() == 9) items.push_back({textOf(row[3]), textOf(row[6]), textOf(row[8]), textOf(row[2])});
  }
  if (!items.empty()) text += TextTable({"price", "bids", "link", "title"}, "rrll", items);
  return text;
}

}  // namespace gavelscope::store
