// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "net/FtpClient.h"

#include <cstdio>

#include "base/Files.h"
#include "net/Session.h"
#include "net/Transfer.h"

namespace gavelscope::net {

namespace {

void Configure(Transfer& transfer, const FtpAccount& account) {
  CURL* handle = transfer.handle();
  curl_easy_setopt(handle, CURLOPT_USERNAME, account.user.c_str());
  curl_easy_setopt(handle, CURLOPT_PASSWORD, account.password.c_str());
  // Active mode: "-" lets libcurl listen on the address of the control connection.
  curl_easy_setopt(handle, CURLOPT_FTPPORT, "-");
}

}  // namespace

FtpClient::FtpClient(const NetOptions& options, FtpAccount account)
    : m_session(Session::Create(options)), m_account(std::move(account)) {}

FtpClient::~FtpClient() = default;

std::string FtpClient::UrlFor(std::string_view remoteName) const {
  std::string url = "ftp://" + m_account.host + ":" + std::to_string(m_account.port) + "/";
  if (!remoteName.empty()) {
    char* escaped = curl_easy_escape(nullptr, remoteName.data(), static_cast<int>(remoteName.size()));
    url += escaped;
    curl_free(escaped);
  }
  return url;
}

NetResult FtpClient::Connect(std::stop_token stop, std::optional<Deadline> deadline) {
  Transfer transfer(m_session, UrlFor({}), std::move(stop));
  Configure(transfer, m_account);
  if (deadline) transfer.SetDeadline(*deadline);
  curl_easy_setopt(transfer.handle(), CURLOPT_NOBODY, 1L);
  transfer.RunToEnd();
  return transfer.Outcome();
}

NetResult FtpClient::GetFile(std::string_view remoteName, const std::filesystem::path& local, std::stop_token stop,
                             std::optional<Deadline> deadline) {
  NetResult opened;
  const std::unique_ptr<base::FileWriter> file = base::FileWriter::Open(local, opened);
  if (!file) return opened;
  Transfer transfer(m_session, UrlFor(remoteName), std::move(stop));
  Configure(transfer, m_account);
  if (deadline) transfer.SetDeadline(*deadline);
  curl_easy_setopt(transfer.handle(), CURLOPT_TRANSFERTEXT, 0L);
  transfer.SetMaxBodyBytes(m_session->options().maxDownloadBytes);
  // Straight to the file as it arrives: a download is never held in memory whole.
  NetResult written{true, {}};
  transfer.SetBodySink([&](std::string_view bytes) {
    written = file->Write(bytes);
    return written.ok;
  });
  transfer.RunToEnd();
  if (!written) return written;
  const NetResult result = transfer.Outcome();
  return result ? file->Commit() : result;
}

NetResult FtpClient::PutFile(const std::filesystem::path& local, std::string_view remoteName, std::stop_token stop) {
  std::FILE* in = std::fopen(local.c_str(), "rb");
  if (in == nullptr) return {false, "Cannot read " + local.string()};
  Transfer transfer(m_session, UrlFor(remoteName), std::move(stop));
  Configure(transfer, m_account);
  curl_easy_setopt(transfer.handle(), CURLOPT_UPLOAD, 1L);
  curl_easy_setopt(transfer.handle(), CURLOPT_TRANSFERTEXT, 1L);
  curl_easy_setopt(transfer.handle(), CURLOPT_READDATA, in);
  transfer.RunToEnd();
  std::fclose(in);
  return transfer.Outcome();
}

NetResult FtpClient::Remove(std::string_view remoteName, std::stop_token stop) {
  Transfer transfer(m_session, UrlFor({}), std::move(stop));
  Configure(transfer, m_account);
  const std::string command = "DELE " + std::string(remoteName);
  curl_slist* commands = curl_slist_append(nullptr, command.c_str());
  curl_easy_setopt(transfer.handle(), CURLOPT_QUOTE, commands);
  curl_easy_setopt(transfer.handle(), CURLOPT_NOBODY, 1L);
  transfer.RunToEnd();
  NetResult result = transfer.Outcome();
  curl_easy_setopt(transfer.handle(), CURLOPT_QUOTE, nullptr);
  curl_slist_free_all(commands);
  return result;
}

}  // namespace gavelscope::net
