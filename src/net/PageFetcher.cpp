// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "net/PageFetcher.h"

#include <algorithm>

#include "net/Session.h"
#include "net/Transfer.h"

namespace gavelscope::net {

namespace {

constexpr long kPageChunkBytes = 6000;

}  // namespace

PageResult FetchPageText(const std::shared_ptr<Session>& session, std::string_view url, std::stop_token stop) {
  PageResult result;
  Transfer transfer(session, url, std::move(stop));
  transfer.SetReadChunkSize(kPageChunkBytes);
  transfer.SetMaxBodyBytes(session->options().maxPageBytes);
  transfer.FollowRedirects();
  // A page is asked for with no request header of ours; curl's own Accept goes too.
  transfer.SetRequestHeaders({"Accept:"});
  transfer.SetBodySink([&result](std::string_view bytes) {
    std::size_t start = 0;
    while (start < bytes.size()) {
      std::size_t feed = bytes.find('\n', start);
      if (feed == std::string_view::npos) feed = bytes.size();
      result.text.append(bytes.substr(start, feed - start));
      start = feed + 1;
    }
    return true;
  });
  transfer.RunToEnd();
  result.outcome = transfer.Outcome();
  return result;
}

SharedSession::SharedSession(NetOptions options)
    : m_options(std::move(options)), m_session(Session::Create(m_options)) {}

std::shared_ptr<Session> SharedSession::Current() const {
  std::lock_guard lock(m_mutex);
  return m_session;
}

std::string SharedSession::GetPageText(std::string_view url, std::stop_token stop) {
  const std::shared_ptr<Session> session = Current();
  PageResult page = FetchPageText(session, url, std::move(stop));
  if (!page.outcome) RenewAfterFailureOf(session);
  return std::move(page.text);
}

void SharedSession::RenewAfterFailureOf(const std::shared_ptr<Session>& failed) {
  std::lock_guard lock(m_mutex);
  // Two fetches failing together renew once: the second finds the session already replaced.
  if (m_session == failed) m_session = Session::Create(m_options);
}

}  // namespace gavelscope::net
