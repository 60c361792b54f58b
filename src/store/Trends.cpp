// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "store/Trends.h"

#include <algorithm>
#include <cmath>
#include <tuple>
#include <unordered_map>

namespace gavelscope::store {

std::string AuctionKey(std::string_view link, std::string_view name) {
  // The prefix keeps a name from ever matching a link.
  return link.empty() ? "name:" + std::string(name) : std::string(link);
}

std::optional<long> CountOf(const AuctionCount& row) {
  // No site shows a count below 0, and leaving such out keeps last - first from overflowing.
  return row.count && *row.count >= 0 ? row.count : std::nullopt;
}

std::string_view StatusName(AuctionStatus status) {
  switch (status) {
    case AuctionStatus::Kept:
      return "kept";
    case AuctionStatus::Appeared:
      return "appeared";
    case AuctionStatus::Vanished:
      return "vanished";
  }
  return "kept";
}

std::vector<AuctionTrendRow> CompareAuctions(std::span<const AuctionCount> first, std::span<const AuctionCount> last) {
  std::unordered_map<std::string, const AuctionCount*> before;
  for (const AuctionCount& row : first) before.try_emplace(AuctionKey(row.link, row.name), &row);
  std::unordered_map<std::string, const AuctionCount*> after;
  std::vector<AuctionTrendRow> rows;
  const auto add = [&rows](const AuctionCount* was, const AuctionCount* is) {
    const auto count = [](const AuctionCount* row) { return row != nullptr ? CountOf(*row) : std::nullopt; };
    const AuctionCount& named = is != nullptr ? *is : *was;
    AuctionTrendRow row;
    row.auction = named.name;
    row.link = named.link;
    row.first = count(was);
    row.last = count(is);
    row.change = row.last.value_or(0) - row.first.value_or(0);
    if (row.first && *row.first != 0) {
      row.percent = std::round(10000.0 * static_cast<double>(row.change) / static_cast<double>(*row.first)) / 100.0;
    }
    row.status = was == nullptr  ? AuctionStatus::Appeared
                 : is == nullptr ? AuctionStatus::Vanished
                                 : AuctionStatus::Kept;
    rows.push_back(std::move(row));
  };
  for (const AuctionCount& row : last) {
    const std::string key = AuctionKey(row.link, row.name);
    if (!after.try_emplace(key, &row).second) continue;
    const auto was = before.find(key);
    add(was != before.end() ? was->second : nullptr, &row);
  }
  for (const auto& [key, was] : before) {
    if (!after.contains(key)) add(was, nullptr);
  }
  std::sort(rows.begin(), rows.end(), [](const AuctionTrendRow& a, const AuctionTrendRow& b) {
    return std::tie(b.change, a.auction, a.link) < std::tie(a.change, b.auction, b.link);
  });
  return rows;
}

void CompareKeywords(std::span<const std::string> earlier, std::span<const std::string> later, KeywordTrend& trend) {
  const auto positions = [](std::span<const std::string> list) {
    std::unordered_map<std::string, long> at;
    for (std::size_t i = 0; i < list.size(); ++i) at.try_emplace(list[i], static_cast<long>(i + 1));
    return at;
  };
  const auto before = positions(earlier);
  const auto after = positions(later);
  for (std::size_t i = 0; i < later.size(); ++i) {
    const auto position = static_cast<long>(i + 1);
    if (after.at(later[i]) != position) continue;  // listed twice: counted where it is first
    const auto was = before.find(later[i]);
    if (was == before.end()) {
      trend.entered.push_back({later[i], position});
    } else if (was->second != position) {
      trend.moves.push_back({later[i], was->second, position, was->second - position});
    }
  }
  for (std::size_t i = 0; i < earlier.size(); ++i) {
    const auto position = static_cast<long>(i + 1);
    if (before.at(earlier[i]) == position && !after.contains(earlier[i])) trend.left.push_back({earlier[i], position});
  }
  std::stable_sort(trend.moves.begin(), trend.moves.end(),
                   [](const KeywordMove& a, const KeywordMove& b) { return a.change > b.change; });
}

}  // namespace gavelscope::store
