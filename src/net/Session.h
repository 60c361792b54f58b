// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "net/NetOptions.h"

struct curl_slist;

namespace gavelscope::net {

// An internet session: the connection settings and the kept-alive connections of its transfers.
// Several threads may run transfers on one session at once. Each transfer borrows a connection cache
// of its own from the session and returns it afterwards, so sequential requests reuse connections
// while concurrent ones never share a cache.
class Session : public std::enable_shared_from_this<Session> {
 public:
  static std::shared_ptr<Session> Create(NetOptions options);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  const NetOptions& options() const { return m_options; }
  curl_slist* connectToList() const { return m_connectTo; }

  // For transfers: take an idle connection cache (or a new one) and give it back when done.
  // (A cache is a libcurl multi handle, kept opaque here so that libcurl stays out of the headers.)
  void* AcquireCache();
  void ReleaseCache(void* cache);

 private:
  explicit Session(NetOptions options);

  NetOptions m_options;
  curl_slist* m_connectTo = nullptr;
  std::mutex m_mutex;
  std::vector<void*> m_idleCaches;
};

}  // namespace gavelscope::net
