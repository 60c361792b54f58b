// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <algorithm>
#include <deque>
#include <filesystem>
#include <functional>
#include <mutex>
#include <numeric>
#include <string>
#include <string_view>
#include <vector>

#include "base/ObservableControl.h"
#include "base/Outcome.h"
#include "base/UserMessages.h"

namespace gavelscope::base {

// What the window's search box does to the list of the visible tab.
class ISearchableList {
 public:
  virtual ~ISearchableList() = default;
  // Marks the next row after the selection mark whose text holds `word`, ignoring case, without
  // wrapping round; tells the user "Item Not Found !" when there is none (an empty list without a
  // mark says nothing).
  virtual void FindNext(std::string_view word) = 0;
};

// What the window's export button, and the command line, take from the visible tab.
class IExportableList {
 public:
  virtual ~IExportableList() = default;
  // The export file's whole content.
  virtual std::string ExportText() const = 0;
  // Writes ExportText() as the file's whole content, then tells the user it is done. A file that
  // cannot be written keeps what it had and the user is told nothing: the caller reports it.
  virtual Outcome Export(const std::filesystem::path& file) = 0;
};

// The search every list offers: from the row after `mark` (from the top when there is none) to the
// last row, the first row whose text holds `word`, ignoring case. kNoMatch when none does;
// kNothingToSearch for an empty list without a mark, which is not searched at all.
inline constexpr int kNoMatch = -1;
inline constexpr int kNothingToSearch = -2;
int SearchRows(std::size_t rowCount, int mark, std::string_view word,
               const std::function<std::string(std::size_t)>& textOf);

// Tells the user that a search found nothing.
void ReportNotFound(IUserMessages& messages);

// Writes an export and tells the user it is done (see IExportableList::Export).
Outcome ExportToFile(const std::filesystem::path& file, std::string_view bytes, IUserMessages& messages);

// The headless core of a list view: its rows, each a value that carries its record, and the
// selection mark, under one lock. A row goes in whole, in one locked step, so no view or sort ever
// sees half a row; the mark stays on the row it marks through inserts above it and through sorts,
// so what is highlighted, searched from and opened is the item the user picked. Safe to call from
// any thread; the observer hears of every change (see ObservableControl).
template <typename Row>
class CListControl : public ObservableControl, public ISearchableList {
 public:
  std::size_t RowCount() const {
    std::lock_guard lock(m_mutex);
    return m_rows.size();
  }
  // The row at `index`, or an empty row beyond the end.
  Row RowAt(std::size_t index) const {
    std::lock_guard lock(m_mutex);
    return index < m_rows.size() ? m_rows[index] : Row{};
  }
  std::vector<Row> Rows() const {
    std::lock_guard lock(m_mutex);
    return {m_rows.begin(), m_rows.end()};
  }

  // Inserts `row` at `index` (at the end when beyond it) and returns where it went.
  std::size_t InsertRow(std::size_t index, Row row) {
    std::size_t at = 0;
    {
      std::lock_guard lock(m_mutex);
      at = std::min(index, m_rows.size());
      m_rows.insert(m_rows.begin() + static_cast<std::ptrdiff_t>(at), std::move(row));
      if (m_mark >= 0 && static_cast<std::size_t>(m_mark) >= at) ++m_mark;
    }
    NotifyChanged();
    return at;
  }
  std::size_t AppendRow(Row row) { return InsertRow(static_cast<std::size_t>(-1), std::move(row)); }
  // Replaces every row; the mark goes.
  void Assign(std::vector<Row> rows) {
    {
      std::lock_guard lock(m_mutex);
      m_rows.assign(std::make_move_iterator(rows.begin()), std::make_move_iterator(rows.end()));
      m_mark = -1;
    }
    NotifyChanged();
  }
  // Drops every row, and with it every record only the list held.
  void Clear() { Assign({}); }

  // The row last selected by the user or by the search; -1 for none.
  int SelectionMark() const {
    std::lock_guard lock(m_mutex);
    return m_mark;
  }
  // A click on a row moves the mark there; a click beside the rows (-1, or a row that does not
  // exist) leaves it where it was, so the next search still starts after the user's row.
  void SetSelectionMark(int row) {
    {
      std::lock_guard lock(m_mutex);
      if (row < 0 || static_cast<std::size_t>(row) >= m_rows.size()) return;
      m_mark = row;
    }
    NotifyChanged();
  }
  // The marked row; an empty row when none is marked.
  Row MarkedRow() const {
    std::lock_guard lock(m_mutex);
    return m_mark >= 0 ? m_rows[static_cast<std::size_t>(m_mark)] : Row{};
  }

  void FindNext(std::string_view word) override {
    int found = kNoMatch;
    {
      std::lock_guard lock(m_mutex);
      found = SearchRows(m_rows.size(), m_mark, word, [this](std::size_t row) { return SearchText(m_rows[row]); });
      if (found >= 0) m_mark = found;
    }
    if (found == kNoMatch) ReportNotFound(m_messages);
    if (found >= 0) NotifyChanged();
  }

  // A right click on a row (-1: none) marks it; true when the row's menu is to be shown.
  bool ContextMenuAt(int row) {
    {
      std::lock_guard lock(m_mutex);
      if (row < 0 || static_cast<std::size_t>(row) >= m_rows.size()) return false;
      m_mark = row;
    }
    NotifyChanged();
    return true;
  }

 protected:
  explicit CListControl(IUserMessages& messages) : m_messages(messages) {}
  ~CListControl() = default;

  // The text the search looks in.
  virtual std::string SearchText(const Row& row) const = 0;

  // Reorders the rows by `less` (a stable sort, so equal rows keep their order) under the lock; the
  // mark stays on its row. `keyOf` is taken once per row, so `less` compares prepared keys.
  template <typename KeyOf, typename Less>
  void SortRows(KeyOf keyOf, Less less) {
    {
      std::lock_guard lock(m_mutex);
      std::vector<decltype(keyOf(m_rows.front()))> keys;
      keys.reserve(m_rows.size());
      for (const Row& row : m_rows) keys.push_back(keyOf(row));
      std::vector<std::size_t> order(m_rows.size());
      std::iota(order.begin(), order.end(), std::size_t{0});
      std::stable_sort(order.begin(), order.end(),
                       [&](std::size_t x, std::size_t y) { return less(keys[x], keys[y]); });
      std::deque<Row> sorted;
      int mark = -1;
      for (std::size_t position = 0; position < order.size(); ++position) {
        if (static_cast<int>(order[position]) == m_mark) mark = static_cast<int>(position);
        sorted.push_back(std::move(m_rows[order[position]]));
      }
      m_rows.swap(sorted);
      m_mark = mark;
    }
    NotifyChanged();
  }

  // Runs `read` over the rows under the lock, for exports and the like.
  template <typename Read>
  void ForEachRow(Read read) const {
    std::lock_guard lock(m_mutex);
    for (const Row& row : m_rows) read(row);
  }

  IUserMessages& m_messages;

 private:
  mutable std::mutex m_mutex;
  // A deque: query jobs insert each row at their own row count, near the front, and a vector would
  // move every row behind it for each one.
  std::deque<Row> m_rows;
  int m_mark = -1;
};

}  // namespace gavelscope::base
