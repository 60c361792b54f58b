// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "net/AddressCheck.h"

#include <curl/curl.h>

#include <memory>
#include <optional>
#include <string>

namespace gavelscope::net {

namespace {

struct UrlDeleter {
  void operator()(CURLU* url) const { curl_url_cleanup(url); }
};

struct CurlText {
  char* text = nullptr;
  ~CurlText() { curl_free(text); }
};

bool HasPart(CURLU* url, CURLUPart part) {
  CurlText value;
  return curl_url_get(url, part, &value.text, 0) == CURLUE_OK && value.text != nullptr;
}

std::string LowerCase(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) c = (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
  return lower;
}

// The host of a fetchable address, lower-cased; nothing when the address may not be fetched at all.
std::optional<std::string> FetchableHost(std::string_view address) {
  const std::unique_ptr<CURLU, UrlDeleter> url(curl_url());
  if (!url) return std::nullopt;
  // No scheme is guessed: every address we build names its own, and one without has lost it.
  if (curl_url_set(url.get(), CURLUPART_URL, std::string(address).c_str(), 0) != CURLUE_OK) return std::nullopt;
  CurlText scheme;
  if (curl_url_get(url.get(), CURLUPART_SCHEME, &scheme.text, 0) != CURLUE_OK) return std::nullopt;
  const std::string lowerScheme = LowerCase(scheme.text);
  if (lowerScheme != "http" && lowerScheme != "https") return std::nullopt;
  if (HasPart(url.get(), CURLUPART_USER) || HasPart(url.get(), CURLUPART_PASSWORD) ||
      HasPart(url.get(), CURLUPART_OPTIONS)) {
    return std::nullopt;
  }
  CurlText host;
  if (curl_url_get(url.get(), CURLUPART_HOST, &host.text, 0) != CURLUE_OK || host.text == nullptr) return std::nullopt;
  return LowerCase(host.text);
}

}  // namespace

bool IsAddressOnHost(std::string_view url, std::string_view host) {
  const std::optional<std::string> actual = FetchableHost(url);
  return actual && !host.empty() && *actual == LowerCase(host);
}

bool IsAddressUnderDomain(std::string_view url, std::string_view domainSuffix) {
  const std::optional<std::string> actual = FetchableHost(url);
  // The suffix starts with its dot, so "notebay.com" is not under ".ebay.com".
  return actual && domainSuffix.starts_with('.') && actual->size() > domainSuffix.size() &&
         actual->ends_with(LowerCase(domainSuffix));
}

}  // namespace gavelscope::net
