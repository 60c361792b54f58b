// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <memory>
#include <mutex>
#include <stop_token>
#include <string>
#include <string_view>

#include "net/NetOptions.h"

namespace gavelscope::net {

class Session;

struct PageResult {
  std::string text;  // what was read, with every line feed removed
  NetResult outcome;
};

// Fetches a whole page as one line, with no request header of ours and following redirects (see
// Transfer::FollowRedirects): the scanners look for markers that never span a line break, so
// line feeds are dropped as the page arrives (a carriage return stays, as it does in a read line).
PageResult FetchPageText(const std::shared_ptr<Session>& session, std::string_view url, std::stop_token stop);

// A session several threads fetch pages through, renewed after a failed fetch. A renewal only swaps
// which session later fetches get; a fetch still running keeps the session it started on alive.
class SharedSession {
 public:
  explicit SharedSession(NetOptions options);

  std::shared_ptr<Session> Current() const;

  // The whole page at url, or what was read before a failure (usually nothing). Never fails towards
  // the caller; a failure renews the session.
  std::string GetPageText(std::string_view url, std::stop_token stop);

 private:
  void RenewAfterFailureOf(const std::shared_ptr<Session>& failed);

  NetOptions m_options;
  mutable std::mutex m_mutex;
  std::shared_ptr<Session> m_session;
};

}  // namespace gavelscope::net
