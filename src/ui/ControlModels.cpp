// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "ui/ControlModels.h"

#include <QBrush>
#include <QColor>
#include <QFont>
#include <QFontMetricsF>

#include <algorithm>
#include <cmath>

namespace gavelscope::ui {

using keywords::TreeItem;

namespace {

// Windows-1252 is Latin-1 but for 0x80 to 0x9F, where it has the euro sign, curly quotes and the
// like (0 marks the five bytes it leaves undefined).
constexpr char16_t kHighControls[32] = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                        0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                                        0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                        0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

}  // namespace

std::string ToPageText(const QString& text) {
  std::string bytes;
  bytes.reserve(static_cast<std::size_t>(text.size()));
  for (const QChar character : text) {
    const char16_t code = character.unicode();
    char byte = '?';
    if (code < 0x80 || (code >= 0xA0 && code <= 0xFF)) {
      byte = static_cast<char>(code);
    } else {
      for (int i = 0; i < 32; ++i) {
        if (kHighControls[i] != 0 && kHighControls[i] == code) byte = static_cast<char>(0x80 + i);
      }
    }
    bytes.push_back(byte);
  }
  return bytes;
}

QString FromPageText(const std::string& text) {
  QString result(static_cast<qsizetype>(text.size()), Qt::Uninitialized);
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    const char16_t mapped = byte >= 0x80 && byte <= 0x9F ? kHighControls[byte - 0x80] : 0;
    result[static_cast<qsizetype>(i)] = QChar(mapped != 0 ? mapped : static_cast<char16_t>(byte));
  }
  return result;
}

namespace {

// A font description as a QFont that sets only what the description sets, so that it resolves
// against the view's font for the rest.
QFont FontFrom(const keywords::FontDescription& description) {
  QFont font;
  font.setFamily(QString::fromLatin1(description.faceName.c_str()));
  if (description.height < 0) {
    font.setPixelSize(-description.height);
  } else if (description.height > 0) {
    // A positive height is the cell height (ascent plus descent), not the em size.
    QFont probe(font);
    probe.setPixelSize(100);
    const qreal cellPerEm = QFontMetricsF(probe).height() / 100.0;
    font.setPixelSize(std::max(1, static_cast<int>(std::lround(description.height / cellPerEm))));
  }
  // Weight 0 means "don't care", which the face draws as normal.
  font.setWeight(description.weight > 0 ? static_cast<QFont::Weight>(std::clamp(description.weight, 1, 1000))
                                        : QFont::Normal);
  font.setItalic(description.italic);
  font.setUnderline(description.underline);
  font.setStrikeOut(description.strikeOut);
  return font;
}

}  // namespace

CategoryTreeModel::CategoryTreeModel(keywords::CCategoryTree& tree, QObject* parent)
    : QAbstractItemModel(parent), m_tree(tree), m_shape(Shape()) {}

QModelIndex CategoryTreeModel::IndexOf(TreeItem item) const {
  if (item == keywords::kNoItem) return {};
  const TreeItem parentItem = m_tree.GetParentItem(item);
  const std::vector<TreeItem> siblings =
      parentItem == keywords::kNoItem ? m_tree.RootItems() : m_tree.ChildItems(parentItem);
  const auto found = std::find(siblings.begin(), siblings.end(), item);
  if (found == siblings.end()) return {};
  return createIndex(static_cast<int>(found - siblings.begin()), 0, static_cast<quintptr>(item));
}

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
      // Without a face name of its own an item is drawn in the view's font, made bold by its bold state.
      keywords::FontDescription description;
      const bool hasFont = m_tree.GetItemFont(item, description);
      const bool bold = m_tree.GetItemBold(item);
      if (!hasFont && !bold) return {};
      QFont font = hasFont ? FontFrom(description) : QFont();
      if (bold) font.setWeight(QFont::Bold);
      return font;
    }
    default:
      return {};
  }
}

std::vector<TreeItem> CategoryTreeModel::Shape() const {
  std::vector<TreeItem> shape;
  for (TreeItem root : m_tree.RootItems()) {
    const std::vector<TreeItem> children = m_tree.ChildItems(root);
    shape.push_back(root);
    shape.push_back(static_cast<TreeItem>(children.size()));
    shape.insert(shape.end(), children.begin(), children.end());
  }
  return shape;
}

void CategoryTreeModel::Refresh() {
  std::vector<TreeItem> shape = Shape();
  if (shape != m_shape) {
    beginResetModel();
    m_shape = std::move(shape);
    endResetModel();
    return;
  }
  const auto changedUnder = [this](const QModelIndex& parent) {
    const int rows = rowCount(parent);
    if (rows > 0) emit dataChanged(index(0, 0, parent), index(rows - 1, 0, parent));
  };
  changedUnder({});
  for (int row = 0; row < rowCount(); ++row) changedUnder(index(row, 0));
}

RowsModel::RowsModel(QStringList headers, std::function<int()> rowCount, std::function<std::string(int, int)> cell,
                     QObject* parent)
    : QAbstractTableModel(parent),
      m_headers(std::move(headers)),
      m_rowCount(std::move(rowCount)),
      m_cell(std::move(cell)),
      m_shownRows(m_rowCount()) {}

int RowsModel::rowCount(const QModelIndex& parent) const {
  // The count last announced, not the control's: Qt's views must see the shape change only between
  // a reset's begin and end. A row gone from the control since reads as empty cells until then.
  return parent.isValid() ? 0 : m_shownRows;
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
  if (orientation != Qt::Horizontal || section < 0 || section >= m_headers.size()) return {};
  if (role == Qt::TextAlignmentRole) return Qt::AlignCenter;
  if (role != Qt::DisplayRole) return {};
  return m_headers[section];
}

void RowsModel::Refresh() {
  const int rows = m_rowCount();
  if (rows != m_shownRows) {
    beginResetModel();
    m_shownRows = rows;
    endResetModel();
    return;
  }
  if (rows > 0 && !m_headers.isEmpty()) emit dataChanged(index(0, 0), index(rows - 1, columnCount() - 1));
}

}  // namespace gavelscope::ui
