// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace gavelscope::standin {

struct SandboxOptions {
  std::string python;
  std::filesystem::path script;
  std::vector<std::string> arguments;  // size knobs and the like
};

// The stand-in sites, run as a child process for --sandbox and for the tests. The child serves every
// compiled-in host on loopback ports and reports how to reach them; it ends when we close its input,
// so it cannot outlive us even when we are killed.
class SandboxProcess {
 public:
  // Starts the sandbox and waits until it is ready; null with `error` set when it does not come up.
  static std::unique_ptr<SandboxProcess> Start(const SandboxOptions& options, std::string& error);
  ~SandboxProcess();
  SandboxProcess(const SandboxProcess&) = delete;
  SandboxProcess& operator=(const SandboxProcess&) = delete;

  // HOST:PORT:ADDR:PORT mappings for every compiled-in host.
  const std::vector<std::string>& connectTo() const { return m_connectTo; }
  // The local port that connections for host:port reach, 0 when unmapped.
  int PortFor(const std::string& hostAndPort) const;
  // The folder the FTP server serves.
  const std::filesystem::path& ftpRoot() const { return m_ftpRoot; }
  void Stop();

 private:
  SandboxProcess() = default;
  bool ReadUntilReady(std::string& error);

  pid_t m_pid = -1;
  int m_input = -1;
  int m_output = -1;
  std::vector<std::string> m_connectTo;
  std::filesystem::path m_ftpRoot;
};

}  // namespace gavelscope::standin
