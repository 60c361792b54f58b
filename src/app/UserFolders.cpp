// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "app/UserFolders.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

namespace gavelscope::app {

namespace {

std::filesystem::path FromEnvironment(const char* name) {
  const char* value = std::getenv(name);
  // The folder conventions only accept absolute paths.
  if (value == nullptr || value[0] != '/') return {};
  return value;
}

std::filesystem::path HomeFolder() {
  std::filesystem::path home = FromEnvironment("HOME");
  if (!home.empty()) return home;
  if (const passwd* entry = getpwuid(getuid()); entry != nullptr && entry->pw_dir != nullptr) return entry->pw_dir;
  return std::filesystem::temp_directory_path();
}

std::filesystem::path Created(std::filesystem::path folder) {
  std::error_code ignored;
  std::filesystem::create_directories(folder, ignored);
  return folder;
}

}  // namespace

std::filesystem::path CacheFolder() {
  std::filesystem::path base = FromEnvironment("XDG_CACHE_HOME");
  if (base.empty()) base = HomeFolder() / ".cache";
  return Created(base / "gavelscope");
}

std::filesystem::path RuntimeFolder() {
  std::filesystem::path base = FromEnvironment("XDG_RUNTIME_DIR");
  if (!base.empty()) return Created(base / "gavelscope");
  return Created(std::filesystem::temp_directory_path() / ("gavelscope-" + std::to_string(getuid())));
}

}  // namespace gavelscope::app
