// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include <clocale>
#include <iostream>
#include <string>
#include <vector>

#include "cli/CliApp.h"

int main(int argc, char** argv) {
  // Dates sort in the user's day and month order; everything else stays in the C locale.
  std::setlocale(LC_TIME, "");
  const std::vector<std::string> args(argv + 1, argv + argc);
  gavelscope::cli::CliEnvironment environment;
  environment.sandbox.python = GAVELSCOPE_SANDBOX_PYTHON;
  environment.sandbox.script = GAVELSCOPE_SANDBOX_SCRIPT;
  return gavelscope::cli::RunCli(args, environment, std::cout, std::cerr);
}
