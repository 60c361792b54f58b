// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <filesystem>
#include <memory>
#include <stop_token>
#include <string>
#include <string_view>

#include "net/NetOptions.h"
#include "net/SiteProfile.h"

namespace gavelscope::net {

class Session;

// The vendor's FTP server, always in active mode (the server connects back to us). Downloads are
// binary, uploads ASCII. One client keeps its control connection alive across its calls; a client
// belongs to one thread at a time.
class FtpClient {
 public:
  FtpClient(const NetOptions& options, FtpAccount account);
  ~FtpClient();

  // Logs in, proving the server and the account.
  NetResult Connect(std::stop_token stop);
  // Writes the remote file to `local` as a whole: a failed download leaves what was there before.
  NetResult GetFile(std::string_view remoteName, const std::filesystem::path& local, std::stop_token stop);
  NetResult PutFile(const std::filesystem::path& local, std::string_view remoteName, std::stop_token stop);
  NetResult Remove(std::string_view remoteName, std::stop_token stop);

 private:
  std::string UrlFor(std::string_view remoteName) const;

  std::shared_ptr<Session> m_session;
  FtpAccount m_account;
};

}  // namespace gavelscope::net
