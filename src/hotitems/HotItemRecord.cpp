// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "hotitems/HotItemRecord.h"

#include <cstdio>
#include <cstdlib>

#include "base/TextHelpers.h"

namespace gavelscope::hotitems {

namespace {

constexpr std::string_view kSeparator = "~|~";

}  // namespace

void CHotItemRecord::SetEnding(std::string_view ending) {
  m_ending = std::string(base::TrimWhiteSpace(ending));
}

CHotItemRecord ParseHistoryLine(std::string_view line) {
  std::string fields[5];
  int start = 0;
  for (std::string& field : fields) {
    const int end = base::Find(line, kSeparator, start);
    field = base::ExtractBetween(line, start, end);
    // A missing separator makes every later search start from -1, which finds nothing.
    start = end == -1 ? -1 : end + static_cast<int>(kSeparator.size());
  }
  CHotItemRecord record;
  record.SetItemLink(std::move(fields[0]));
  record.SetEnding(fields[1]);
  record.SetTitle(std::move(fields[2]));
  record.SetPrice(std::move(fields[3]));
  record.SetBids(std::move(fields[4]));
  return record;
}

std::string FormatHistoryLine(const CHotItemRecord& record, const CalendarDate& date) {
  char day[32];
  std::snprintf(day, sizeof day, "%02d/%02d/%4d", date.day, date.month, date.year);
  const std::string separator(kSeparator);
  return record.GetItemLink() + separator + day + separator + record.GetTitle() + separator + record.GetPrice() +
         separator + record.GetBids() + separator + "\r\n";
}

bool IsSiteUK(const CHotItemRecord& record) {
  return record.GetPrice().find("GBP") != std::string::npos;
}

bool IsHistoryWorthy(const CHotItemRecord& record) {
  return std::atoi(record.GetBids().c_str()) > 30;
}

}  // namespace gavelscope::hotitems
