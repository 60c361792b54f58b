// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <string>
#include <string_view>

// The string operations every page scan is built from. Pages are single-byte text and indices count
// bytes; -1 stands for "not found", and a search that starts from -1 finds nothing, so a chain of
// searches fails safely once one link of it fails.
namespace gavelscope::base {

// Index of the first needle at or after `from`; -1 when there is none or `from` lies outside
// [0, length].
int Find(std::string_view text, std::string_view needle, int from);

// The first b characters of text, then the last b - a of those: text[a, b) for 0 <= a <= b <= length;
// empty for b < 0 or b <= a; a negative a counts as 0; a b beyond the end keeps the last b - a bytes.
std::string ExtractBetween(std::string_view text, int a, int b);

// Index of the last occurrence of needle's FIRST character within the first `limit` characters, where
// limit is length - 1 for pos == -1 or pos >= length and pos otherwise; a limit of 0 or less searches
// the whole text. -1 when there is none.
int LastIndexOfCharBefore(std::string_view text, std::string_view needle, int pos);

// Replaces, in this order: &#34; &#38; &#39; <wbr> </wbr> <b> </b> &amp; &quot;. Nothing else.
void DecodeEntities(std::string& text);

// True when the upper-cased word occurs in the upper-cased text (ASCII upper-casing, byte-wise).
bool ContainsNoCase(std::string_view text, std::string_view word);

// White space at both ends removed (space, tab, CR, LF, vertical tab, form feed).
std::string_view TrimWhiteSpace(std::string_view text);

// Every occurrence of `from` replaced by `to`, left to right, replaced text never rescanned.
void ReplaceAll(std::string& text, std::string_view from, std::string_view to);

}  // namespace gavelscope::base
