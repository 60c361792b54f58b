// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "net/Transfer.h"

#include <algorithm>
#include <cctype>
#include <string>

#include "net/Session.h"

namespace gavelscope::net {

namespace {

constexpr int kPollMilliseconds = 1000;

}  // namespace

Transfer::Transfer(std::shared_ptr<Session> session, std::string_view url, std::stop_token stop)
    : m_session(std::move(session)), m_stop(std::move(stop)) {
  m_easy = curl_easy_init();
  m_multi = static_cast<CURLM*>(m_session->AcquireCache());
  const NetOptions& options = m_session->options();
  const std::string address(url);
  curl_easy_setopt(m_easy, CURLOPT_URL, address.c_str());
  curl_easy_setopt(m_easy, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(m_easy, CURLOPT_PROTOCOLS_STR, "http,https,ftp");
  if (m_session->connectToList() != nullptr) curl_easy_setopt(m_easy, CURLOPT_CONNECT_TO, m_session->connectToList());
  curl_easy_setopt(m_easy, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(options.connectTimeout.count()));
  // Active FTP waits for the server to call back; that wait is bounded like a connect.
  curl_easy_setopt(m_easy, CURLOPT_ACCEPTTIMEOUT_MS, static_cast<long>(options.connectTimeout.count()));
  curl_easy_setopt(m_easy, CURLOPT_LOW_SPEED_LIMIT, options.lowSpeedBytesPerSecond);
  curl_easy_setopt(m_easy, CURLOPT_LOW_SPEED_TIME, static_cast<long>(options.lowSpeedTime.count()));
  curl_easy_setopt(m_easy, CURLOPT_TIMEOUT_MS, static_cast<long>(options.transferDeadline.count()));
  curl_easy_setopt(m_easy, CURLOPT_WRITEFUNCTION, &Transfer::OnBody);
  curl_easy_setopt(m_easy, CURLOPT_WRITEDATA, this);
  curl_easy_setopt(m_easy, CURLOPT_HEADERFUNCTION, &Transfer::OnHeader);
  curl_easy_setopt(m_easy, CURLOPT_HEADERDATA, this);
  curl_multi_add_handle(m_multi, m_easy);
  CURLM* multi = m_multi;
  m_wakeOnStop.emplace(m_stop, [multi] { curl_multi_wakeup(multi); });
}

Transfer::~Transfer() {
  // The stop callback must be gone before the multi handle goes back to the pool.
  m_wakeOnStop.reset();
  curl_multi_remove_handle(m_multi, m_easy);
  curl_easy_cleanup(m_easy);
  curl_slist_free_all(m_headers);
  m_session->ReleaseCache(m_multi);
}

void Transfer::SetReadChunkSize(long bytes) {
  curl_easy_setopt(m_easy, CURLOPT_BUFFERSIZE, bytes);
}

void Transfer::SetMaxBodyBytes(std::size_t bytes) {
  m_maxBodyBytes = bytes;
  // A declared length over the limit fails before the body starts.
  curl_easy_setopt(m_easy, CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(bytes));
}

void Transfer::FollowRedirects() {
  m_followRedirects = true;
  curl_easy_setopt(m_easy, CURLOPT_FOLLOWLOCATION, 1L);
  curl_easy_setopt(m_easy, CURLOPT_MAXREDIRS, limits::kMaxRedirects);
  curl_easy_setopt(m_easy, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
}

void Transfer::SetDeadline(std::chrono::steady_clock::time_point deadline) {
  using std::chrono::milliseconds;
  const NetOptions& options = m_session->options();
  const auto left = std::chrono::duration_cast<milliseconds>(deadline - std::chrono::steady_clock::now());
  // libcurl reads 0 as "no limit": a deadline already past still gets a moment, and fails then.
  const long total = static_cast<long>(std::max<milliseconds>(std::min(left, options.transferDeadline), milliseconds(1)).count());
  const long connect = std::min(total, static_cast<long>(options.connectTimeout.count()));
  curl_easy_setopt(m_easy, CURLOPT_TIMEOUT_MS, total);
  curl_easy_setopt(m_easy, CURLOPT_CONNECTTIMEOUT_MS, connect);
  curl_easy_setopt(m_easy, CURLOPT_ACCEPTTIMEOUT_MS, connect);
}

void Transfer::SetRequestHeaders(std::initializer_list<const char*> lines) {
  for (const char* line : lines) m_headers = curl_slist_append(m_headers, line);
  curl_easy_setopt(m_easy, CURLOPT_HTTPHEADER, m_headers);
}

void Transfer::Run(const std::function<bool()>& enough) {
  while (!m_done) {
    if (m_stop.stop_requested()) {
      Finish(CURLE_ABORTED_BY_CALLBACK);
      return;
    }
    int running = 0;
    const CURLMcode code = curl_multi_perform(m_multi, &running);
    if (code != CURLM_OK) {
      Finish(CURLE_OUT_OF_MEMORY);
      return;
    }
    int queued = 0;
    while (CURLMsg* message = curl_multi_info_read(m_multi, &queued)) {
      if (message->msg == CURLMSG_DONE && message->easy_handle == m_easy) Finish(message->data.result);
    }
    if (m_done || enough()) return;
    curl_multi_poll(m_multi, nullptr, 0, kPollMilliseconds, nullptr);
  }
}

void Transfer::Finish(CURLcode result) {
  m_done = true;
  m_result = result;
}

NetResult Transfer::Outcome() const {
  if (succeeded()) return {true, {}};
  if (!m_done) return {false, "transfer not finished"};
  if (m_result == CURLE_ABORTED_BY_CALLBACK && m_stop.stop_requested()) return {false, "cancelled"};
  if (m_overLimit || m_result == CURLE_FILESIZE_EXCEEDED) {
    return {false, "answer larger than " + std::to_string(m_maxBodyBytes) + " bytes", true};
  }
  // The text comes from the result and the server's reply code, not from libcurl's error buffer,
  // which can still hold an earlier message after an active-mode FTP transfer.
  std::string error = curl_easy_strerror(m_result);
  long response = 0;
  curl_easy_getinfo(m_easy, CURLINFO_RESPONSE_CODE, &response);
  if (response != 0) error += " (server reply " + std::to_string(response) + ")";
  return {false, std::move(error)};
}

size_t Transfer::OnBody(char* data, size_t size, size_t count, void* self) {
  auto* transfer = static_cast<Transfer*>(self);
  const std::string_view bytes(data, size * count);
  transfer->m_bodyBytes += bytes.size();
  if (transfer->m_maxBodyBytes != 0 && transfer->m_bodyBytes > transfer->m_maxBodyBytes) {
    transfer->m_overLimit = true;
    return 0;
  }
  if (transfer->m_sink) return transfer->m_sink(bytes) ? bytes.size() : 0;
  transfer->m_buffer.append(bytes);
  return bytes.size();
}

size_t Transfer::OnHeader(char* data, size_t size, size_t count, void* self) {
  auto* transfer = static_cast<Transfer*>(self);
  const std::string_view line(data, size * count);
  constexpr std::string_view kLocation = "location:";
  if (line.size() > kLocation.size() &&
      std::equal(kLocation.begin(), kLocation.end(), line.begin(),
                 [](char a, char b) { return a == std::tolower(static_cast<unsigned char>(b)); })) {
    transfer->m_sawLocation = true;
  }
  if (line != "\r\n" && line != "\n") return line.size();
  // The headers of a redirect that is followed are not the answer's: the answer comes after them.
  long code = 0;
  curl_easy_getinfo(transfer->m_easy, CURLINFO_RESPONSE_CODE, &code);
  const bool followed = transfer->m_followRedirects && transfer->m_sawLocation && code >= 300 && code < 400;
  transfer->m_sawLocation = false;
  if (!followed) transfer->m_headersDone = true;
  return line.size();
}

}  // namespace gavelscope::net
