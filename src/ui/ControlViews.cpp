// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "ui/ControlViews.h"

#include <QContextMenuEvent>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyleOptionHeader>
#include <QStyledItemDelegate>

#include <array>
#include <functional>
#include <utility>

namespace gavelscope::ui {

namespace {

using keywords::TreeItem;

// A colour reference is 0x00BBGGRR.
QColor FromColourRef(std::int32_t colour) {
  return QColor(colour & 0xFF, (colour >> 8) & 0xFF, (colour >> 16) & 0xFF);
}

QFont ViewFont() {
  QFont font("Arial");
  font.setBold(true);
  return font;
}

void PaintWhite(QAbstractItemView& view) {
  QPalette palette = view.palette();
  palette.setColor(QPalette::Base, Qt::white);
  view.setPalette(palette);
}

// One menu entry: its text, whether it can be chosen, and its command (none for a blank row).
struct MenuEntry {
  QString text;
  bool enabled = true;
  std::function<void()> command;
};

// The commands with a blank, disabled row between neighbours, as the menus lay them out.
std::vector<MenuEntry> Spaced(std::vector<MenuEntry> commands) {
  std::vector<MenuEntry> entries;
  for (MenuEntry& command : commands) {
    if (!entries.empty()) entries.push_back({QString(), false, nullptr});
    entries.push_back(std::move(command));
  }
  return entries;
}

// The actions' commands are tied to `context`, so that a menu outliving its view runs nothing.
void Fill(QMenu& menu, QObject* context, const std::vector<MenuEntry>& entries) {
  for (const MenuEntry& entry : entries) {
    QAction* action = menu.addAction(entry.text);
    action->setEnabled(entry.enabled);
    if (entry.command) QObject::connect(action, &QAction::triggered, context, entry.command);
  }
}

constexpr std::array<const char*, 4> kListingViewTexts{"Display Page (Current)", "Display Page (New Today)",
                                                       "Display Page (Ending Today)",
                                                       "Display Page (Going Going Gone)"};

// Items with colours or fonts of their own are drawn by hand; the style draws the selected item of a
// focused tree, so that it reads as selected.
class CategoryItemDelegate : public QStyledItemDelegate {
 public:
  CategoryItemDelegate(keywords::CCategoryTree& tree, QObject* parent) : QStyledItemDelegate(parent), m_tree(tree) {}

  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    const TreeItem item = CategoryTreeModel::ItemOf(index);
    const bool focusedSelection =
        (option.state & QStyle::State_Selected) && option.widget != nullptr && option.widget->hasFocus();
    if (focusedSelection || !m_tree.HasAttributes(item)) {
      QStyledItemDelegate::paint(painter, option, index);
      return;
    }
    // The model's colour and font, resolved against the view's palette and font.
    QStyleOptionViewItem resolved(option);
    initStyleOption(&resolved, index);
    const QColor colour = resolved.palette.color(QPalette::Text);
    QFont font = resolved.font;
    const QString text = resolved.text;
    const std::size_t marker = keywords::SearchingMarkerAt(m_tree.GetItemText(item));

    painter->save();
    painter->fillRect(option.rect, option.palette.base());
    const QRect& rect = option.rect;
    const auto drawAt = [&](int x, const QString& part) {
      painter->setFont(font);
      painter->drawText(QRect(x, rect.top() + 1, QWIDGETSIZE_MAX / 2, rect.height()),
                        Qt::AlignLeft | Qt::AlignTop | Qt::TextSingleLine, part);
    };
    painter->setPen(colour);
    if (marker == std::string::npos) {
      drawAt(rect.left() + 2, text);
    } else {
      const auto split = static_cast<qsizetype>(marker);
      const QString name = text.left(split);
      drawAt(rect.left() + 2, name);
      const int nameWidth = QFontMetrics(font).horizontalAdvance(name);
      font.setItalic(true);
      painter->setPen(FromColourRef(keywords::kSearchingColour));
      drawAt(rect.left() + nameWidth + 6, QStringLiteral("    ") + text.mid(split));
    }
    painter->restore();
  }

 private:
  keywords::CCategoryTree& m_tree;
};

}  // namespace

CategoryTreeView::CategoryTreeView(keywords::CCategoryTree& tree, CategoryTreeModel* model, QWidget* parent)
    : QTreeView(parent), m_tree(tree), m_model(model) {
  setModel(model);
  setHeaderHidden(true);
  // A double click opens the item's page instead.
  setExpandsOnDoubleClick(false);
  setEditTriggers(NoEditTriggers);
  setFont(ViewFont());
  PaintWhite(*this);
  setItemDelegate(new CategoryItemDelegate(tree, this));
  // Without the focus, the selected item is redrawn opaque over its whole row (every item has
  // colours of its own), so no trace of the selection colour is left in its indentation.
  QPalette unfocused = palette();
  unfocused.setColor(QPalette::Inactive, QPalette::Highlight, unfocused.color(QPalette::Base));
  setPalette(unfocused);
  // The control's selection also moves by a right click and by the window's commands.
  connect(model, &QAbstractItemModel::modelReset, this, &CategoryTreeView::ShowControlSelection);
  connect(model, &QAbstractItemModel::dataChanged, this, &CategoryTreeView::ShowControlSelection);
}

void CategoryTreeView::ShowControlSelection() {
  const QModelIndex index = m_model->IndexOf(m_tree.GetSelectedItem());
  if (index == currentIndex() && (!index.isValid() || selectionModel()->isSelected(index))) return;
  if (index.isValid()) {
    selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
  } else {
    selectionModel()->clear();
  }
}

void CategoryTreeView::mousePressEvent(QMouseEvent* event) {
  // A right click changes nothing until the context menu knows whether an item was hit.
  if (event->button() == Qt::RightButton) {
    event->accept();
    return;
  }
  QTreeView::mousePressEvent(event);
  const QModelIndex hit = indexAt(event->position().toPoint());
  if (event->button() == Qt::LeftButton && hit.isValid() && hit == currentIndex()) {
    m_tree.OnItemClicked(CategoryTreeModel::ItemOf(hit));
  } else if (!hit.isValid()) {
    // Empty space selects nothing: the tree's own selection stays, and is shown again.
    ShowControlSelection();
  }
}

void CategoryTreeView::mouseDoubleClickEvent(QMouseEvent* event) {
  QTreeView::mouseDoubleClickEvent(event);
  // Anywhere in the tree, a double click opens the selected item's page.
  if (event->button() == Qt::LeftButton) m_tree.OnDoubleClick();
}

void CategoryTreeView::keyPressEvent(QKeyEvent* event) {
  const QModelIndex before = currentIndex();
  QTreeView::keyPressEvent(event);
  if (currentIndex().isValid() && currentIndex() != before) {
    m_tree.OnItemClicked(CategoryTreeModel::ItemOf(currentIndex()));
  }
}

std::unique_ptr<QMenu> CategoryTreeView::MenuAt(const QPoint& pos) {
  const QModelIndex hit = indexAt(pos);
  if (!hit.isValid()) return nullptr;
  selectionModel()->setCurrentIndex(hit, QItemSelectionModel::ClearAndSelect);
  const std::array<bool, 4> enabled = m_tree.ContextMenuFor(CategoryTreeModel::ItemOf(hit));
  std::vector<MenuEntry> commands;
  for (std::size_t i = 0; i < keywords::kMenuViews.size(); ++i) {
    const sites::ListingView view = keywords::kMenuViews[i];
    commands.push_back({kListingViewTexts[i], enabled[i], [this, view] { m_tree.OpenView(view); }});
  }
  auto menu = std::make_unique<QMenu>();
  Fill(*menu, this, Spaced(std::move(commands)));
  return menu;
}

void CategoryTreeView::contextMenuEvent(QContextMenuEvent* event) {
  event->accept();
  if (const std::unique_ptr<QMenu> menu = MenuAt(event->pos())) menu->exec(event->globalPos());
}

ControlListView::ControlListView(RowsModel* model, const std::vector<int>& widths, QHeaderView* sortHeader,
                                 QWidget* parent)
    : QTableView(parent) {
  if (sortHeader != nullptr) {
    setHorizontalHeader(sortHeader);
  } else {
    horizontalHeader()->setSectionsClickable(false);
  }
  horizontalHeader()->setSortIndicatorShown(false);
  // The headers' face and 3D edges in the classic button colours, on which the sort triangle's
  // highlight and shadow lines both stand out.
  QPalette face = horizontalHeader()->palette();
  face.setColor(QPalette::Button, QColor(0xD4, 0xD0, 0xC8));
  face.setColor(QPalette::Light, Qt::white);
  face.setColor(QPalette::Dark, QColor(0x80, 0x80, 0x80));
  horizontalHeader()->setPalette(face);
  horizontalHeader()->setHighlightSections(false);
  horizontalHeader()->setDefaultAlignment(Qt::AlignCenter);
  verticalHeader()->hide();
  // Report-view rows: one line of text each, not the roomy rows of a table.
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  verticalHeader()->setDefaultSectionSize(QFontMetrics(ViewFont()).height() + 3);
  setShowGrid(true);
  setSelectionBehavior(SelectRows);
  setSelectionMode(SingleSelection);
  setEditTriggers(NoEditTriggers);
  setFont(ViewFont());
  QPalette palette = this->palette();
  palette.setColor(QPalette::Text, QColor(0, 0, 255));
  setPalette(palette);
  PaintWhite(*this);
  setModel(model);
  for (std::size_t column = 0; column < widths.size(); ++column) {
    setColumnWidth(static_cast<int>(column), widths[column]);
  }
  // Find Next and the context menu move the mark: the view shows it as the selected row.
  connect(model, &QAbstractItemModel::modelReset, this, &ControlListView::ShowControlSelection);
  connect(model, &QAbstractItemModel::dataChanged, this, &ControlListView::ShowControlSelection);
}

void ControlListView::ShowControlSelection() {
  const int mark = SelectionMark();
  const bool moved = mark != m_shownMark;
  m_shownMark = mark;
  if (mark < 0 || mark >= model()->rowCount()) {
    selectionModel()->clear();
    return;
  }
  const QModelIndex index = model()->index(mark, 0);
  if (index != currentIndex() || !selectionModel()->isRowSelected(mark)) {
    selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
  }
  // Only a moved mark scrolls: rows streaming in must not pull the user back to it.
  if (moved) scrollTo(index);
}

void ControlListView::mousePressEvent(QMouseEvent* event) {
  // A right click changes nothing until the control says a row was hit.
  if (event->button() == Qt::RightButton) {
    event->accept();
    return;
  }
  QTableView::mousePressEvent(event);
  if (event->button() != Qt::LeftButton) return;
  // A click beside the rows leaves the mark, and the view shows it again.
  const int row = indexAt(event->position().toPoint()).row();
  if (row >= 0) {
    MarkRow(row);
  } else {
    ShowControlSelection();
  }
}

void ControlListView::mouseDoubleClickEvent(QMouseEvent* event) {
  // Not through doubleClicked: a refresh between the two clicks would lose it.
  QTableView::mouseDoubleClickEvent(event);
  if (event->button() == Qt::LeftButton && indexAt(event->position().toPoint()).isValid()) OpenMarkedRow();
}

void ControlListView::keyPressEvent(QKeyEvent* event) {
  const int before = currentIndex().row();
  QTableView::keyPressEvent(event);
  if (currentIndex().isValid() && currentIndex().row() != before) MarkRow(currentIndex().row());
}

std::unique_ptr<QMenu> ControlListView::MenuAt(const QPoint& pos) {
  if (!ContextMenuAt(indexAt(pos).row())) return nullptr;
  ShowControlSelection();
  auto menu = std::make_unique<QMenu>();
  FillMenu(*menu);
  return menu;
}

void ControlListView::contextMenuEvent(QContextMenuEvent* event) {
  event->accept();
  if (const std::unique_ptr<QMenu> menu = MenuAt(event->pos())) menu->exec(event->globalPos());
}

KeywordListView::KeywordListView(keywords::CKeywordListCtrl& list, RowsModel* model, const std::vector<int>& widths,
                                 QWidget* parent)
    : ListViewOver(list, model, widths, nullptr, parent) {}

void KeywordListView::FillMenu(QMenu& menu) {
  static constexpr std::array<const char*, 4> kTexts{"Display Page (Ending First)", "Display Page (Newly Listed)",
                                                     "Display Page (Lowest Priced)", "Display Page (Highest Price)"};
  std::vector<MenuEntry> commands;
  for (std::size_t i = 0; i < keywords::kSortOrders.size(); ++i) {
    const keywords::SortOrder order = keywords::kSortOrders[i];
    commands.push_back({kTexts[i], true, [this, order] { m_list.OpenSorted(order); }});
  }
  Fill(menu, this, Spaced(std::move(commands)));
}

AuctionListView::AuctionListView(auctions::CAuctionListCtrl& list, RowsModel* model, const std::vector<int>& widths,
                                 QWidget* parent)
    : ListViewOver(list, model, widths, nullptr, parent) {}

void AuctionListView::FillMenu(QMenu& menu) {
  std::vector<MenuEntry> commands;
  for (std::size_t i = 0; i < keywords::kMenuViews.size(); ++i) {
    const sites::ListingView view = keywords::kMenuViews[i];
    commands.push_back({kListingViewTexts[i], true, [this, view] { m_list.OpenView(view); }});
  }
  Fill(menu, this, Spaced(std::move(commands)));
}

SortHeader::SortHeader(hotitems::CItemListCtrl& list, QWidget* parent)
    : QHeaderView(Qt::Horizontal, parent), m_list(list) {
  setSectionsClickable(true);
  connect(this, &QHeaderView::sectionClicked, this, [this](int column) {
    m_list.OnHeaderClick(column);
    viewport()->update();
  });
}

void SortHeader::paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const {
  if (!rect.isValid() || logicalIndex != m_list.SortColumn()) {
    QHeaderView::paintSection(painter, rect, logicalIndex);
    return;
  }
  QStyleOptionHeader option;
  initStyleOption(&option);
  initStyleOptionForIndex(&option, logicalIndex);
  option.rect = rect;
  option.sortIndicator = QStyleOptionHeader::None;

  painter->save();
  painter->setClipRect(rect);
  style()->drawControl(QStyle::CE_HeaderSection, &option, painter, this);
  // The label gives up three quarters of the section's height on the right to the arrow.
  const int q = rect.height() / 4;
  QStyleOptionHeader label(option);
  label.rect = style()->subElementRect(QStyle::SE_HeaderLabel, &option, this).adjusted(0, 0, -3 * q, 0);
  if (label.rect.isValid()) style()->drawControl(QStyle::CE_HeaderLabel, &label, painter, this);

  // An arrow 2q wide and about 2q high, lit from the lower right.
  const int left = rect.right() - 5 * q / 2;
  const int right = rect.right() - q / 2;
  const int middle = (left + right) / 2;
  const int top = rect.top() + q;
  const int bottom = rect.bottom() - q;
  const QPen light(palette().color(QPalette::Light));
  const QPen dark(palette().color(QPalette::Dark));
  painter->setRenderHint(QPainter::Antialiasing, false);
  if (m_list.SortAscending()) {
    painter->setPen(light);
    painter->drawLine(middle, top, right, bottom);
    painter->drawLine(right, bottom, left, bottom);
    painter->setPen(dark);
    painter->drawLine(left, bottom, middle, top);
  } else {
    painter->setPen(light);
    painter->drawLine(right, top, middle, bottom);
    painter->setPen(dark);
    painter->drawLine(middle, bottom, left, top);
    painter->drawLine(left, top, right, top);
  }
  painter->restore();
}

ItemListView::ItemListView(hotitems::CItemListCtrl& list, RowsModel* model, const std::vector<int>& widths,
                           QWidget* parent)
    : ListViewOver(list, model, widths, new SortHeader(list), parent) {
  // The arrow follows the control's sort, whoever sorted.
  QWidget* header = horizontalHeader()->viewport();
  connect(model, &QAbstractItemModel::dataChanged, header, qOverload<>(&QWidget::update));
  connect(model, &QAbstractItemModel::modelReset, header, qOverload<>(&QWidget::update));
}

void ItemListView::FillMenu(QMenu& menu) {
  using sites::LinkedPage;
  const auto linked = [this](LinkedPage page) { return [this, page] { m_list.OpenLinkedPage(page); }; };
  // The blank row before the feedback entry can be chosen, though it does nothing.
  Fill(menu, this,
       {{"Display Details", true, [this] { m_list.OpenItemPage(); }},
        {QString(), false, nullptr},
        {"Display Bid History", true, linked(LinkedPage::BidHistory)},
        {QString(), false, nullptr},
        {"Display Seller's Other Auctions", true, linked(LinkedPage::SellersOtherItems)},
        {QString(), true, nullptr},
        {"Display Sellers Feedback", true, linked(LinkedPage::SellerFeedback)}});
}

}  // namespace gavelscope::ui
