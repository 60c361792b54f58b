// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <filesystem>
#include <string>

namespace gavelscope::testing {

// A fresh folder for one test, removed with everything in it afterwards.
class TempFolder {
 public:
  TempFolder();
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  const std::filesystem::path& path() const { return m_path; }
  std::filesystem::path operator/(const std::string& name) const { return m_path / name; }

 private:
  std::filesystem::path m_path;
};

std::string ReadFileBytes(const std::filesystem::path& file);
void WriteFileBytes(const std::filesystem::path& file, const std::string& bytes);

}  // namespace gavelscope::testing
