// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <QAbstractItemModel>
#include <QAbstractTableModel>
#include <QStringList>

#include <functional>
#include <string>
#include <vector>

#include "keywords/CategoryTree.h"

namespace gavelscope::ui {

// Single-byte page text (Windows-1252) as the window shows it.
QString FromPageText(const std::string& text);
// What the user typed, as single-byte Windows-1252 text to compare with page text; a character
// the code page lacks becomes '?'.
std::string ToPageText(const QString& text);

// A category tree control as a Qt model: one node per item, with the item's colour and font. The
// window refreshes it on its own thread whenever the control says it changed.
class CategoryTreeModel : public QAbstractItemModel {
 public:
  explicit CategoryTreeModel(keywords::CCategoryTree& tree, QObject* parent = nullptr);

  static keywords::TreeItem ItemOf(const QModelIndex& index) {
    return index.isValid() ? static_cast<keywords::TreeItem>(index.internalId()) : keywords::kNoItem;
  }
  // Invalid for kNoItem and for items the control no longer has.
  QModelIndex IndexOf(keywords::TreeItem item) const;

  QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
  QModelIndex parent(const QModelIndex& child) const override;
  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  // Rereads everything from the control. Only a change of the items themselves resets the model:
  // a reset would collapse the tree and drop the view's selection on every click.
  void Refresh();

 private:
  // Every root followed by its child count and its children, in order.
  std::vector<keywords::TreeItem> Shape() const;

  keywords::CCategoryTree& m_tree;
  std::vector<keywords::TreeItem> m_shape;
};

// A list control as a Qt table model, read through two functions so that one model serves the
// keyword, auction and item lists.
class RowsModel : public QAbstractTableModel {
 public:
  RowsModel(QStringList headers, std::function<int()> rowCount, std::function<std::string(int, int)> cell,
            QObject* parent = nullptr);

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
  // Rereads everything from the control; the model is reset only when the row count changed, so
  // that a moved selection mark or a sort keeps the view's selection and scroll position.
  void Refresh();

 private:
  QStringList m_headers;
  std::function<int()> m_rowCount;
  std::function<std::string(int, int)> m_cell;
  int m_shownRows = 0;
};

}  // namespace gavelscope::ui
