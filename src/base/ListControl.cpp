// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "base/ListControl.h"

#include "base/Files.h"
#include "base/TextHelpers.h"

namespace gavelscope::base {

int SearchRows(std::size_t rowCount, int mark, std::string_view word,
               const std::function<std::string(std::size_t)>& textOf) {
  if (mark < 0 && rowCount == 0) return kNothingToSearch;
  const std::size_t start = mark < 0 ? 0 : static_cast<std::size_t>(mark) + 1;
  for (std::size_t row = start; row < rowCount; ++row) {
    if (base::ContainsNoCase(textOf(row), word)) return static_cast<int>(row);
  }
  return kNoMatch;
}

void ReportNotFound(IUserMessages& messages) {
  messages.Show(UserMessage{text::kNotFound, text::kMessageTitle});
}

Outcome ExportToFile(const std::filesystem::path& file, std::string_view bytes, IUserMessages& messages) {
  Outcome written = base::WriteWholeFile(file, bytes);
  if (written) messages.Show(UserMessage{text::kExported, text::kMessageTitle});
  return written;
}

}  // namespace gavelscope::base
