// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>

#include "net/NetOptions.h"

namespace gavelscope::net {

class Session;

struct FtpAccount {
  std::string host;
  int port = 21;
  std::string user;
  std::string password;
};

// The vendor's FTP server, always in active mode (the server connects back to us). Downloads are
// binary, uploads ASCII. One client keeps its control connection alive across its calls; a client
// belongs to one thread at a time.
class FtpClient {
 public:
  using Deadline = std::chrono::steady_clock::time_point;

  FtpClient(const NetOptions& options, FtpAccount account);
  ~FtpClient();

  // Logs in, proving the server and the account.
  NetResult Connect(std::stop_token stop, std::optional<Deadline> deadline = {});
  // Streams the remote file into `local`, which gets it whole or keeps what it had: a failed or
  // too large download leaves what was there before. A deadline ends the attempt early.
  NetResult GetFile(std::string_view remoteName, const std::filesystem::path& local, std::stop_token stop,
                    std::optional<Deadline> deadline = {});
  NetResult PutFile(const std::filesystem::path& local, std::string_view remoteName, std::stop_token stop);
  NetResult Remove(std::string_view remoteName, std::stop_token stop);

 private:
  std::string UrlFor(std::string_view remoteName) const;

  std::shared_ptr<Session> m_session;
  FtpAccount m_account;
};

}  // namespace gavelscope::net
