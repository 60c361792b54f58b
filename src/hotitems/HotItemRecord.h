// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace gavelscope::hotitems {

// One hot item: what the item lists show in a row and what the history file keeps of it.
class CHotItemRecord {
 public:
  virtual ~CHotItemRecord() = default;

  std::string GetTitle() const { return m_title; }
  std::string GetItemLink() const { return m_itemLink; }
  std::string GetBids() const { return m_bids; }
  std::string GetPrice() const { return m_price; }
  std::string GetEnding() const { return m_ending; }
  std::int32_t GetRow() const { return m_row; }

  void SetTitle(std::string title) { m_title = std::move(title); }
  void SetItemLink(std::string link) { m_itemLink = std::move(link); }
  void SetBids(std::string bids) { m_bids = std::move(bids); }
  void SetPrice(std::string price) { m_price = std::move(price); }
  // Stored without white space at either end.
  void SetEnding(std::string_view ending);
  void SetRow(std::int32_t row) { m_row = row; }

 private:
  std::string m_title;
  std::string m_itemLink;
  std::string m_bids;
  std::string m_price;
  std::string m_ending;
  std::int32_t m_row = -1;
};

struct CalendarDate {
  int day = 1;
  int month = 1;
  int year = 1970;
};

// One line of the history file: link~|~date~|~title~|~price~|~bids~|~ (without its line end). Each
// field needs its own following separator; missing ones, and every one after, are empty.
CHotItemRecord ParseHistoryLine(std::string_view line);
// The record as one history line, dated DD/MM/YYYY, CR LF included.
std::string FormatHistoryLine(const CHotItemRecord& record, const CalendarDate& date);
// Items priced in pounds belong to the UK site.
bool IsSiteUK(const CHotItemRecord& record);
// Only items with more than 30 bids go into the shared history.
bool IsHistoryWorthy(const CHotItemRecord& record);

}  // namespace gavelscope::hotitems
