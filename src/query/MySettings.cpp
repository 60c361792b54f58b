// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "query/MySettings.h"

#include "base/TextHelpers.h"

namespace gavelscope::query {

namespace {

constexpr std::int32_t kNotGiven = -1;

void Exchange(base::CArchive& archive, std::int32_t& value) {
  if (archive.IsStoring()) {
    archive.WriteInt32(value);
  } else {
    archive.ReadInt32(value);
  }
}

}  // namespace

void CMySettings::SetBidsGreaterThan(std::int32_t n) {
  if (n == kNotGiven) return;
  m_nBidsGreater = n;
  m_bBidsGreater = 1;
  m_bBidFilter = 1;
}

void CMySettings::SetBidsLessThan(std::int32_t n) {
  if (n == kNotGiven) return;
  m_nBidsLess = n;
  m_bBidsLess = 1;
  m_bBidFilter = 1;
}

void CMySettings::SetBidsRange(std::int32_t from, std::int32_t to) {
  if (from == kNotGiven || to == kNotGiven) return;
  m_nBidsFrom = from;
  m_nBidsTo = to;
  m_bBidsRange = 1;
  m_bBidFilter = 1;
}

void CMySettings::SetPriceGreaterThan(std::int32_t n) {
  if (n == kNotGiven) return;
  m_nPriceGreater = n;
  m_bPriceGreater = 1;
  m_bPriceFilter = 1;
}

void CMySettings::SetPriceLessThan(std::int32_t n) {
  if (n == kNotGiven) return;
  m_nPriceLess = n;
  m_bPriceLess = 1;
  m_bPriceFilter = 1;
}

void CMySettings::SetPriceRange(std::int32_t from, std::int32_t to) {
  if (from == kNotGiven || to == kNotGiven) return;
  m_nPriceFrom = from;
  m_nPriceTo = to;
  m_bPriceRange = 1;
  m_bPriceFilter = 1;
}

void CMySettings::SetDaysGreaterThan(std::int32_t n) {
  if (n == kNotGiven) return;
  m_nDaysGreater = n;
  m_bDaysGreater = 1;
  m_bDaysFilter = 1;
}

void CMySettings::SetDaysLessThan(std::int32_t n) {
  if (n == kNotGiven) return;
  m_nDaysLess = n;
  m_bDaysLess = 1;
  m_bDaysFilter = 1;
}

void CMySettings::SetDaysRange(std::int32_t from, std::int32_t to) {
  if (from == kNotGiven || to == kNotGiven) return;
  m_nDaysFrom = from;
  m_nDaysTo = to;
  m_bDaysRange = 1;
  m_bDaysFilter = 1;
}

void CMySettings::SetKeywords(std::string_view text) {
  m_strKeywords = base::TrimWhiteSpace(text);
}

std::int32_t CMySettings::Serialize(base::CArchive& archive) {
  std::int32_t count = static_cast<std::int32_t>(m_categories.size());
  Exchange(archive, count);
  for (std::int32_t* flag : {&m_bBidFilter, &m_bDaysFilter, &m_bPriceFilter, &m_bInternational}) {
    Exchange(archive, *flag);
  }
  if (archive.IsStoring()) {
    archive.WriteString(m_strKeywords);
  } else {
    archive.ReadString(m_strKeywords);
  }
  // The page depth is declared before the test flags, but query files keep it after the sort
  // flags; files already saved depend on that order.
  for (std::int32_t* field :
       {&m_bBidsGreater, &m_bBidsLess,      &m_bBidsRange, &m_bPriceGreater, &m_bPriceLess, &m_bPriceRange,
        &m_bDaysGreater, &m_bDaysLess,      &m_bDaysRange, &m_nBidsGreater,  &m_nBidsLess,  &m_nBidsFrom,
        &m_nBidsTo,      &m_nPriceGreater,  &m_nPriceLess, &m_nPriceFrom,    &m_nPriceTo,   &m_nDaysGreater,
        &m_nDaysLess,    &m_nDaysFrom,      &m_nDaysTo,    &m_bAscending,    &m_bSortPrice, &m_bSortBids,
        &m_bSortTitle,   &m_bSortDateEnded, &m_nPageDepth}) {
    Exchange(archive, *field);
  }
  return count;
}

}  // namespace gavelscope::query
