// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <QAbstractItemModel>
#include <QAbstractTableModel>
#include <QStringList>

#include <functional>
#include <string>

namespace gavelscope::keywords {
class CCategoryTree;
}

namespace gavelscope::ui {

// Single-byte page text (Windows-1252) as the window shows it.
QString FromPageText(const std::string& text);

// A category tree control as a Qt model: one node per item, with the item's colour and font. The
// model is reset on the window's thread whenever the control says it changed.
class CategoryTreeModel : public QAbstractItemModel {
 public:
  explicit CategoryTreeModel(keywords::CCategoryTree& tree, QObject* parent = nullptr);

  QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
  QModelIndex parent(const QModelIndex& child) const override;
  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  // Rereads everything from the control.
  void Refresh();

 private:
  keywords::CCategoryTree& m_tree;
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
  // Rereads everything from the control.
  void Refresh();

 private:
  QStringList m_headers;
  std::function<int()> m_rowCount;
  std::function<std::string(int, int)> m_cell;
};

}  // namespace gavelscope::ui
