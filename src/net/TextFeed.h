// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <memory>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "net/NetOptions.h"

namespace gavelscope::net {

class Session;
class Transfer;

// An open text resource read line by line. Closing a feed is destroying it.
class TextFeed {
 public:
  TextFeed(std::unique_ptr<Transfer> transfer, std::size_t maxLineBytes);
  ~TextFeed();
  TextFeed(const TextFeed&) = delete;
  TextFeed& operator=(const TextFeed&) = delete;

  // The next line without its line feed (a carriage return before it stays); false at the end.
  // A failure while reading, a line longer than the session's limit or a feed longer than its
  // limit ends the feed after the last complete line; failed() then tells.
  bool ReadLine(std::string& line);
  bool failed() const { return m_failed; }
  // The server's reply code (an HTTP status), 0 when none came. A feed opens on any answer, a
  // "404 Not Found" page included; callers that need the resource itself look here.
  long responseCode() const;

 private:
  std::unique_ptr<Transfer> m_transfer;
  std::size_t m_maxLineBytes;
  std::size_t m_consumed = 0;
  bool m_failed = false;
};

struct FeedOpenResult {
  std::unique_ptr<TextFeed> feed;  // null when the open failed
  std::string error;
};

// Opens url with the two request header lines of the vendor's list readers, following redirects
// (see Transfer::FollowRedirects). Nothing is cached:
// the vendor updates the lists in place. Connections are kept alive for the session's next feed.
// The open completes when the server has answered; a failure up to then leaves no feed open.
FeedOpenResult OpenTextFeed(const std::shared_ptr<Session>& session, std::string_view url, std::stop_token stop);

// Opens url with no request header of ours and closes it again without reading: true when the
// server answered.
NetResult ProbeUrl(const std::shared_ptr<Session>& session, std::string_view url, std::stop_token stop);

}  // namespace gavelscope::net
