// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "sites/CategoryAnchors.h"

#include "base/TextHelpers.h"
#include "net/NetOptions.h"

namespace gavelscope::sites {

using base::DecodeEntities;
using base::ExtractBetween;
using base::Find;
using base::LastIndexOfCharBefore;

void ParseCategoryAnchors(std::string_view page, std::vector<std::string>& names, std::vector<std::string>& links) {
  static constexpr std::string_view kNameEnd = "</b></a> (";
  static constexpr std::string_view kAnchorStart = "<a href=\"";
  int pos = Find(page, kNameEnd, 0);
  while (pos != -1 && names.size() < net::limits::kMaxCategories) {
    // Both backward searches look for the last '<' only: the "<b>" of the name, then the anchor.
    const int nameStart = LastIndexOfCharBefore(page, "<b>", pos);
    std::string name = ExtractBetween(page, nameStart + 3, pos);
    DecodeEntities(name);
    names.push_back(std::move(name));
    const int anchor = LastIndexOfCharBefore(page, kAnchorStart, nameStart);
    const int anchorTextStart = Find(page, "<b>", anchor);
    links.push_back(ExtractBetween(page, anchor + static_cast<int>(kAnchorStart.size()), anchorTextStart - 3));
    pos = Find(page, kNameEnd, pos + 1);
  }
}

}  // namespace gavelscope::sites
