// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "net/FileOutput.h"

#include <fstream>
#include <system_error>

namespace gavelscope::net {

NetResult WriteFileAtomically(const std::filesystem::path& file, std::string_view bytes) {
  std::filesystem::path partial = file;
  partial += ".part";
  {
    std::ofstream out(partial, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out.close();
    if (!out) {
      std::error_code ignored;
      std::filesystem::remove(partial, ignored);
      return {false, "Cannot write " + file.string()};
    }
  }
  std::error_code moved;
  std::filesystem::rename(partial, file, moved);
  if (moved) {
    std::error_code ignored;
    std::filesystem::remove(partial, ignored);
    return {false, "Cannot write " + file.string() + ": " + moved.message()};
  }
  return {true, {}};
}

}  // namespace gavelscope::net
