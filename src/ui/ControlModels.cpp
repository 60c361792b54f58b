// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "ui/ControlModels.h"

#include <QBrush>
#include <QColor>
#include <QFont>

#include "keywords/CategoryTree.h"

namespace gavelscope::ui {

using keywords::TreeItem;

QString FromPageText(const std::string& text) {
  // Windows-1252 is Latin-1 but for 0x80 to 0x9F, where it has the euro sign, curly quotes and
  // the like (0 marks the five bytes it leaves undefined).
  static constexpr char16_t kHighControls[32] = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                 0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                                                 0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};
  QString result(static_cast<qsizetype>(text.size()), Qt::Uninitialized);
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    const char16_t mapped = byte >= 0x80 && byte <= 0x9F ? kHighControls[byte - 0x80] : 0;
    result[static_cast<qsizetype>(i)] = QChar(mapped != 0 ? mapped : static_cast<char16_t>(byte));
  }
  return result;
}

CategoryTreeModel::CategoryTreeModel(keywords::CCategoryTree& tree, QObject* parent)
    : QAbstractItemModel(parent), m_tree(tree) {}

// An index carries its tree item handle as its internal id.
QModelIndex CategoryTreeModel::index(int row, int column, const QModelIndex& parent) const {
  if (column != 0 || row < 0) return {};
  const std::vector<TreeItem> items =
      parent.isValid() ? m_tree.ChildItems(static_cast<TreeItem>(parent.internalId())) : m_tree.RootItems();
  if (row >= static_cast<int>(items.size())) return {};
  return createIndex(row, 0, static_cast<quintptr>(items[static_cast<std::size_t>(row)]));
}

QModelIndex CategoryTreeModel::parent(const QModelIndex& child) const {
  if (!child.isValid()) return {};
  const TreeItem parentItem = m_tree.GetParentItem(static_cast<TreeItem>(child.internalId()));
  if (parentItem == keywords::kNoItem) return {};
  const std::vector<TreeItem> roots = m_tree.RootItems();
  for (std::size_t row = 0; row < roots.size(); ++row) {
    if (roots[row] == parentItem) return createIndex(static_cast<int>(row), 0, static_cast<quintptr>(parentItem));
  }
  return {};
}

int CategoryTreeModel::rowCount(const QModelIndex& parent) const {
  if (!parent.isValid()) return static_cast<int>(m_tree.RootItems().size());
  if (parent.column() != 0) return 0;
  return static_cast<int>(m_tree.ChildItems(static_cast<TreeItem>(parent.internalId())).size());
}

int CategoryTreeModel::columnCount(const QModelIndex&) const {
  return 1;
}

QVariant CategoryTreeModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const auto item = static_cast<TreeItem>(index.internalId());
  switch (role) {
    case Qt::DisplayRole:
      return FromPageText(m_tree.GetItemText(item));
    case Qt::ForegroundRole: {
      const std::int32_t colour = m_tree.GetItemColor(item);
      if (colour == keywords::kNoColour) return {};
      // Colour references are 0x00BBGGRR.
      return QBrush(QColor(colour & 0xFF, (colour >> 8) & 0xFF, (colour >> 16) & 0xFF));
    }
    case Qt::FontRole: {
      keywords::FontDescription description;
      if (!m_tree.GetItemFont(item, description)) return {};
      QFont font(QString::fromLatin1(description.faceName.c_str()));
      font.setPixelSize(description.height > 0 ? description.height : 13);
      font.setBold(description.weight >= 700 || m_tree.GetItemBold(item));
      font.setItalic(description.italic);
      return font;
    }
    default:
      return {};
  }
}

void CategoryTreeModel::Refresh() {
  beginResetModel();
  endResetModel();
}

RowsModel::RowsModel(QStringList headers, std::function<int()> rowCount, std::function<std::string(int, int)> cell,
                     QObject* parent)
    : QAbstractTableModel(parent),
      m_headers(std::move(headers)),
      m_rowCount(std::move(rowCount)),
      m_cell(std::move(cell)) {}

int RowsModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : m_rowCount();
}

int RowsModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(m_headers.size());
}

QVariant RowsModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  if (role == Qt::TextAlignmentRole) return Qt::AlignCenter;
  if (role != Qt::DisplayRole) return {};
  return FromPageText(m_cell(index.row(), index.column()));
}

QVariant RowsModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section >= m_headers.size()) return {};
  return m_headers[section];
}

void RowsModel::Refresh() {
  beginResetModel();
  endResetModel();
}

}  // namespace gavelscope::ui
