// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "auctions/AuctionListCtrl.h"

#include <cstdlib>
#include <functional>

namespace gavelscope::auctions {

int CountValue(std::string_view count) {
  return std::atoi(std::string(count).c_str());
}

CAuctionListCtrl::CAuctionListCtrl(base::IBrowser& browser, base::IUserMessages& messages)
    : CListControl(messages), m_browser(browser) {}

void CAuctionListCtrl::SortByCount() {
  SortRows([](const AuctionListRow& row) { return CountValue(row.count); }, std::greater<int>());
}

std::string CAuctionListCtrl::ExportText() const {
  std::string text = "\t\t\tTodays Auctions\r\n\r\nPosition\tCount\tAuction\r\n\r\n";
  std::size_t position = 0;
  ForEachRow([&](const AuctionListRow& row) {
    text += std::to_string(++position) + "\t\t" + row.count + "\t\t" + row.name + "\r\n";
  });
  return text;
}

base::Outcome CAuctionListCtrl::Export(const std::filesystem::path& file) {
  return base::ExportToFile(file, ExportText(), m_messages);
}

void CAuctionListCtrl::OpenView(sites::ListingView view) {
  const AuctionListRow row = MarkedRow();
  if (row.record) m_browser.OpenUrlInBrowser(sites::ViewLink(row.record->GetLink(), view));
}

}  // namespace gavelscope::auctions
