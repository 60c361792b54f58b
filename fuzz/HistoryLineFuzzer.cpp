// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
//
// The shared hot item history is written by every copy of the program and fetched from the
// vendor's FTP server; its lines go into the two history lists, which then sort them.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "FuzzFakes.h"
#include "FuzzLines.h"
#include "hotitems/HotItemRecord.h"
#include "hotitems/ItemListCtrl.h"
#include "hotitems/LoadHotItemsThread.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace gavelscope;
  using hotitems::CItemListCtrl;
  fuzz::NullBrowser browser;
  fuzz::NullMessages messages;
  fuzz::NullPages pages;
  // Both date orders: the sort reads dates as the user's locale writes them.
  CItemListCtrl usa(hotitems::ItemListVariant::HistoryUSA, browser, messages, pages, hotitems::DateOrder::MonthFirst);
  CItemListCtrl uk(hotitems::ItemListVariant::HistoryUK, browser, messages, pages, hotitems::DateOrder::DayFirst);
  std::string word;
  fuzz::ForEachLine(std::string_view(reinterpret_cast<const char*>(data), size), [&](std::string_view line) {
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    const auto record = hotitems::AddHistoryLine(line, usa, uk);
    (void)hotitems::IsHistoryWorthy(*record);
    if (word.empty()) word = record->GetTitle().substr(0, 4);
  });
  for (CItemListCtrl* list : {&usa, &uk}) {
    for (int column = 0; column < CItemListCtrl::kColumnCount; ++column) {
      list->SortItems(column, true);
      list->SortItems(column, false);
    }
    list->FindNext(word);
    (void)list->ExportText();
  }
  return 0;
}
