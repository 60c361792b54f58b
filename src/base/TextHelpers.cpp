// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "base/TextHelpers.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace gavelscope::base {

namespace {

int Length(std::string_view text) {
  return static_cast<int>(text.size());
}

char UpperAscii(char c) {
  return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c;
}

}  // namespace

int Find(std::string_view text, std::string_view needle, int from) {
  if (from < 0 || from > Length(text)) return -1;
  const auto at = text.find(needle, static_cast<std::size_t>(from));
  return at == std::string_view::npos ? -1 : static_cast<int>(at);
}

std::string ExtractBetween(std::string_view text, int a, int b) {
  // Evaluated as "first b, then last b - a" without copying the prefix: scanners call this once per
  // row of a page, and a prefix copy per call would make a page scan quadratic.
  if (b < 0) return {};
  const int prefix = std::min(b, Length(text));
  if (b - a <= 0) return {};
  const int keep = std::min(b - a, prefix);
  return std::string(text.substr(static_cast<std::size_t>(prefix - keep), static_cast<std::size_t>(keep)));
}

int LastIndexOfCharBefore(std::string_view text, std::string_view needle, int pos) {
  if (needle.empty()) return -1;
  const int n = Length(text);
  const int limit = (pos == -1 || pos >= n) ? n - 1 : pos;
  const std::string_view searched = limit > 0 ? text.substr(0, static_cast<std::size_t>(limit)) : text;
  const auto at = searched.rfind(needle.front());
  return at == std::string_view::npos ? -1 : static_cast<int>(at);
}

void ReplaceAll(std::string& text, std::string_view from, std::string_view to) {
  if (from.empty()) return;
  std::size_t at = text.find(from);
  if (at == std::string::npos) return;
  if (to.size() <= from.size()) {
    // Shortened in place, without a second buffer: the scanners do this to every row they cut. The
    // write position never passes the read position, so every move goes towards the front.
    char* const data = text.data();
    std::size_t write = at;
    std::size_t read = at;
    while (at != std::string::npos) {
      std::memmove(data + write, data + read, at - read);
      write += at - read;
      if (!to.empty()) std::memcpy(data + write, to.data(), to.size());
      write += to.size();
      read = at + from.size();
      at = text.find(from, read);
    }
    std::memmove(data + write, data + read, text.size() - read);
    text.resize(write + text.size() - read);
    return;
  }
  std::string out;
  out.reserve(text.size());
  std::size_t done = 0;
  while (at != std::string::npos) {
    out.append(text, done, at - done);
    out.append(to);
    done = at + from.size();
    at = text.find(from, done);
  }
  out.append(text, done, std::string::npos);
  text.swap(out);
}

void DecodeEntities(std::string& text) {
  // The order matters: "&amp;" goes after the numeric references, so "&amp;#39;" becomes "&#39;".
  static constexpr std::array<std::pair<std::string_view, std::string_view>, 9> kReplacements{{
      {"&#34;", "\""},
      {"&#38;", "&"},
      {"&#39;", "'"},
      {"<wbr>", ""},
      {"</wbr>", ""},
      {"<b>", ""},
      {"</b>", ""},
      {"&amp;", "&"},
      {"&quot;", "\""},
  }};
  // Two memchr calls: find_first_of would test every byte against the set one call at a time.
  if (text.find('&') == std::string::npos && text.find('<') == std::string::npos) return;
  for (const auto& [from, to] : kReplacements) ReplaceAll(text, from, to);
}

std::string_view TrimWhiteSpace(std::string_view text) {
  constexpr std::string_view kWhiteSpace = " \t\r\n\v\f";
  const auto first = text.find_first_not_of(kWhiteSpace);
  if (first == std::string_view::npos) return {};
  const auto last = text.find_last_not_of(kWhiteSpace);
  return text.substr(first, last - first + 1);
}

bool ContainsNoCase(std::string_view text, std::string_view word) {
  if (word.empty()) return true;
  const auto equal = [](char x, char y) { return UpperAscii(x) == UpperAscii(y); };
  return std::search(text.begin(), text.end(), word.begin(), word.end(), equal) != text.end();
}

}  // namespace gavelscope::base
