// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <filesystem>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>

#include "base/Outcome.h"
#include "base/UserMessages.h"

namespace gavelscope::base {

// The search every list offers: from the row after the selection mark (from the top when there is
// no mark) to the last row, the first row whose text holds `word`, ignoring case; no wrap-around.
// Returns the row, or -1 when none matched. An empty list without a mark is not searched: -2.
inline constexpr int kNoMatch = -1;
inline constexpr int kNothingToSearch = -2;
int SearchRows(std::size_t rowCount, int mark, std::string_view word,
               const std::function<std::string(std::size_t)>& textOf);

// Tells the user that a search found nothing.
void ReportNotFound(IUserMessages& messages);

// A list's "find next": searches under the list's lock, moves the mark to the row found and tells
// the user when nothing matched (an empty list without a mark says nothing). True when the mark
// moved, so that the list tells its observer.
bool FindNextAndMark(std::mutex& listMutex, int& mark, std::string_view word,
                     const std::function<std::size_t()>& rowCount,
                     const std::function<std::string(std::size_t)>& textOf, IUserMessages& messages);

// Writes an export as the file's whole content, then tells the user it is done. A file that cannot
// be written keeps what it had, and the user is told nothing: the caller reports the failure.
Outcome ExportToFile(const std::filesystem::path& file, std::string_view bytes, IUserMessages& messages);

}  // namespace gavelscope::base
