// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "auctions/AuctionRecord.h"
#include "base/Browser.h"
#include "base/ListControl.h"
#include "base/UserMessages.h"
#include "net/NetOptions.h"
#include "sites/ListingLinks.h"

namespace gavelscope::auctions {

// One row of an auction list: sub-category name (column 0) and count text (column 1), with the
// record that holds its listing link.
struct AuctionListRow {
  std::string name;
  std::string count;
  std::shared_ptr<const CAuctionRecord> record;
};

// The auction list of one Site, headless: its rows, the selection mark, and every command of the
// view.
class CAuctionListCtrl : public base::CListControl<AuctionListRow>, public base::IExportableList {
 public:
  CAuctionListCtrl(base::IBrowser& browser, base::IUserMessages& messages);

  // Largest count first, by the count text's leading number ("25,487" counts as 25, "" as 0);
  // rows of equal count keep their order.
  void SortByCount();
  // The list keeps the order of the count threads' sort: a header click changes nothing.
  void OnHeaderClick(int /*column*/) {}
  std::string ExportText() const override;
  base::Outcome Export(const std::filesystem::path& file) override;

  // The marked row's listing page, in a view; nothing without a marked row.
  void OpenView(sites::ListingView view);
  void OnDoubleClick() { OpenView(sites::ListingView::Current); }

 private:
  std::string SearchText(const AuctionListRow& row) const override { return row.name; }

  base::IBrowser& m_browser;
};

// The number a count text starts with, read as C's atoi reads it.
int CountValue(std::string_view count);

}  // namespace gavelscope::auctions
