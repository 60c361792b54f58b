// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "base/Outcome.h"

namespace gavelscope::base {

// Writes the whole new content of a file the way a careful shell redirection would, but never
// leaving half a file behind:
// - a symbolic link is followed, and the file it names is written;
// - a regular file (or a new one) gets its bytes in a uniquely named temporary file beside it, which
//   is then renamed over it, so a failure leaves what was there before; an existing file keeps its
//   permission bits, a new one gets the usual ones (0666 less the umask);
// - anything else that can be opened for writing (a pipe, a terminal, /dev/null, standard output)
//   is written directly and never replaced; a folder is refused.
// A failure's text is the system's reason ("Permission denied"); callers name the file.
class FileWriter {
 public:
  // The writer, or null with the failure in `result`.
  static std::unique_ptr<FileWriter> Open(const std::filesystem::path& file, Outcome& result);
  ~FileWriter();
  FileWriter(const FileWriter&) = delete;
  FileWriter& operator=(const FileWriter&) = delete;

  Outcome Write(std::string_view bytes);
  // Puts the content in place. Without it (a failed download, say) the target keeps what it had.
  Outcome Commit();

 private:
  FileWriter() = default;
  Outcome Failure(int error) const;

  std::filesystem::path m_target;     // where the bytes end up, links followed
  std::filesystem::path m_temporary;  // empty when writing directly
  int m_fd = -1;
  bool m_failed = false;
};

// One FileWriter pass: open, write `bytes`, commit.
Outcome WriteWholeFile(const std::filesystem::path& file, std::string_view bytes);

// Reads a whole regular file of at most `maxBytes`; false with the reason (the system's, or "larger
// than N bytes", "not a regular file") in `error`.
bool ReadWholeFile(const std::filesystem::path& file, std::size_t maxBytes, std::string& bytes, std::string& error);

// Hands each line of a file to `take` (without its line feed; a carriage return before it stays),
// until the file ends, `take` returns false, or a line is longer than `maxLineBytes`, which ends the
// reading there as if the file ended. False when the file could not be read to its end.
bool ReadLines(const std::filesystem::path& file, std::size_t maxLineBytes,
               const std::function<bool(std::string_view)>& take);

}  // namespace gavelscope::base
