// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <chrono>
#include <sstream>
#include <string>
#include <vector>

#include "cli/CliApp.h"

namespace gavelscope::cli {

struct Ran {
  int status;
  std::string out;
  std::string err;
};

// The program in this process. --sandbox starts the stand-in sites with `sandboxArguments` (--day N,
// say), and a query looks at its jobs often, so that it ends soon after its scan.
inline Ran RunCommand(const std::vector<std::string>& args, std::vector<std::string> sandboxArguments = {}) {
  CliEnvironment environment;
  environment.sandbox = {GAVELSCOPE_SANDBOX_PYTHON, GAVELSCOPE_SANDBOX_SCRIPT, std::move(sandboxArguments)};
  environment.queryPollInterval = std::chrono::milliseconds(100);
  std::ostringstream out, err;
  const int status = RunCli(args, environment, out, err);
  return {status, out.str(), err.str()};
}

}  // namespace gavelscope::cli
