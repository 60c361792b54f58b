// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <chrono>
#include <iosfwd>
#include <stop_token>
#include <string>
#include <vector>

#include "cli/Command.h"
#include "net/NetOptions.h"
#include "standin/SandboxProcess.h"

namespace gavelscope::cli {

struct CliEnvironment {
  standin::SandboxOptions sandbox;                     // how --sandbox starts the stand-in sites
  net::NetOptions net;                                 // limits of every transfer; the command line adds its mappings
  std::chrono::milliseconds queryPollInterval{15000};  // how often a query run looks at its jobs
  // A stop request (Ctrl-C, SIGTERM) ends the command through the same path as its normal end.
  std::stop_token stop;
};

// Runs one command the way the window starts: probe, start-up, wait for the load the command shows,
// print it, then stop and join everything, and remove the run's working folder. Returns the process
// exit code; a stopped command returns kExitFailure and prints nothing more.
int RunCli(const std::vector<std::string>& args, const CliEnvironment& environment, std::ostream& out,
           std::ostream& err);

}  // namespace gavelscope::cli
