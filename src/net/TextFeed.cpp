// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "net/TextFeed.h"

#include "net/Session.h"
#include "net/Transfer.h"

namespace gavelscope::net {

namespace {

constexpr long kFeedChunkBytes = 4096;

// Opening completes once the server has started its answer. A transfer that breaks after that
// has opened; the break shows when the lines are read.
NetResult OpenTransfer(Transfer& transfer) {
  transfer.Run([&transfer] { return transfer.responseStarted(); });
  if (transfer.done() && !transfer.succeeded() && !transfer.responseStarted()) return transfer.Outcome();
  return {true, {}};
}

}  // namespace

TextFeed::TextFeed(std::unique_ptr<Transfer> transfer, std::size_t maxLineBytes)
    : m_transfer(std::move(transfer)), m_maxLineBytes(maxLineBytes) {}

TextFeed::~TextFeed() = default;

bool TextFeed::ReadLine(std::string& line) {
  if (m_failed) return false;
  std::string& buffer = m_transfer->buffer();
  // Bytes already looked at are never looked at again, so a line costs its length however it
  // arrives, and a line that grows past the limit ends the feed instead of memory.
  std::size_t scanned = m_consumed;
  std::size_t feed = buffer.find('\n', scanned);
  const auto lineTooLong = [&] { return buffer.size() - m_consumed > m_maxLineBytes; };
  while (feed == std::string::npos && !m_transfer->done() && !lineTooLong()) {
    m_transfer->Run([&] {
      feed = buffer.find('\n', scanned);
      scanned = buffer.size();
      return feed != std::string::npos || lineTooLong();
    });
    if (feed == std::string::npos) feed = buffer.find('\n', scanned);
  }
  if (feed != std::string::npos && feed - m_consumed > m_maxLineBytes) feed = std::string::npos;
  if (feed == std::string::npos) {
    // The resource has ended. A last line without a line feed still counts, unless the transfer
    // broke off or went over a limit: then it may be cut short, and the feed ends at the last
    // complete line.
    if (lineTooLong() || !m_transfer->succeeded()) m_failed = true;
    if (m_failed || m_consumed >= buffer.size()) return false;
    feed = buffer.size();
  }
  line.assign(buffer, m_consumed, feed - m_consumed);
  m_consumed = feed + 1;
  if (m_consumed >= buffer.size()) {
    buffer.clear();
    m_consumed = 0;
  } else if (m_consumed > kFeedChunkBytes && m_consumed * 2 > buffer.size()) {
    buffer.erase(0, m_consumed);
    m_consumed = 0;
  }
  return true;
}

long TextFeed::responseCode() const {
  long code = 0;
  curl_easy_getinfo(m_transfer->handle(), CURLINFO_RESPONSE_CODE, &code);
  return code;
}

FeedOpenResult OpenTextFeed(const std::shared_ptr<Session>& session, std::string_view url, std::stop_token stop) {
  auto transfer = std::make_unique<Transfer>(session, url, std::move(stop));
  transfer->SetReadChunkSize(kFeedChunkBytes);
  transfer->SetMaxBodyBytes(session->options().maxFeedBytes);
  transfer->FollowRedirects();
  // curl keeps connections alive and caches nothing, which is what these lists need; the headers
  // replace curl's own Accept and add the user agent the vendor's server expects.
  transfer->SetRequestHeaders({"Accept: text", "User-Agent: HTML Get Sample"});
  const NetResult opened = OpenTransfer(*transfer);
  if (!opened) return {nullptr, opened.error};
  return {std::make_unique<TextFeed>(std::move(transfer), session->options().maxLineBytes), {}};
}

NetResult ProbeUrl(const std::shared_ptr<Session>& session, std::string_view url, std::stop_token stop) {
  Transfer transfer(session, url, std::move(stop));
  transfer.SetRequestHeaders({"Accept:"});
  return OpenTransfer(transfer);
}

}  // namespace gavelscope::net
