// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
//
// An item page, fetched when the user opens a page linked from it (bid history, the seller's other
// items, the seller's feedback); the link read from it goes to the browser.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "sites/ItemPage.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace gavelscope::sites;
  const std::string_view page(reinterpret_cast<const char*>(data), size);
  for (LinkedPage which : {LinkedPage::BidHistory, LinkedPage::SellersOtherItems, LinkedPage::SellerFeedback}) {
    for (bool uk : {true, false}) (void)LinkedPageUrl(page, which, uk);
  }
  return 0;
}
