// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "standin/SandboxProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>

#include "base/Spawn.h"

namespace gavelscope::standin {

namespace {

constexpr int kStartMilliseconds = 30000;
constexpr int kStopMilliseconds = 5000;

// Waits up to `milliseconds` for the child to end and reaps it; false when it is still running.
bool WaitForExit(pid_t pid, int milliseconds) {
  const int pidFd = static_cast<int>(syscall(SYS_pidfd_open, pid, 0));
  if (pidFd >= 0) {
    pollfd fd{pidFd, POLLIN, 0};
    while (poll(&fd, 1, milliseconds) < 0 && errno == EINTR) {
    }
    close(pidFd);
  }
  int status = 0;
  return waitpid(pid, &status, pidFd >= 0 ? WNOHANG : 0) == pid;
}

}  // namespace

std::unique_ptr<SandboxProcess> SandboxProcess::Start(const SandboxOptions& options, std::string& error) {
  int input[2];
  int output[2];
  if (pipe2(input, O_CLOEXEC) != 0) {
    error = "cannot create a pipe";
    return nullptr;
  }
  if (pipe2(output, O_CLOEXEC) != 0) {
    close(input[0]);
    close(input[1]);
    error = "cannot create a pipe";
    return nullptr;
  }
  std::vector<std::string> words{options.python, options.script.string()};
  words.insert(words.end(), options.arguments.begin(), options.arguments.end());
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, input[0], STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
  std::unique_ptr<SandboxProcess> sandbox(new SandboxProcess());
  const int spawned = base::SpawnProcess(sandbox->m_pid, argv[0], &actions, argv.data(), false);
  posix_spawn_file_actions_destroy(&actions);
  close(input[0]);
  close(output[1]);
  sandbox->m_input = input[1];
  sandbox->m_output = output[0];
  if (spawned != 0) {
    sandbox->m_pid = -1;
    error = "cannot start " + options.python;
    return nullptr;
  }
  if (!sandbox->ReadUntilReady(error)) return nullptr;
  return sandbox;
}

bool SandboxProcess::ReadUntilReady(std::string& error) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(kStartMilliseconds);
  std::string pending;
  while (true) {
    for (auto feed = pending.find('\n'); feed != std::string::npos; feed = pending.find('\n')) {
      const std::string line = pending.substr(0, feed);
      pending.erase(0, feed + 1);
      if (line == "ready") return true;
      if (line.starts_with("connect-to ")) m_connectTo.push_back(line.substr(11));
      if (line.starts_with("ftp-root ")) m_ftpRoot = line.substr(9);
    }
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    pollfd fd{m_output, POLLIN, 0};
    const int ready = left.count() > 0 ? poll(&fd, 1, static_cast<int>(left.count())) : 0;
    if (ready < 0 && errno == EINTR) continue;
    if (ready <= 0) {
      error = "the sandbox did not report ready in time";
      return false;
    }
    char chunk[4096];
    const ssize_t got = read(m_output, chunk, sizeof chunk);
    if (got <= 0) {
      error = "the sandbox ended before it was ready";
      return false;
    }
    pending.append(chunk, static_cast<std::size_t>(got));
  }
}

int SandboxProcess::PortFor(const std::string& hostAndPort) const {
  const std::string prefix = hostAndPort + ":";
  for (const std::string& mapping : m_connectTo) {
    if (mapping.starts_with(prefix)) return std::atoi(mapping.substr(mapping.rfind(':') + 1).c_str());
  }
  return 0;
}

void SandboxProcess::Stop() {
  if (m_input >= 0) close(m_input);
  m_input = -1;
  if (m_pid > 0) {
    if (!WaitForExit(m_pid, kStopMilliseconds)) {
      kill(m_pid, SIGKILL);
      WaitForExit(m_pid, kStopMilliseconds);
    }
    m_pid = -1;
  }
  if (m_output >= 0) close(m_output);
  m_output = -1;
}

SandboxProcess::~SandboxProcess() {
  Stop();
}

}  // namespace gavelscope::standin
