// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace gavelscope::hotitems {

// How the user's locale writes numeric dates.
enum class DateOrder { DayFirst, MonthFirst };

// The order of the current LC_TIME locale's date format (month first in the "C" locale).
DateOrder DateOrderFromLocale();

// Days since 1970-01-01 of a date written D/M/Y or M/D/Y (as `order` says; "/", "." or "-" between
// the parts, a four- or two-digit year) or Y-M-D; nullopt for anything else or an impossible date.
std::optional<long> ParseDateText(std::string_view text, DateOrder order);

// The comparisons of the item lists' sort: -1, 0 or 1.
int CompareText(std::string_view a, std::string_view b);
int CompareNumber(std::string_view a, std::string_view b);
int CompareDate(std::string_view a, std::string_view b, DateOrder order);
bool IsNumberText(std::string_view text);
bool IsDateText(std::string_view text, DateOrder order);
// The number a text starts with: optional blanks, sign, digits and a point; 0 without digits.
double LeadingNumber(std::string_view text);
// "2D 05H 30M" as seconds (upper-case text).
long TimeLeftSeconds(std::string_view text);

}  // namespace gavelscope::hotitems
