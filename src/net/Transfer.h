// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <chrono>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>

#include <curl/curl.h>

#include "net/NetOptions.h"

namespace gavelscope::net {

class Session;

// One libcurl transfer on a session, driven by its owner's thread. The owner pulls: Run() moves the
// transfer on until the owner has what it wants or the transfer ends. A stop request wakes a waiting
// Run() at once and ends the transfer, so no owner waits on the network after it was told to stop.
class Transfer {
 public:
  Transfer(std::shared_ptr<Session> session, std::string_view url, std::stop_token stop);
  ~Transfer();
  Transfer(const Transfer&) = delete;
  Transfer& operator=(const Transfer&) = delete;

  // For option setting before the first Run().
  CURL* handle() const { return m_easy; }
  void SetReadChunkSize(long bytes);
  void SetRequestHeaders(std::initializer_list<const char*> lines);
  // Body bytes go to the sink instead of the buffer. A sink that returns false ends the transfer.
  void SetBodySink(std::function<bool(std::string_view)> sink) { m_sink = std::move(sink); }
  // A body beyond `bytes` ends the transfer as a failure that says so.
  void SetMaxBodyBytes(std::size_t bytes);
  // Follows redirects (http and https only, kMaxRedirects at most); the answer is the last one's.
  void FollowRedirects();
  // Ends the transfer at `deadline` if its own limits have not ended it before.
  void SetDeadline(std::chrono::steady_clock::time_point deadline);

  // Runs until `enough` holds (checked before each wait) or the transfer ends.
  void Run(const std::function<bool()>& enough);
  void RunToEnd() {
    Run([] { return false; });
  }

  bool done() const { return m_done; }
  bool succeeded() const { return m_done && m_result == CURLE_OK; }
  bool responseStarted() const { return m_headersDone || !m_buffer.empty() || m_bodyBytes > 0; }
  bool overLimit() const { return m_overLimit; }
  // Body bytes received and not yet taken by the owner (when no sink is set).
  std::string& buffer() { return m_buffer; }
  NetResult Outcome() const;

 private:
  static size_t OnBody(char* data, size_t size, size_t count, void* self);
  static size_t OnHeader(char* data, size_t size, size_t count, void* self);
  void Finish(CURLcode result);

  std::shared_ptr<Session> m_session;
  std::stop_token m_stop;
  CURL* m_easy = nullptr;
  CURLM* m_multi = nullptr;
  curl_slist* m_headers = nullptr;
  std::optional<std::stop_callback<std::function<void()>>> m_wakeOnStop;
  std::function<bool(std::string_view)> m_sink;
  std::string m_buffer;
  std::size_t m_bodyBytes = 0;
  std::size_t m_maxBodyBytes = 0;
  bool m_overLimit = false;
  bool m_headersDone = false;
  bool m_followRedirects = false;
  bool m_sawLocation = false;
  bool m_done = false;
  CURLcode m_result = CURLE_OK;
};

}  // namespace gavelscope::net
