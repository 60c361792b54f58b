// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <filesystem>
#include <memory>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "app/RunController.h"
#include "base/Outcome.h"
#include "net/NetOptions.h"
#include "standin/SandboxProcess.h"

namespace gavelscope::app {

// What both programs take from their command line besides their own options.
struct SharedOptions {
  // HOST:PORT:ADDR:PORT mappings, in the order given.
  std::vector<std::string> connectTo;
  bool sandbox = false;
};

// Takes args[i] (and its value) when it is --connect-to or --sandbox, in either --opt value or
// --opt=value form: true when it was one. `error` is set for a malformed one, which is a usage error
// in both programs.
bool TakeSharedOption(const std::vector<std::string>& args, std::size_t& i, SharedOptions& options, std::string& error);

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
