// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <filesystem>
#include <iosfwd>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "app/RunController.h"
#include "base/Outcome.h"
#include "net/NetOptions.h"
#include "standin/SandboxProcess.h"

namespace CLI {
class App;
}

namespace gavelscope::app {

// What both programs take from their command line besides their own options.
struct SharedOptions {
  // HOST:PORT:ADDR:PORT mappings, in the order given.
  std::vector<std::string> connectTo;
  bool sandbox = false;
};

// Gives a program's command line what both programs share: --connect-to HOST:PORT:ADDR:PORT
// (repeatable) and --sandbox, bound to `options` and taken before or after a command; -h/--help;
// --version, which prints `version`; one layout of help; the last of a repeated single-value option
// winning. Called before the program adds its own options or commands, which take these settings.
void AddSharedOptions(CLI::App& commandLine, const std::string& version, SharedOptions& options);

// Reads `args` (without the program's name) into `commandLine`. Nothing when the program goes on;
// otherwise its exit code: 0 after the help or the version on `out`, 2 after a usage error on `err`
// ("PROGRAM: what is wrong", then where the help is).
std::optional<int> ParseCommandLine(CLI::App& commandLine, const std::vector<std::string>& args, std::ostream& out,
                                    std::ostream& err);

// Where the stand-in sites live for the program at `program`: installed beside it
// (../share/gavelscope/sandbox), or, in a build tree, in the sandbox folder copied next to it.
std::filesystem::path SandboxScriptFor(const std::filesystem::path& program);

// The start both programs share: the stand-in sites when asked for, the run's configuration
// (compiled-in profile; the command line's mappings first, so that they win over the sandbox's)
// and the connectivity probe.
class CProgramSetup {
 public:
  // Starts the stand-in sites when the options ask for them; false with `error` when they do not
  // come up.
  bool Start(const SharedOptions& options, const standin::SandboxOptions& sandbox, net::NetOptions net,
             std::string& error);
  // The configuration of a run whose working files go to `cacheFolder`.
  ControllerConfig Config(std::filesystem::path cacheFolder) const;
  // Opens the UK site's root page: nothing starts without an answer.
  base::Outcome ProbeConnectivity(std::stop_token stop = {}) const;

 private:
  std::unique_ptr<standin::SandboxProcess> m_sandbox;
  ControllerConfig m_config;
};

}  // namespace gavelscope::app
