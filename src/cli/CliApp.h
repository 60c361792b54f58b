// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <chrono>
#include <filesystem>
#include <iosfwd>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

#include "cli/QueryOptions.h"
#include "net/NetOptions.h"
#include "sites/SiteProfile.h"
#include "standin/SandboxProcess.h"

namespace gavelscope::cli {

inline constexpr int kExitOk = 0;
inline constexpr int kExitFailure = 1;
inline constexpr int kExitUsage = 2;

struct CliRequest {
  std::vector<std::string> connectTo;
  bool sandbox = false;
  bool help = false;
  bool version = false;
  std::string command;
  sites::Site site = sites::Site::USA;
  std::optional<std::filesystem::path> exportFile;  // write the export here; "-" is standard output
  std::optional<std::string> item;                  // keywords: show this tree item's keywords
  std::optional<std::filesystem::path> queryFile;   // query, query-show: the query file to read
  QueryChoices choices;                             // query-new: what the query dialog would hold
};

// The parsed command line, or nullopt with `error` set for a usage error.
std::optional<CliRequest> ParseCommandLine(const std::vector<std::string>& args, std::string& error);

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
