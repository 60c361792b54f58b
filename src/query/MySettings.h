// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/Archive.h"

namespace gavelscope::query {

// One hot item query as the query dialog saves and loads it. The dialog reads the fields directly
// and fills them only through the setters, which is why -1 ("bound not given") never lands in a
// bound: a setter handed -1 leaves the object as it was.
class CMySettings {
 public:
  static constexpr const char* kClassName = "CMySettings";
  // Schema 2, marked versionable.
  static constexpr std::uint32_t kSchema = 0x80000002;

  virtual ~CMySettings() = default;

  void SetBidsGreaterThan(std::int32_t n);
  void SetBidsLessThan(std::int32_t n);
  void SetBidsRange(std::int32_t from, std::int32_t to);
  void SetPriceGreaterThan(std::int32_t n);
  void SetPriceLessThan(std::int32_t n);
  void SetPriceRange(std::int32_t from, std::int32_t to);
  void SetDaysGreaterThan(std::int32_t n);
  void SetDaysLessThan(std::int32_t n);
  void SetDaysRange(std::int32_t from, std::int32_t to);
  // Stored without white space at either end.
  void SetKeywords(std::string_view text);
  void SetPageDepth(std::int32_t n) { m_nPageDepth = n; }
  // 1 for the USA site, 0 for the UK site.
  void SetCountry(std::int32_t international) { m_bInternational = international; }
  void SetCategories(std::vector<std::string> categories) { m_categories = std::move(categories); }
  void SetAscending(std::int32_t ascending) { m_bAscending = ascending; }
  void SetSortByPrice(std::int32_t sort) { m_bSortPrice = sort; }
  void SetSortByBids(std::int32_t sort) { m_bSortBids = sort; }
  void SetSortByTitle(std::int32_t sort) { m_bSortTitle = sort; }
  void SetSortByDateEnded(std::int32_t sort) { m_bSortDateEnded = sort; }

  std::string GetKeywords() const { return m_strKeywords; }

  // The fields in file order: the category count, the flags and keywords, the bounds and sort
  // flags, the page depth. The category objects that follow belong to the object layer of the
  // archive (they carry class records), so this returns their count instead: the size of
  // m_categories when storing, the count read when loading (negative when the file says so).
  virtual std::int32_t Serialize(base::CArchive& archive);

  bool operator==(const CMySettings&) const = default;

  std::vector<std::string> m_categories;
  std::int32_t m_bBidFilter = 0;
  std::int32_t m_bDaysFilter = 0;
  std::int32_t m_bPriceFilter = 0;
  std::int32_t m_bInternational = 0;
  std::string m_strKeywords;
  // Every path that saves a query sets this first; 0 only marks an object nobody filled.
  std::int32_t m_nPageDepth = 0;
  std::int32_t m_bBidsGreater = 0;
  std::int32_t m_bBidsLess = 0;
  std::int32_t m_bBidsRange = 0;
  std::int32_t m_bPriceGreater = 0;
  std::int32_t m_bPriceLess = 0;
  std::int32_t m_bPriceRange = 0;
  std::int32_t m_bDaysGreater = 0;
  std::int32_t m_bDaysLess = 0;
  std::int32_t m_bDaysRange = 0;
  std::int32_t m_nBidsGreater = -1;
  std::int32_t m_nBidsLess = -1;
  std::int32_t m_nBidsFrom = -1;
  std::int32_t m_nBidsTo = -1;
  std::int32_t m_nPriceGreater = -1;
  std::int32_t m_nPriceLess = -1;
  std::int32_t m_nPriceFrom = -1;
  std::int32_t m_nPriceTo = -1;
  std::int32_t m_nDaysGreater = -1;
  std::int32_t m_nDaysLess = -1;
  std::int32_t m_nDaysFrom = -1;
  std::int32_t m_nDaysTo = -1;
  std::int32_t m_bAscending = 1;
  std::int32_t m_bSortPrice = 0;
  std::int32_t m_bSortBids = 0;
  std::int32_t m_bSortTitle = 0;
  std::int32_t m_bSortDateEnded = 0;
};

}  // namespace gavelscope::query
