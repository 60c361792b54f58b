// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <spawn.h>
#include <sys/types.h>

namespace gavelscope::base {

// posix_spawn (or posix_spawnp when `searchPath`), with no signal blocked in the child whatever the
// calling thread blocks: the command line blocks Ctrl-C in its threads to take it in one place,
// and a browser or the sandbox must still be able to get it. Returns posix_spawn's result.
int SpawnProcess(pid_t& pid, const char* program, const posix_spawn_file_actions_t* actions, char* const argv[],
                 bool searchPath);

}  // namespace gavelscope::base
