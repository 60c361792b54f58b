// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "net/Session.h"

#include <curl/curl.h>

namespace gavelscope::net {

namespace {

// libcurl's global set-up must run once before any handle exists; a function-local static makes
// that happen on first use, whichever thread gets there first.
void EnsureCurlInitialised() {
  static const bool initialised = [] {
    curl_global_init(CURL_GLOBAL_DEFAULT);
    return true;
  }();
  (void)initialised;
}

}  // namespace

std::shared_ptr<Session> Session::Create(NetOptions options) {
  EnsureCurlInitialised();
  return std::shared_ptr<Session>(new Session(std::move(options)));
}

Session::Session(NetOptions options) : m_options(std::move(options)) {
  for (const auto& mapping : m_options.connectTo) m_connectTo = curl_slist_append(m_connectTo, mapping.c_str());
}

Session::~Session() {
  for (void* cache : m_idleCaches) curl_multi_cleanup(static_cast<CURLM*>(cache));
  curl_slist_free_all(m_connectTo);
}

void* Session::AcquireCache() {
  {
    std::lock_guard lock(m_mutex);
    if (!m_idleCaches.empty()) {
      void* cache = m_idleCaches.back();
      m_idleCaches.pop_back();
      return cache;
    }
  }
  return curl_multi_init();
}

void Session::ReleaseCache(void* cache) {
  if (cache == nullptr) return;
  std::lock_guard lock(m_mutex);
  m_idleCaches.push_back(cache);
}

}  // namespace gavelscope::net
