// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "app/BrowserLauncher.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <cstdint>

#include "base/Spawn.h"

namespace gavelscope::app {

namespace {

// Waits for the child to end, or for a stop request. Returns the exit status, or -1 when stopped
// or when the wait itself failed.
int WaitForChild(pid_t child, std::stop_token stop) {
  const int pidFd = static_cast<int>(syscall(SYS_pidfd_open, child, 0));
  const int stopFd = eventfd(0, EFD_CLOEXEC);
  int status = -1;
  {
    // The callback is gone (and any run of it finished) before its descriptor is closed: a stop
    // arriving late must not write into a number the process may already have given to another file.
    std::stop_callback wake(stop, [stopFd] {
      const std::uint64_t one = 1;
      [[maybe_unused]] const ssize_t written = write(stopFd, &one, sizeof one);
    });
    if (pidFd >= 0 && stopFd >= 0) {
      pollfd fds[2] = {{pidFd, POLLIN, 0}, {stopFd, POLLIN, 0}};
      while (poll(fds, 2, -1) < 0 && errno == EINTR) {
      }
      if ((fds[0].revents & POLLIN) != 0) {
        int raw = 0;
        if (waitpid(child, &raw, 0) == child) status = WIFEXITED(raw) ? WEXITSTATUS(raw) : 128;
      }
    }
  }
  if (pidFd >= 0) close(pidFd);
  if (stopFd >= 0) close(stopFd);
  return status;
}

}  // namespace

bool IsBrowsableUrl(std::string_view url) {
  const auto colon = url.find(':');
  if (colon == std::string_view::npos) return false;
  std::string scheme(url.substr(0, colon));
  for (char& c : scheme) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  const bool known = scheme == "http" || scheme == "https" || scheme == "ftp";
  return known && url.substr(colon).starts_with("://");
}

CBrowserLauncher::CBrowserLauncher(base::IUserMessages& messages, std::vector<std::string> command)
    : m_messages(messages), m_command(std::move(command)) {}

CBrowserLauncher::~CBrowserLauncher() {
  Shutdown();
}

void CBrowserLauncher::OpenUrlInBrowser(std::string_view url) {
  m_threads.Start([this, url = std::string(url)](std::stop_token stop) { BrowserThreadProc(url, stop); });
}

void CBrowserLauncher::BrowserThreadProc(const std::string& url, std::stop_token stop) {
  bool started = false;
  if (IsBrowsableUrl(url) && !m_command.empty()) {
    std::vector<char*> argv;
    for (const std::string& word : m_command) argv.push_back(const_cast<char*>(word.c_str()));
    argv.push_back(const_cast<char*>(url.c_str()));
    argv.push_back(nullptr);
    pid_t child = 0;
    if (base::SpawnProcess(child, argv[0], nullptr, argv.data(), true) == 0) {
      const int status = WaitForChild(child, stop);
      // A stop while the browser starts is no failure of the browser: say nothing.
      started = status == 0 || (status == -1 && stop.stop_requested());
    }
  }
  if (!started)
    m_messages.Show(
        base::UserMessage{base::text::kBrowserFailed, base::text::kApplicationName, base::MessageButtons::Ok, false,
                          base::MessageKind::Error});
}

}  // namespace gavelscope::app
