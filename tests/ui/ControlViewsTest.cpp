// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "ui/ControlViews.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QSignalSpy>
#include <QTest>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "support/RecordingBrowser.h"
#include "support/RecordingMessages.h"

namespace gavelscope::ui {
namespace {

using keywords::TreeItem;
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
  if (!menu) return {"no menu", ""};
  Layout layout;
  for (const QAction* action : menu->actions()) {
    if (!layout.second.empty()) layout.first += '|';
    layout.first += action->text().toStdString();
    layout.second += action->isEnabled() ? '1' : '0';
  }
  return layout;
}

QPoint RowPoint(const QTableView& view, int row) {
  return view.visualRect(view.model()->index(row, 0)).center();
}

// The views over controls wired as the window wires them: every change refreshes the model.
class ControlViewsTest : public ::testing::Test {
 protected:
  ControlViewsTest() {
    m_tree.SetObserver([this] { m_treeModel.Refresh(); });
    m_keywords.SetObserver([this] { m_keywordModel.Refresh(); });
    m_auctions.SetObserver([this] { m_auctionModel.Refresh(); });
    m_items.SetObserver([this] { m_itemModel.Refresh(); });
  }

  // "Antiques" with its sub-category "Clocks", then "Books".
  void BuildCatalogue() {
    m_category = m_tree.InsertRootItem("Antiques");
    m_sub = m_tree.InsertChildItem(m_category, "Clocks");
    m_books = m_tree.InsertRootItem("Books");
    m_tree.SetItemData(m_category, Keywords({"chair"}, kAntiques));
    m_tree.SetItemData(m_sub, Keywords({"clock", "mantelclock", "lamp"}, kClocks));
    m_tree.SetItemData(m_books, Keywords({"atlas"}, kAntiques));
  }
  QPoint ItemPoint(const QTreeView& view, TreeItem item) const {
    return view.visualRect(m_treeModel.IndexOf(item)).center();
  }
  void AddItem(const char* bids) {
    auto record = std::make_shared<hotitems::CHotItemRecord>();
    record->SetEnding("01/02/2026");
    record->SetBids(bids);
    record->SetItemLink(kItem);
    m_items.AppendRow(record);
  }

  testing::RecordingBrowser m_browser;
  testing::RecordingMessages m_messages;
  ItemPages m_pages;
  keywords::CKeywordListCtrl m_keywords{m_browser, m_messages};
  keywords::CCategoryTree m_tree{1, m_keywords, m_browser, m_messages};
  auctions::CAuctionListCtrl m_auctions{m_browser, m_messages};
  hotitems::CItemListCtrl m_items{hotitems::ItemListVariant::HistoryUSA, m_browser, m_messages, m_pages,
                                  hotitems::DateOrder::DayFirst};
  CategoryTreeModel m_treeModel{m_tree};
  RowsModel m_keywordModel{
      {"Keywords"},
      [this] { return static_cast<int>(m_keywords.RowCount()); },
      [this](int row, int) { return m_keywords.RowAt(static_cast<std::size_t>(row))->GetKeyword(); }};
  RowsModel m_auctionModel{{"Auction", "Count"},
                           [this] { return static_cast<int>(m_auctions.RowCount()); },
                           [this](int row, int column) {
                             const auto data = m_auctions.RowAt(static_cast<std::size_t>(row));
                             return column == 0 ? data.name : data.count;
                           }};
  RowsModel m_itemModel{
      {"Date Ended", "Item Title", "Price", "Bids"},
      [this] { return static_cast<int>(m_items.RowCount()); },
      [this](int row, int column) { return m_items.CellText(static_cast<std::size_t>(row), column); }};
  TreeItem m_category = keywords::kNoItem;
  TreeItem m_sub = keywords::kNoItem;
  TreeItem m_books = keywords::kNoItem;
};

TEST_F(ControlViewsTest, TreeClicksKeysAndMenusReachTheTreeAndADoubleClickNeverExpands) {
  BuildCatalogue();
  CategoryTreeView view(m_tree, &m_treeModel);
  view.resize(395, 300);
  view.show();
  QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, ItemPoint(view, m_category));
  EXPECT_EQ(m_keywords.RowAt(0)->GetKeyword(), "chair");
  QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, ItemPoint(view, m_category));
  EXPECT_FALSE(view.isExpanded(m_treeModel.IndexOf(m_category)));
  EXPECT_EQ(m_browser.Opened(), std::vector<std::string>{kAntiques});
  // "Clocks" stays hidden, so the next item down is "Books".
  QTest::keyClick(&view, Qt::Key_Down);
  EXPECT_EQ(m_tree.GetSelectedItem(), m_books);
  EXPECT_EQ(m_keywords.RowAt(0)->GetKeyword(), "atlas");

  view.expandAll();
  EXPECT_EQ(view.MenuAt(QPoint(5, 290)), nullptr);
  EXPECT_EQ(m_tree.GetSelectedItem(), m_books);
  EXPECT_EQ(LayoutOf(view.MenuAt(ItemPoint(view, m_category))), Layout(kViewTexts, "1000000"));
  const std::unique_ptr<QMenu> menu = view.MenuAt(ItemPoint(view, m_sub));
  EXPECT_EQ(LayoutOf(menu), Layout(kViewTexts, "1010101"));
  // The right click selected the sub-category and showed its keywords, and the tree stayed open.
  EXPECT_EQ(view.currentIndex(), m_treeModel.IndexOf(m_sub));
  EXPECT_EQ(m_keywords.RowCount(), 3U);
  EXPECT_TRUE(view.isExpanded(m_treeModel.IndexOf(m_category)));
  menu->actions().at(4)->trigger();
  EXPECT_EQ(m_browser.Opened().back(), "http://listings.ebay.com/aw/plistings/endtoday/all/category13850/index.html");
}

TEST_F(ControlViewsTest, TheSearchingMarkerIsDrawnGreenRightOfTheName) {
  const TreeItem searching = m_tree.InsertRootItem("Antiques  -  Searching");
  const TreeItem plain = m_tree.InsertRootItem("Books");
  for (TreeItem item : {searching, plain}) {
    m_tree.SetItemColor(item, keywords::kCategoryColour);
    m_tree.SetItemFont(item, keywords::CategoryFont());
  }
  CategoryTreeView view(m_tree, &m_treeModel);
  view.resize(395, 300);
  view.show();
  const QImage image = view.viewport()->grab().toImage();
  // Leftmost x of the row where the marker's green is at least half covering white; -1 for none.
  const auto greenFrom = [&](TreeItem item) {
    const QRect row = view.visualRect(m_treeModel.IndexOf(item));
    for (int x = 0; x < image.width(); ++x) {
      for (int y = row.top(); y <= row.bottom(); ++y) {
        const QColor pixel = image.pixelColor(x, y);
        if (pixel.green() > pixel.blue() + 80 && pixel.green() > pixel.red() + 25) return x;
      }
    }
    return -1;
  };
  const QModelIndex index = m_treeModel.IndexOf(searching);
  const QFont font = qvariant_cast<QFont>(index.data(Qt::FontRole)).resolve(view.font());
  // A positive height is the cell height (ascent plus descent), as a LOGFONT means it.
  EXPECT_NEAR(QFontMetrics(font).height(), keywords::CategoryFont().height, 1);
  EXPECT_GE(greenFrom(searching), view.visualRect(index).left() + QFontMetrics(font).horizontalAdvance("Antiques") + 6);
  EXPECT_EQ(greenFrom(plain), -1);
}

TEST_F(ControlViewsTest, KeywordAndAuctionListsShowMenusOnRowsOnlyAndIgnoreHeaderClicks) {
  m_keywords.Assign(*Keywords({"clock", "mantelclock", "lamp"}, kClocks));
  KeywordListView keywords(m_keywords, &m_keywordModel, {365});
  keywords.resize(365, 300);
  keywords.show();
  EXPECT_EQ(keywords.MenuAt(QPoint(5, 290)), nullptr);
  EXPECT_EQ(m_keywords.SelectionMark(), -1);
  const std::unique_ptr<QMenu> sorted = keywords.MenuAt(RowPoint(keywords, 1));
  EXPECT_EQ(LayoutOf(sorted), Layout("Display Page (Ending First)||Display Page (Newly Listed)||"
                                     "Display Page (Lowest Priced)||Display Page (Highest Price)",
                                     "1010101"));
  EXPECT_EQ(keywords.currentIndex().row(), 1);
  sorted->actions().at(4)->trigger();
  // The view shows the mark that Find Next moves; a double click opens the row it hits.
  m_keywords.FindNext("LAMP");
  EXPECT_EQ(keywords.currentIndex().row(), 2);
  QTest::mouseDClick(keywords.viewport(), Qt::LeftButton, {}, RowPoint(keywords, 0));
  EXPECT_EQ(m_browser.Opened(), (std::vector<std::string>{"http://search.ebay.com/mantelclock_W0QQsosortpropertyZ3",
                                                          "http://search.ebay.com/clock"}));

  m_auctions.InsertRow(0, {"Clocks", "25", std::make_shared<auctions::CAuctionRecord>(kClocks)});
  AuctionListView auctions(m_auctions, &m_auctionModel, {390, 390});
  auctions.show();
  EXPECT_EQ(auctions.MenuAt(QPoint(5, auctions.viewport()->height() - 2)), nullptr);
  const std::unique_ptr<QMenu> views = auctions.MenuAt(RowPoint(auctions, 0));
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
  for (const char* bids : {"5", "-", "41"}) AddItem(bids);
  ItemListView items(m_items, &m_itemModel, {95, 500, 100, 60});
  items.resize(765, 300);
  items.show();
  EXPECT_EQ(items.MenuAt(QPoint(5, 290)), nullptr);
  const std::unique_ptr<QMenu> menu = items.MenuAt(RowPoint(items, 0));
  EXPECT_EQ(LayoutOf(menu), Layout("Display Details||Display Bid History||Display Seller's Other Auctions||"
                                   "Display Sellers Feedback",
                                   "1010111"));
  // The blank row that can be chosen opens nothing.
  menu->actions().at(5)->trigger();
  menu->actions().at(0)->trigger();
  menu->actions().at(2)->trigger();
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
    const QRgb dark = header->palette().color(QPalette::Dark).rgb();
    const int right = header->sectionViewportPosition(section) + header->sectionSize(section) - 1;
    for (int y = 1; y < header->height() - 1; ++y) {
      int width = 0;
      for (int x = right - 3 * (header->height() / 4); x < right - 1; ++x) width += image.pixel(x, y) == dark;
      if (width > 0) return width;
    }
    return 0;
  };
  EXPECT_EQ(darkTopWidth(3), 0);
  click(3);
  EXPECT_EQ(m_items.CellText(0, 3), "-");
  EXPECT_EQ(darkTopWidth(1), 0);
  EXPECT_TRUE(darkTopWidth(3) > 0 && darkTopWidth(3) <= 2);
  click(3);
  EXPECT_EQ(m_items.CellText(0, 3), "41");
  EXPECT_GE(darkTopWidth(3), header->height() / 4);

  // The marked item stays highlighted, and is what Display Details opens, through sorts and rows
  // arriving above it.
  items.selectRow(2);
  QTest::mouseClick(items.viewport(), Qt::LeftButton, {}, RowPoint(items, 2));
  const std::string marked = m_items.MarkedRow()->GetBids();
  click(3);
  m_items.InsertRow(0, std::make_shared<hotitems::CHotItemRecord>());
  m_itemModel.Refresh();
  ASSERT_EQ(items.selectionModel()->selectedRows().size(), 1);
  EXPECT_EQ(m_items.CellText(static_cast<std::size_t>(items.selectionModel()->selectedRows()[0].row()), 3), marked);
}

TEST_F(ControlViewsTest, AModelAnswersWithTheRowsItLastAnnouncedUntilItIsRefreshed) {
  AddItem("1");
  // Not told of changes: the refresh a control's change queues has not come yet.
  RowsModel model(
      {"Bids"}, [this] { return static_cast<int>(m_items.RowCount()); },
      [this](int row, int) { return m_items.CellText(static_cast<std::size_t>(row), 3); });
  AddItem("2");
  EXPECT_EQ(model.rowCount(), 1);
  m_items.Clear();
  EXPECT_EQ(model.rowCount(), 1);
  EXPECT_EQ(model.data(model.index(0, 0)).toString(), "");
  model.Refresh();
  EXPECT_EQ(model.rowCount(), 0);
}

}  // namespace
}  // namespace gavelscope::ui
