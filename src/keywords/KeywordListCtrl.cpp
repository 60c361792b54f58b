// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "keywords/KeywordListCtrl.h"

namespace gavelscope::keywords {

std::string SortedLink(std::string_view searchLink, SortOrder order) {
  std::string link(searchLink);
  switch (order) {
    case SortOrder::EndingFirst:
      return link + "_W0QQsosortpropertyZ1";
    case SortOrder::NewlyListed:
      return link + "_W0QQsosortorderZ2QQsosortpropertyZ2";
    case SortOrder::LowestPriced:
      return link + "_W0QQsosortpropertyZ3";
    case SortOrder::HighestPrice:
      return link + "_W0QQsosortorderZ2QQsosortpropertyZ3";
  }
  return link;
}

CKeywordListCtrl::CKeywordListCtrl(base::IBrowser& browser, base::IUserMessages& messages)
    : CListControl(messages), m_browser(browser) {}

void CKeywordListCtrl::OnDoubleClick() {
  if (const KeywordRecordPtr record = MarkedRow()) m_browser.OpenUrlInBrowser(record->GetSearchLink());
}

void CKeywordListCtrl::OpenSorted(SortOrder order) {
  if (const KeywordRecordPtr record = MarkedRow())
    m_browser.OpenUrlInBrowser(SortedLink(record->GetSearchLink(), order));
}

}  // namespace gavelscope::keywords
