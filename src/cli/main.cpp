// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include <clocale>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "app/ProgramSetup.h"
#include "cli/CliApp.h"
#include "cli/SignalStop.h"

int main(int argc, char** argv) {
  // First, before any thread: the signals it blocks stay blocked in every thread started later.
  const gavelscope::cli::SignalStop signals;
  // Dates sort in the user's day and month order; everything else stays in the C locale.
  std::setlocale(LC_TIME, "");
  const std::vector<std::string> args(argv + 1, argv + argc);
  gavelscope::cli::CliEnvironment environment;
  environment.sandbox.python = GAVELSCOPE_SANDBOX_PYTHON;
  environment.sandbox.script = gavelscope::app::SandboxScriptFor(std::filesystem::read_symlink("/proc/self/exe"));
  environment.stop = signals.token();
  return signals.ExitStatus(gavelscope::cli::RunCli(args, environment, std::cout, std::cerr));
}
