// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "ui/MainDialog.h"

#include <QCloseEvent>
#include <QHeaderView>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTableView>
#include <QTreeView>

#include "ui/GuiThread.h"

namespace gavelscope::ui {

namespace {

using app::ViewId;
using net::Site;

const QRect kTreeArea(15, 135, 395, 400);
const QRect kKeywordArea(415, 135, 365, 400);
const QRect kListArea(15, 135, 765, 400);

QStringList ItemHeaders(bool query) {
  return {query ? "Time Left" : "Date Ended", "Item Title", "Price", "Bids"};
}

RowsModel* ItemModel(hotitems::CItemListCtrl& list, QObject* parent) {
  return new RowsModel(
      ItemHeaders(list.variant() == hotitems::ItemListVariant::QueryResults), [&list] { return list.GetItemCount(); },
      [&list](int row, int column) { return list.GetItemText(row, column); }, parent);
}

RowsModel* AuctionModel(auctions::CAuctionListCtrl& list, QObject* parent) {
  return new RowsModel(
      {"Auction", "Count"}, [&list] { return static_cast<int>(list.RowCount()); },
      [&list](int row, int column) {
        const auto data = list.GetRow(static_cast<std::size_t>(row));
        return column == 0 ? data.name : data.count;
      },
      parent);
}

RowsModel* KeywordModel(keywords::CKeywordListCtrl& list, QObject* parent) {
  return new RowsModel(
      {"Keywords"}, [&list] { return static_cast<int>(list.RowCount()); },
      [&list](int row, int) { return list.RowText(static_cast<std::size_t>(row)); }, parent);
}

}  // namespace

CMainDialog::CMainDialog(app::ControllerConfig config, app::IUserMessages* messages, QWidget* parent)
    : QWidget(parent), m_messages(messages != nullptr ? messages : new QtMessages(this)), m_view(new QtMainView(this)) {
  setWindowTitle(QString::fromLatin1(app::text::kWindowTitle));
  setFixedSize(kClientWidth, kClientHeight);
  m_browser = std::make_unique<app::CBrowserLauncher>(*m_messages);
  m_controller = std::make_unique<app::CRunController>(std::move(config), *m_view, *m_messages, *m_browser);
  m_commands = std::make_unique<app::CMainCommands>(*m_controller, *m_view, *m_messages, *m_browser);

  app::CRunController& run = *m_controller;
  m_treeUK = new CategoryTreeModel(run.Tree(Site::UK), this);
  m_treeUSA = new CategoryTreeModel(run.Tree(Site::USA), this);
  m_keywordsUK = KeywordModel(run.KeywordList(Site::UK), this);
  m_keywordsUSA = KeywordModel(run.KeywordList(Site::USA), this);
  m_auctionsUSA = AuctionModel(run.AuctionList(Site::USA), this);
  m_auctionsUK = AuctionModel(run.AuctionList(Site::UK), this);
  m_hotItemsUSA = ItemModel(run.HotItemList(Site::USA), this);
  m_hotItemsUK = ItemModel(run.HotItemList(Site::UK), this);
  m_queryResults = ItemModel(run.QueryResults(), this);

  m_view->Attach(ViewId::TreeUK, MakeTree(Site::UK, m_treeUK));
  m_view->Attach(ViewId::TreeUSA, MakeTree(Site::USA, m_treeUSA));
  for (Site site : {Site::UK, Site::USA}) {
    keywords::CKeywordListCtrl& list = run.KeywordList(site);
    QTableView* view = MakeList(site == Site::USA ? m_keywordsUSA : m_keywordsUK, kKeywordArea, {365});
    connect(view, &QTableView::clicked, this,
            [&list](const QModelIndex& index) { list.SetSelectionMark(index.row()); });
    connect(view, &QTableView::doubleClicked, this, [&list](const QModelIndex&) { list.OnDoubleClick(); });
    m_view->Attach(site == Site::USA ? ViewId::KeywordsUSA : ViewId::KeywordsUK, view);
  }
  for (Site site : {Site::USA, Site::UK}) {
    auctions::CAuctionListCtrl& list = run.AuctionList(site);
    QTableView* view = MakeList(site == Site::USA ? m_auctionsUSA : m_auctionsUK, kListArea, {390, 390});
    connect(view, &QTableView::clicked, this,
            [&list](const QModelIndex& index) { list.SetSelectionMark(index.row()); });
    connect(view, &QTableView::doubleClicked, this, [&list](const QModelIndex&) { list.OnDoubleClick(); });
    m_view->Attach(site == Site::USA ? ViewId::AuctionsUSA : ViewId::AuctionsUK, view);
  }
  const std::pair<ViewId, RowsModel*> itemViews[] = {
      {ViewId::HotItemsUSA, m_hotItemsUSA}, {ViewId::HotItemsUK, m_hotItemsUK}, {ViewId::QueryResults, m_queryResults}};
  for (const auto& [id, model] : itemViews) {
    hotitems::CItemListCtrl& list = id == ViewId::HotItemsUSA  ? run.HotItemList(Site::USA)
                                    : id == ViewId::HotItemsUK ? run.HotItemList(Site::UK)
                                                               : run.QueryResults();
    QTableView* view = MakeList(model, kListArea, {95, 500, 100, 60});
    connect(view, &QTableView::clicked, this,
            [&list](const QModelIndex& index) { list.SetSelectionMark(index.row()); });
    connect(view, &QTableView::doubleClicked, this, [&list](const QModelIndex&) { list.OpenItemPage(); });
    // These lists sort on a header click; a second click on the same column reverses the order.
    connect(view->horizontalHeader(), &QHeaderView::sectionClicked, this,
            [&list](int column) { list.OnHeaderClick(column); });
    m_view->Attach(id, view);
  }

  // Template controls: dialog units of 1.5 by 1.625 pixels.
  m_progress = new QProgressBar(this);
  m_progress->setGeometry(231, 122, 239, 11);
  m_progress->setTextVisible(false);
  m_view->Attach(ViewId::Progress, m_progress);
  m_search = new QLineEdit(this);
  m_search->setGeometry(471, 101, 117, 20);
  m_view->Attach(ViewId::Search, m_search);
  m_pagesSearched = new QLineEdit(this);
  m_pagesSearched->setGeometry(348, 549, 68, 28);
  m_pagesSearched->setReadOnly(true);
  m_pagesSearched->setAlignment(Qt::AlignCenter);
  m_view->Attach(ViewId::PagesSearched, m_pagesSearched);
  m_stopQuery = new QPushButton(this);
  m_stopQuery->setGeometry(473, 546, 48, 37);
  m_view->Attach(ViewId::StopQueryButton, m_stopQuery);

  connect(m_stopQuery, &QPushButton::clicked, this, [this] { m_commands->StopQuery(); });
  // Enter never closes the window; in the search edit it searches.
  connect(m_search, &QLineEdit::returnPressed, this,
          [this] { m_commands->EnterPressed(true, m_search->text().toLatin1().toStdString()); });
  WatchControls();
}

CMainDialog::~CMainDialog() {
  // The controls are told to nobody before the models they would refresh go.
  m_controller->Shutdown();
}

QTreeView* CMainDialog::MakeTree(Site site, CategoryTreeModel* model) {
  auto* view = new QTreeView(this);
  view->setGeometry(kTreeArea);
  view->setModel(model);
  view->setHeaderHidden(true);
  view->setExpandsOnDoubleClick(false);
  keywords::CCategoryTree& tree = m_controller->Tree(site);
  connect(view, &QTreeView::clicked, this, [&tree](const QModelIndex& index) {
    tree.OnItemClicked(static_cast<keywords::TreeItem>(index.internalId()));
  });
  connect(view, &QTreeView::doubleClicked, this, [&tree](const QModelIndex&) { tree.OnDoubleClick(); });
  return view;
}

QTableView* CMainDialog::MakeList(RowsModel* model, const QRect& geometry, const std::vector<int>& widths) {
  auto* view = new QTableView(this);
  view->setGeometry(geometry);
  view->setModel(model);
  view->setSelectionBehavior(QAbstractItemView::SelectRows);
  view->setSelectionMode(QAbstractItemView::SingleSelection);
  view->verticalHeader()->hide();
  for (std::size_t column = 0; column < widths.size(); ++column) {
    view->setColumnWidth(static_cast<int>(column), widths[column]);
  }
  return view;
}

void CMainDialog::WatchControls() {
  // Each control's change becomes one queued refresh of its model on this thread.
  const auto watch = [this](app::ObservableControl& control, auto* model) {
    control.SetObserver([this, model] { OnGuiThread(this, [model] { model->Refresh(); }); });
  };
  app::CRunController& run = *m_controller;
  watch(run.Tree(Site::UK), m_treeUK);
  watch(run.Tree(Site::USA), m_treeUSA);
  watch(run.KeywordList(Site::UK), m_keywordsUK);
  watch(run.KeywordList(Site::USA), m_keywordsUSA);
  watch(run.AuctionList(Site::USA), m_auctionsUSA);
  watch(run.AuctionList(Site::UK), m_auctionsUK);
  watch(run.HotItemList(Site::USA), m_hotItemsUSA);
  watch(run.HotItemList(Site::UK), m_hotItemsUK);
  watch(run.QueryResults(), m_queryResults);
}

void CMainDialog::Start(bool welcome) {
  m_controller->Start();
  if (welcome) m_controller->ShowWelcome();
}

void CMainDialog::closeEvent(QCloseEvent* event) {
  m_controller->Shutdown();
  event->accept();
}

}  // namespace gavelscope::ui
