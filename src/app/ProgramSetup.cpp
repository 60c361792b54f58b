// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "app/ProgramSetup.h"

#include <algorithm>

#include "app/Startup.h"
#include "hotitems/ItemCompare.h"

namespace gavelscope::app {

namespace {

// curl's form: three colons at least (an IPv6 address brings more).
bool IsConnectToMapping(std::string_view mapping) {
  return std::count(mapping.begin(), mapping.end(), ':') >= 3;
}

}  // namespace

bool TakeSharedOption(const std::vector<std::string>& args, std::size_t& i, SharedOptions& options,
                      std::string& error) {
  const std::string& arg = args[i];
  if (arg == "--sandbox") {
    options.sandbox = true;
    return true;
  }
  if (arg != "--connect-to" && !arg.starts_with("--connect-to=")) return false;
  std::string mapping;
  if (arg.starts_with("--connect-to=")) {
    mapping = arg.substr(13);
  } else if (i + 1 < args.size()) {
    mapping = args[++i];
  } else {
    error = "--connect-to needs a value";
    return true;
  }
  if (!IsConnectToMapping(mapping)) {
    error = "--connect-to needs HOST:PORT:ADDR:PORT, not \"" + mapping + "\"";
    return true;
  }
  options.connectTo.push_back(std::move(mapping));
  return true;
}

std::filesystem::path SandboxScriptFor(const std::filesystem::path& program) {
  const std::filesystem::path folder = program.parent_path();
  for (const std::filesystem::path& candidate :
       {folder / ".." / "share" / "gavelscope" / "sandbox" / "sandbox.py", folder / "sandbox" / "sandbox.py",
        folder / ".." / "sandbox" / "sandbox.py"}) {
    std::error_code missing;
    if (std::filesystem::is_regular_file(candidate, missing)) return candidate.lexically_normal();
  }
  return {};
}

bool CProgramSetup::Start(const SharedOptions& options, const standin::SandboxOptions& sandbox, net::NetOptions net,
                          std::string& error) {
  m_config.profile = sites::CompiledProfile();
  m_config.net = std::move(net);
  m_config.net.connectTo = options.connectTo;
  m_config.dateOrder = hotitems::DateOrderFromLocale();
  if (!options.sandbox) return true;
  if (sandbox.script.empty()) {
    error = "no sandbox was installed with this program";
    return false;
  }
  m_sandbox = standin::SandboxProcess::Start(sandbox, error);
  if (!m_sandbox) return false;
  m_config.net.connectTo.insert(m_config.net.connectTo.end(), m_sandbox->connectTo().begin(),
                                m_sandbox->connectTo().end());
  return true;
}

ControllerConfig CProgramSetup::Config(std::filesystem::path cacheFolder) const {
  ControllerConfig config = m_config;
  config.cacheFolder = std::move(cacheFolder);
  return config;
}

base::Outcome CProgramSetup::ProbeConnectivity(std::stop_token stop) const {
  return app::ProbeConnectivity(m_config.profile, m_config.net, std::move(stop));
}

}  // namespace gavelscope::app
