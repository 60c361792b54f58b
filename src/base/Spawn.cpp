// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "base/Spawn.h"

#include <signal.h>

extern char** environ;

namespace gavelscope::base {

int SpawnProcess(pid_t& pid, const char* program, const posix_spawn_file_actions_t* actions, char* const argv[],
                 bool searchPath) {
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t none;
  sigemptyset(&none);
  posix_spawnattr_setsigmask(&attributes, &none);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
  const int spawned = searchPath ? posix_spawnp(&pid, program, actions, &attributes, argv, environ)
                                 : posix_spawn(&pid, program, actions, &attributes, argv, environ);
  posix_spawnattr_destroy(&attributes);
  return spawned;
}

}  // namespace gavelscope::base
