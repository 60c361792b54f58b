// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "ui/ControlViews.h"

#include <QSignalSpy>
#include <QTest>

#include <thread>

#include "WindowTestSupport.h"

namespace gavelscope::ui {
namespace {

using app::ViewId;
using keywords::TreeItem;
using sites::Site;
// A menu's texts joined by '|', and its rows' enabled states as '1' and '0'.
using Layout = std::pair<std::string, std::string>;

constexpr const char* kAntiques = "http://listings.ebay.com/aw/plistings/list/category20081/index.html";
constexpr const char* kClocks = "http://listings.ebay.com/aw/plistings/list/category13850/index.html";
constexpr const char* kItem = "http://cgi.ebay.com/ws/eBayISAPI.dll?ViewItem&item=7";
constexpr const char* kViewTexts =
    "Display Page (Current)||Display Page (New Today)||Display Page (Ending Today)||Display Page (Going Going Gone)";

// Every item page links its bid history; nothing is fetched.
class ItemPages : public base::IPageSource {
 public:
  std::string GetPageText(std::string_view, std::stop_token) override {
    return "<b>History</b>: <a href=\"http://offer.ebay.com/ViewBids?item=7\">";
  }
};

std::shared_ptr<keywords::KeywordArray> Keywords(std::initializer_list<const char*> words, const char* listing) {
  auto array = std::make_shared<keywords::KeywordArray>();
  for (const char* word : words) {
    auto record = std::make_shared<keywords::CKeyWordRecord>();
    record->SetKeyword(word);
    record->SetSearchLink(std::string("http://search.ebay.com/") + word);
    record->SetListingLink(listing);
    array->push_back(std::move(record));
  }
  return array;
}

Layout LayoutOf(const std::unique_ptr<QMenu>& menu) {
  Layout layout;
  for (const QAction* action : menu ? menu->actions() : QList<QAction*>()) {
    layout.first += (layout.second.empty() ? "" : "|") + action->text().toStdString();
    layout.second += action->isEnabled() ? '1' : '0';
  }
  return layout;
}

QPoint RowPoint(const QAbstractItemView& view, const QModelIndex& index) {
  return view.visualRect(index).center();
}

// The window's own views over its USA controls, and an item list of its own whose item pages need
// no fetch.
class ControlViewsTest : public IdleWindowTest {
 protected:
  ControlViewsTest() {
    m_items.SetObserver([this] { m_itemModel.Refresh(); });
  }

  keywords::CCategoryTree& m_tree = m_controller.Tree(Site::USA);
  keywords::CKeywordListCtrl& m_keywords = m_controller.KeywordList(Site::USA);
  CategoryTreeModel& m_treeModel = m_window.treeModel(Site::USA);
  ItemPages m_pages;
  hotitems::CItemListCtrl m_items{hotitems::ItemListVariant::HistoryUSA, m_browser, m_messages, m_pages,
                                  hotitems::DateOrder::DayFirst};
  RowsModel m_itemModel{{"Date Ended", "Item Title", "Price", "Bids"},
                        [this] { return static_cast<int>(m_items.RowCount()); },
                        [this](int row, int column) { return m_items.CellText(row, column); }};
};

TEST_F(ControlViewsTest, TheTreeTakesClicksKeysAndMenusNeverExpandsOnADoubleClickAndDrawsTheSearchingMarkerGreen) {
  // "Antiques", being searched, with its sub-category "Clocks", then "Books".
  const TreeItem category = m_tree.InsertRootItem("Antiques  -  Searching");
  const TreeItem sub = m_tree.InsertChildItem(category, "Clocks");
  const TreeItem books = m_tree.InsertRootItem("Books");
  m_tree.SetItemFont(category, keywords::CategoryFont());
  m_tree.SetItemData(category, Keywords({"chair"}, kAntiques));
  m_tree.SetItemData(sub, Keywords({"clock", "mantelclock", "lamp"}, kClocks));
  m_tree.SetItemData(books, Keywords({"atlas"}, kAntiques));
  auto& view = *static_cast<CategoryTreeView*>(m_window.view(ViewId::TreeUSA));
  const auto at = [&](TreeItem item) { return RowPoint(view, m_treeModel.IndexOf(item)); };
  QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, at(category));
  EXPECT_EQ(m_keywords.RowAt(0)->GetKeyword(), "chair");
  QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, at(category));
  EXPECT_FALSE(view.isExpanded(m_treeModel.IndexOf(category)));
  EXPECT_EQ(m_browser.Opened(), std::vector<std::string>{kAntiques});
  // "Clocks" stays hidden, so the next item down is "Books".
  QTest::keyClick(&view, Qt::Key_Down);
  EXPECT_EQ(m_tree.GetSelectedItem(), books);
  // Empty space keeps the selection in sight, and a double click there opens the selected item.
  QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, QPoint(5, 290));
  EXPECT_TRUE(view.selectionModel()->isSelected(m_treeModel.IndexOf(books)));
  EXPECT_EQ(m_browser.Opened().size(), 2U);
  // Without the focus, the selected item's whole row is redrawn opaque: no selection colour stays.
  view.clearFocus();
  const QImage unfocused = view.viewport()->grab().toImage();
  const QRect booksRow(0, view.visualRect(m_treeModel.IndexOf(books)).top(), unfocused.width(),
                       view.visualRect(m_treeModel.IndexOf(books)).height());
  const QColor highlight = view.palette().color(QPalette::Active, QPalette::Highlight);
  EXPECT_EQ(CountPixels(unfocused, booksRow, [&](QColor c) { return c == highlight; }), 0);

  view.expandAll();
  EXPECT_EQ(view.MenuAt(QPoint(5, 290)), nullptr);
  EXPECT_EQ(m_tree.GetSelectedItem(), books);
  EXPECT_EQ(LayoutOf(view.MenuAt(at(category))), Layout(kViewTexts, "1000000"));
  const std::unique_ptr<QMenu> menu = view.MenuAt(at(sub));
  EXPECT_EQ(LayoutOf(menu), Layout(kViewTexts, "1010101"));
  // The right click selected the sub-category, and the tree stayed open.
  EXPECT_EQ(view.currentIndex(), m_treeModel.IndexOf(sub));
  EXPECT_TRUE(view.isExpanded(m_treeModel.IndexOf(category)));
  menu->actions().at(4)->trigger();
  EXPECT_EQ(m_browser.Opened().back(), "http://listings.ebay.com/aw/plistings/endtoday/all/category13850/index.html");

  // The marker is drawn green, right of the name in the category font, whose positive height is the
  // cell height (ascent plus descent), as a LOGFONT means it.
  const QImage image = view.viewport()->grab().toImage();
  const auto green = [&](TreeItem item, int from) {
    const QRect row = view.visualRect(m_treeModel.IndexOf(item));
    return CountPixels(image, QRect(from, row.top(), image.width() - from, row.height()),
                       [](QColor c) { return c.green() > c.blue() + 80 && c.green() > c.red() + 25; });
  };
  const QFont font = qvariant_cast<QFont>(m_treeModel.IndexOf(category).data(Qt::FontRole)).resolve(view.font());
  EXPECT_NEAR(QFontMetrics(font).height(), keywords::CategoryFont().height, 1);
  const int nameEnd =
      view.visualRect(m_treeModel.IndexOf(category)).left() + QFontMetrics(font).horizontalAdvance("Antiques") + 6;
  EXPECT_GT(green(category, nameEnd), 0);
  EXPECT_EQ(green(category, 0), green(category, nameEnd));
  EXPECT_EQ(green(books, 0), 0);
}

TEST_F(ControlViewsTest, KeywordAndAuctionListsShowMenusOnRowsOnlyAndIgnoreHeaderClicks) {
  m_keywords.Assign(*Keywords({"clock", "mantelclock", "lamp"}, kClocks));
  auto& keywords = *static_cast<KeywordListView*>(m_window.view(ViewId::KeywordsUSA));
  EXPECT_EQ(keywords.MenuAt(QPoint(5, 290)), nullptr);
  EXPECT_EQ(m_keywords.SelectionMark(), -1);
  const std::unique_ptr<QMenu> sorted = keywords.MenuAt(RowPoint(keywords, keywords.model()->index(1, 0)));
  EXPECT_EQ(LayoutOf(sorted), Layout("Display Page (Ending First)||Display Page (Newly Listed)||"
                                     "Display Page (Lowest Priced)||Display Page (Highest Price)",
                                     "1010101"));
  EXPECT_EQ(keywords.currentIndex().row(), 1);
  sorted->actions().at(4)->trigger();
  // The view shows the mark that Find Next moves; a double click opens the row it hits.
  m_keywords.FindNext("LAMP");
  EXPECT_EQ(keywords.currentIndex().row(), 2);
  QTest::mouseDClick(keywords.viewport(), Qt::LeftButton, {}, RowPoint(keywords, keywords.model()->index(0, 0)));
  EXPECT_EQ(m_browser.Opened(), (std::vector<std::string>{"http://search.ebay.com/mantelclock_W0QQsosortpropertyZ3",
                                                          "http://search.ebay.com/clock"}));
  // A click beside the rows leaves the mark, so the search goes on after it.
  QTest::mouseClick(keywords.viewport(), Qt::LeftButton, {}, QPoint(5, 290));
  EXPECT_EQ(keywords.currentIndex().row(), 0);
  m_keywords.FindNext("CLOCK");
  EXPECT_EQ(m_keywords.SelectionMark(), 1);

  m_controller.AuctionList(Site::USA).InsertRow(0,
                                                {"Clocks", "25", std::make_shared<auctions::CAuctionRecord>(kClocks)});
  auto& auctions = *static_cast<AuctionListView*>(m_window.view(ViewId::AuctionsUSA));
  EXPECT_EQ(auctions.MenuAt(QPoint(5, 290)), nullptr);
  const std::unique_ptr<QMenu> views = auctions.MenuAt(RowPoint(auctions, auctions.model()->index(0, 0)));
  EXPECT_EQ(LayoutOf(views), Layout(kViewTexts, "1010101"));
  views->actions().at(2)->trigger();
  EXPECT_EQ(m_browser.Opened().back(), "http://listings.ebay.com/aw/plistings/newtoday/all/category13850/index.html");

  for (QTableView* view : std::initializer_list<QTableView*>{&keywords, &auctions}) {
    QSignalSpy clicks(view->horizontalHeader(), &QHeaderView::sectionClicked);
    QTest::mouseClick(view->horizontalHeader()->viewport(), Qt::LeftButton, {}, QPoint(20, 5));
    EXPECT_EQ(clicks.count(), 0);
  }
}

TEST_F(ControlViewsTest, ItemListMenuOpensPagesAndItsHeaderSortsUnderAnArrow) {
  for (const char* bids : {"5", "-", "41"}) {
    auto record = std::make_shared<hotitems::CHotItemRecord>();
    record->SetEnding("01/02/2026");
    record->SetBids(bids);
    record->SetItemLink(kItem);
    m_items.AppendRow(record);
  }
  ItemListView items(m_items, &m_itemModel, {95, 500, 100, 60});
  items.resize(765, 300);
  items.show();
  const auto row = [&items](int row) { return RowPoint(items, items.model()->index(row, 0)); };
  EXPECT_EQ(items.MenuAt(QPoint(5, 290)), nullptr);
  const std::unique_ptr<QMenu> menu = items.MenuAt(row(0));
  EXPECT_EQ(LayoutOf(menu), Layout("Display Details||Display Bid History||Display Seller's Other Auctions||"
                                   "Display Sellers Feedback",
                                   "1010111"));
  // The blank row that can be chosen opens nothing.
  for (int entry : {5, 0, 2}) menu->actions().at(entry)->trigger();
  ASSERT_TRUE(m_browser.WaitForCount(2));
  EXPECT_EQ(m_browser.Opened(), (std::vector<std::string>{kItem, "http://offer.ebay.com/ViewBids?item=7"}));

  QHeaderView* header = items.horizontalHeader();
  const auto click = [&](int section) {
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                      QPoint(header->sectionViewportPosition(section) + 10, header->height() / 2));
  };
  // How many pixels of the shadow colour the topmost row of the arrow's place in a section holds: the
  // apex of an up arrow, the base of a down arrow, 0 without an arrow.
  const auto darkTopWidth = [&](int section) {
    const QImage image = header->viewport()->grab().toImage();
    const int right = header->sectionViewportPosition(section) + header->sectionSize(section) - 2;
    const int left = right - 3 * (header->height() / 4) + 1;
    for (int y = 1; y < header->height() - 1; ++y) {
      const int width = CountPixels(image, QRect(left, y, right - left, 1),
                                    [&](QColor c) { return c.rgb() == header->palette().color(QPalette::Dark).rgb(); });
      if (width > 0) return width;
    }
    return 0;
  };
  // The highlight lines of an arrow stand out on the face, which holds none of their colour.
  const auto lightPixels = [&](int section) {
    const int right = header->sectionViewportPosition(section) + header->sectionSize(section) - 2;
    return CountPixels(header->viewport()->grab().toImage(),
                       QRect(right - 3 * (header->height() / 4), 0, 3 * (header->height() / 4), header->height()),
                       [&](QColor c) { return c.rgb() == header->palette().color(QPalette::Light).rgb(); });
  };
  EXPECT_EQ(darkTopWidth(3), 0);
  EXPECT_EQ(lightPixels(3), 0);
  click(3);
  EXPECT_GT(lightPixels(3), header->height() / 4);
  const QColor faceBesideArrow = header->viewport()->grab().toImage().pixelColor(
      header->sectionViewportPosition(3) + 4, header->height() / 2);
  EXPECT_GE(qGray(header->palette().color(QPalette::Light).rgb()) - qGray(faceBesideArrow.rgb()), 40);
  EXPECT_EQ(m_items.CellText(0, 3), "-");
  EXPECT_EQ(darkTopWidth(1), 0);
  EXPECT_TRUE(darkTopWidth(3) > 0 && darkTopWidth(3) <= 2);
  click(3);
  EXPECT_EQ(m_items.CellText(0, 3), "41");
  EXPECT_GE(darkTopWidth(3), header->height() / 4);

  // The marked item stays highlighted, and is what Display Details opens, through sorts and rows
  // arriving above it.
  items.selectRow(2);
  QTest::mouseClick(items.viewport(), Qt::LeftButton, {}, row(2));
  const std::string marked = m_items.MarkedRow()->GetBids();
  click(3);
  m_items.InsertRow(0, std::make_shared<hotitems::CHotItemRecord>());
  ASSERT_EQ(items.selectionModel()->selectedRows().size(), 1);
  EXPECT_EQ(m_items.CellText(items.selectionModel()->selectedRows()[0].row(), 3), marked);
}

TEST_F(ControlViewsTest, AModelAnswersWithTheRowsItLastAnnouncedUntilItIsRefreshed) {
  m_items.AppendRow(std::make_shared<hotitems::CHotItemRecord>());
  // Not told of changes: the refresh a control's change queues has not come yet.
  RowsModel model(
      {"Bids"}, [this] { return static_cast<int>(m_items.RowCount()); },
      [this](int row, int) { return m_items.CellText(row, 3); });
  m_items.AppendRow(std::make_shared<hotitems::CHotItemRecord>());
  EXPECT_EQ(model.rowCount(), 1);
  m_items.Clear();
  EXPECT_EQ(model.rowCount(), 1);
  EXPECT_EQ(model.data(model.index(0, 0)).toString(), "");
  model.Refresh();
  EXPECT_EQ(model.rowCount(), 0);
}

TEST_F(ControlViewsTest, ViewOperationsReachTheWindowInTheOrderTheyWereIssued) {
  // A stopped run's last worker turns the bar red; the refresh then turns it green on the window's
  // thread before the red has been painted.
  QtMainView& view = m_window.mainView();
  std::thread([&view] { view.SetProgressBarColour(app::kColourLoaded); }).join();
  view.SetProgressBarColour(app::kColourLoading);
  QCoreApplication::processEvents();
  EXPECT_EQ(view.barColour(), app::kColourLoading);
}

}  // namespace
}  // namespace gavelscope::ui
