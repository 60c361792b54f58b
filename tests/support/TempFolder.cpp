// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "support/TempFolder.h"

#include <stdlib.h>

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>

namespace gavelscope::testing {

TempFolder::TempFolder() {
  std::string pattern = (std::filesystem::temp_directory_path() / "gavelscope-test-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("cannot create a temporary folder");
  m_path = pattern;
}

TempFolder::~TempFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(m_path, ignored);
}

std::string ReadFileBytes(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void WriteFileBytes(const std::filesystem::path& file, const std::string& bytes) {
  std::ofstream out(file, std::ios::binary | std::ios::trunc);
  out << bytes;
}

}  // namespace gavelscope::testing
