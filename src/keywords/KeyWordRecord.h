// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace gavelscope::keywords {

// One keyword of one category: the keyword, its search page, and the listing page of the category it
// was read for.
class CKeyWordRecord {
 public:
  virtual ~CKeyWordRecord() = default;

  std::string GetKeyword() const { return m_keyword; }
  std::string GetSearchLink() const { return m_searchLink; }
  std::string GetListingLink() const { return m_listingLink; }
  void SetKeyword(std::string keyword) { m_keyword = std::move(keyword); }
  void SetSearchLink(std::string link) { m_searchLink = std::move(link); }
  void SetListingLink(std::string link) { m_listingLink = std::move(link); }

 private:
  std::string m_listingLink;
  std::string m_searchLink;
  std::string m_keyword;
};

// A category's keywords in rank order (entry 0 is the top keyword). Records are shared so that a
// list still showing a row keeps it alive while the catalogue that read it is freed and reloaded.
using KeywordRecordPtr = std::shared_ptr<const CKeyWordRecord>;
using KeywordArray = std::vector<KeywordRecordPtr>;
// The top keyword of every sub-category, each keyword once, in tree order. Its records belong to the
// sub-categories' arrays.
using Top100Array = KeywordArray;

inline constexpr const char* kNoKnownKeywords = "*** No Known Keywords ***";

}  // namespace gavelscope::keywords
