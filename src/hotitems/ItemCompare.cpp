// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "hotitems/ItemCompare.h"

#include <langinfo.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "base/TextHelpers.h"

namespace gavelscope::hotitems {

namespace {

// Days from 1970-01-01 to a proleptic Gregorian date.
long DaysFromCivil(long y, long m, long d) {
  y -= m <= 2 ? 1 : 0;
  const long era = (y >= 0 ? y : y - 399) / 400;
  const long yoe = y - era * 400;
  const long doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const long doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + doe - 719468;
}

bool IsLeap(long y) {
  return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
}

std::optional<long> ValidDate(long year, long month, long day) {
  static constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (month < 1 || month > 12 || day < 1) return std::nullopt;
  const long last = kDays[month - 1] + (month == 2 && IsLeap(year) ? 1 : 0);
  if (day > last) return std::nullopt;
  return DaysFromCivil(year, month, day);
}

int Sign(double difference) {
  return difference < 0 ? -1 : (difference > 0 ? 1 : 0);
}

// The leading count of a part of a time left. Held within a billion, far beyond any real time left,
// so that the seconds of the day, hour and minute counts add up within long whatever a page writes.
long LeadingCount(std::string_view text) {
  constexpr long kMaxCount = 1'000'000'000;
  return std::clamp(std::strtol(std::string(text).c_str(), nullptr, 10), -kMaxCount, kMaxCount);
}

}  // namespace

DateOrder DateOrderFromLocale() {
  const char* format = nl_langinfo(D_FMT);
  const char* day = std::strpbrk(format, "de");
  const char* month = std::strchr(format, 'm');
  // Only the relative place of the day and month directives matters here.
  if (day != nullptr && month != nullptr && day < month && day > format && day[-1] == '%') return DateOrder::DayFirst;
  return DateOrder::MonthFirst;
}

std::optional<long> ParseDateText(std::string_view text, DateOrder order) {
  std::vector<std::pair<long, std::size_t>> parts;  // value, digit count
  char separator = 0;
  std::size_t i = 0;
  while (i < text.size()) {
    const std::size_t start = i;
    while (i < text.size() && text[i] >= '0' && text[i] <= '9') ++i;
    const std::size_t digits = i - start;
    if (digits == 0 || digits > 4) return std::nullopt;
    long value = 0;
    std::from_chars(text.data() + start, text.data() + i, value);
    parts.emplace_back(value, digits);
    if (i == text.size()) break;
    const char c = text[i];
    if ((c != '/' && c != '.' && c != '-') || (separator != 0 && c != separator)) return std::nullopt;
    separator = c;
    ++i;
    if (i == text.size()) return std::nullopt;
  }
  if (parts.size() != 3) return std::nullopt;
  if (parts[0].second == 4) return ValidDate(parts[0].first, parts[1].first, parts[2].first);
  if (parts[0].second > 2 || parts[1].second > 2 || (parts[2].second != 4 && parts[2].second != 2)) return std::nullopt;
  long year = parts[2].first;
  // Two-digit years: 30 and above are the 1900s, as the usual window has it.
  if (parts[2].second == 2) year += year >= 30 ? 1900 : 2000;
  const bool dayFirst = order == DateOrder::DayFirst;
  return ValidDate(year, dayFirst ? parts[1].first : parts[0].first, dayFirst ? parts[0].first : parts[1].first);
}

int CompareText(std::string_view a, std::string_view b) {
  const int c = a.compare(b);
  return c < 0 ? -1 : (c > 0 ? 1 : 0);
}

double LeadingNumber(std::string_view text) {
  std::size_t i = 0;
  while (i < text.size() && (text[i] == ' ' || text[i] == '\t' || text[i] == '\r' || text[i] == '\n')) ++i;
  bool negative = false;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) {
    negative = text[i] == '-';
    ++i;
  }
  double value = 0;
  const auto [end, error] =
      std::from_chars(text.data() + i, text.data() + text.size(), value, std::chars_format::fixed);
  if (error != std::errc()) return 0;
  (void)end;
  return negative ? -value : value;
}

int CompareNumber(std::string_view a, std::string_view b) {
  return Sign(LeadingNumber(a) - LeadingNumber(b));
}

bool IsNumberText(std::string_view text) {
  if (text.empty()) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if ((c >= '0' && c <= '9') || c == '+') continue;
    if (c == '-' && i == 0 && text.size() > 1) continue;
    return false;
  }
  return true;
}

bool IsDateText(std::string_view text, DateOrder order) {
  return ParseDateText(text, order).has_value();
}

int CompareDate(std::string_view a, std::string_view b, DateOrder order) {
  const auto dateA = ParseDateText(a, order);
  const auto dateB = ParseDateText(b, order);
  if (!dateA || !dateB) return CompareText(a, b);
  return *dateA < *dateB ? -1 : (*dateA > *dateB ? 1 : 0);
}

long TimeLeftSeconds(std::string_view s) {
  long total = 0;
  int start = 0;
  if (const int d = base::Find(s, "D", 0); d != -1) {
    total = LeadingCount(s) * 86400;
    start = d + 2;
  }
  int next = 0;
  if (const int h = base::Find(s, "H", 0); h != -1) {
    total += 3600 * LeadingCount(base::ExtractBetween(s, start, h));
    next = h + 2;
  }
  if (const int m = base::Find(s, "M", 0); m != -1) {
    total += 60 * LeadingCount(base::ExtractBetween(s, next, m));
  }
  return total;
}

}  // namespace gavelscope::hotitems
