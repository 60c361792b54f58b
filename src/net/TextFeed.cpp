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

TextFeed::TextFeed(std::unique_ptr<Transfer> transfer) : m_transfer(std::move(transfer)) {}

TextFeed::~TextFeed() = default;

bool TextFeed::ReadLine(std::string& line) {
  std::string& buffer = m_transfer->buffer();
  std::size_t scanned = m_consumed;
  std::size_t feed = buffer.find('\n', scanned);
  while (feed == std::string::npos && !m_transfer->done()) {
    scanned = buffer.size();
    m_transfer->Run([&] { return buffer.find('\n', scanned) != std::string::npos; });
    feed = buffer.find('\n', scanned);
  }
  if (feed == std::string::npos) {
    // The resource has ended. A last line without a line feed still counts, unless the transfer
    // broke off: then it may be cut short, and the feed ends at the last complete line.
    if (!m_transfer->succeeded()) m_failed = true;
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
  // curl keeps connections alive and caches nothing, which is what these lists need; the headers
  // replace curl's own Accept and add the user agent the vendor's server expects.
  transfer->SetRequestHeaders({"Accept: text", "User-Agent: HTML Get Sample"});
  const NetResult opened = OpenTransfer(*transfer);
  if (!opened) return {nullptr, opened.error};
  return {std::make_unique<TextFeed>(std::move(transfer)), {}};
}

NetResult ProbeUrl(const std::shared_ptr<Session>& session, std::string_view url, std::stop_token stop) {
  Transfer transfer(session, url, std::move(stop));
  return OpenTransfer(transfer);
}

}  // namespace gavelscope::net
