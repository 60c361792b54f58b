// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <filesystem>

namespace gavelscope::app {

// The per-user folder for downloaded and working files ($XDG_CACHE_HOME/gavelscope, else
// ~/.cache/gavelscope), created when missing. These follow the desktop's folder conventions; they
// are where files go, not settings of the program.
std::filesystem::path CacheFolder();

// The per-user folder for the running-instance lock ($XDG_RUNTIME_DIR, else a private folder in the
// system's temporary folder).
std::filesystem::path RuntimeFolder();

}  // namespace gavelscope::app
