// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <string>

namespace gavelscope::auctions {

// The sub-category listing link of an auction list row, exactly as the page wrote it.
class CAuctionRecord {
 public:
  explicit CAuctionRecord(std::string subcategoryLink) : m_subcategoryLink(std::move(subcategoryLink)) {}
  virtual ~CAuctionRecord() = default;

  std::string GetLink() const { return m_subcategoryLink; }

 private:
  std::string m_subcategoryLink;
};

}  // namespace gavelscope::auctions
