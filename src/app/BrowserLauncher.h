// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/Browser.h"
#include "base/ThreadOwner.h"
#include "base/UserMessages.h"

namespace gavelscope::app {

// Opens pages in the user's web browser, each on a thread of its own so that no caller waits for a
// browser to start. The browser command is run directly with the address as its last argument, never
// through a shell, and only http, https and ftp addresses are handed to it.
class CBrowserLauncher : public base::IBrowser {
 public:
  explicit CBrowserLauncher(base::IUserMessages& messages, std::vector<std::string> command = {"xdg-open"});
  ~CBrowserLauncher() override;

  void OpenUrlInBrowser(std::string_view url) override;
  // Stops waiting for browsers that are still starting; the browsers themselves go on.
  void Shutdown() { m_threads.StopAndJoinAll(); }

 private:
  void BrowserThreadProc(const std::string& url, std::stop_token stop);

  base::IUserMessages& m_messages;
  std::vector<std::string> m_command;
  base::ThreadOwner m_threads;
};

// True for the address schemes a browser may be given.
bool IsBrowsableUrl(std::string_view url);

}  // namespace gavelscope::app
