// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <QHeaderView>
#include <QMenu>
#include <QTableView>
#include <QTreeView>

#include <memory>
#include <vector>

#include "auctions/AuctionListCtrl.h"
#include "hotitems/ItemListCtrl.h"
#include "keywords/CategoryTree.h"
#include "keywords/KeywordListCtrl.h"
#include "ui/ControlModels.h"

namespace gavelscope::ui {

// The thin views over the headless controls. Each one turns clicks, keys and its context menu into
// its control's operations and shows the control's selection; the control's observer (set by the
// window) refreshes the model, and the view follows the model.
//
// MenuAt takes a point in viewport coordinates, does what a right click there does to the selection,
// and returns the context menu to show, or nullptr where a right click shows none. Choosing an entry
// runs its command on the control; the view must outlive the menu's use.

// The category tree: items in their own colours and fonts, the "  -  Searching" marker apart.
class CategoryTreeView : public QTreeView {
 public:
  CategoryTreeView(keywords::CCategoryTree& tree, CategoryTreeModel* model, QWidget* parent = nullptr);

  std::unique_ptr<QMenu> MenuAt(const QPoint& pos);

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;

 private:
  void ShowControlSelection();

  keywords::CCategoryTree& m_tree;
  CategoryTreeModel* m_model;
};

// What the four lists share: the look, the mark followed as the selected row, clicks and keys moving
// the mark, a double click opening the marked row, and a context menu on rows only.
class ControlListView : public QTableView {
 public:
  std::unique_ptr<QMenu> MenuAt(const QPoint& pos);

 protected:
  // `sortHeader` replaces the plain header, which ignores clicks; the view takes it.
  ControlListView(RowsModel* model, const std::vector<int>& widths, QHeaderView* sortHeader, QWidget* parent);

  virtual int SelectionMark() const = 0;
  virtual void MarkRow(int row) = 0;
  virtual void OpenMarkedRow() = 0;
  // The control's answer to a right click on `row` (-1: none): whether to show the menu.
  virtual bool ContextMenuAt(int row) = 0;
  virtual void FillMenu(QMenu& menu) = 0;

  void mousePressEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;

 private:
  void ShowControlSelection();

  int m_shownMark = -1;
};

// A list view over one headless list control, whose mark and menu answers the view follows.
template <class List>
class ListViewOver : public ControlListView {
 protected:
  ListViewOver(List& list, RowsModel* model, const std::vector<int>& widths, QHeaderView* sortHeader, QWidget* parent)
      : ControlListView(model, widths, sortHeader, parent), m_list(list) {}

  int SelectionMark() const override { return m_list.SelectionMark(); }
  void MarkRow(int row) override { m_list.SetSelectionMark(row); }
  bool ContextMenuAt(int row) override { return m_list.ContextMenuAt(row); }

  List& m_list;
};

class KeywordListView : public ListViewOver<keywords::CKeywordListCtrl> {
 public:
  KeywordListView(keywords::CKeywordListCtrl& list, RowsModel* model, const std::vector<int>& widths,
                  QWidget* parent = nullptr);

 protected:
  void OpenMarkedRow() override { m_list.OnDoubleClick(); }
  void FillMenu(QMenu& menu) override;
};

class AuctionListView : public ListViewOver<auctions::CAuctionListCtrl> {
 public:
  AuctionListView(auctions::CAuctionListCtrl& list, RowsModel* model, const std::vector<int>& widths,
                  QWidget* parent = nullptr);

 protected:
  void OpenMarkedRow() override { m_list.OnDoubleClick(); }
  void FillMenu(QMenu& menu) override;
};

// The header of an item list: a click sorts by that column (a second click reverses) and the sort
// column carries an engraved arrow, up for ascending. The sort state is the control's.
class SortHeader : public QHeaderView {
 public:
  explicit SortHeader(hotitems::CItemListCtrl& list, QWidget* parent = nullptr);

 protected:
  void paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const override;

 private:
  hotitems::CItemListCtrl& m_list;
};

// The hot item lists and the query results.
class ItemListView : public ListViewOver<hotitems::CItemListCtrl> {
 public:
  ItemListView(hotitems::CItemListCtrl& list, RowsModel* model, const std::vector<int>& widths,
               QWidget* parent = nullptr);

 protected:
  void OpenMarkedRow() override { m_list.OpenItemPage(); }
  void FillMenu(QMenu& menu) override;
};

}  // namespace gavelscope::ui
