// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "hotitems/ItemListCtrl.h"

#include <gtest/gtest.h>

#include "net/PageFetcher.h"
#include "support/RecordingBrowser.h"
#include "support/RecordingMessages.h"
#include "support/SandboxFixture.h"
#include "support/TempFolder.h"

namespace gavelscope::hotitems {
namespace {

// Pages come from a session on the sandbox, or from nowhere.
class SessionPages : public base::IPageSource {
 public:
  explicit SessionPages(net::NetOptions options) : m_session(std::move(options)) {}
  std::string GetPageText(std::string_view url, std::stop_token stop) override {
    return m_session.GetPageText(url, stop);
  }

 private:
  net::SharedSession m_session;
};

class ItemListTest : public ::testing::Test {
 protected:
  explicit ItemListTest(ItemListVariant variant = ItemListVariant::HistoryUSA, DateOrder order = DateOrder::DayFirst)
      : m_list(variant, m_browser, m_messages, m_pages, order) {}

  // One row per text, all in `column`; the record carries the text as its title and link.
  void Fill(int column, std::initializer_list<const char*> texts) {
    for (const char* text : texts) {
      const int row = m_list.InsertItem(m_list.GetItemCount(), "");
      m_list.SetItemText(row, column, text);
      auto record = std::make_shared<CHotItemRecord>();
      record->SetTitle(text);
      record->SetItemLink(std::string("http://cgi.ebay.com/item?") + text);
      m_list.SetItemData(row, record);
    }
  }
  std::vector<std::string> Column(int column) const {
    std::vector<std::string> texts;
    for (int row = 0; row < m_list.GetItemCount(); ++row) texts.push_back(m_list.GetItemText(row, column));
    return texts;
  }

  testing::RecordingBrowser m_browser;
  testing::RecordingMessages m_messages;
  SessionPages m_pages{net::NetOptions{}};
  CItemListCtrl m_list;
};

using Texts = std::vector<std::string>;

TEST_F(ItemListTest, BidsSortWithDashAsZeroAndASecondClickReverses) {
  Fill(3, {"5", "-", "41"});
  m_list.SortItems(1, true);
  m_list.OnHeaderClick(3);
  EXPECT_EQ(Column(3), (Texts{"-", "5", "41"}));
  EXPECT_TRUE(m_list.SortAscending());
  m_list.OnHeaderClick(3);
  EXPECT_EQ(Column(3), (Texts{"41", "5", "-"}));
  EXPECT_EQ(m_list.SortColumn(), 3);
  EXPECT_FALSE(m_list.SortAscending());
}

TEST_F(ItemListTest, PricesLoseTheirMarksAndCompareAsNumbers) {
  Fill(2, {"$1,200.00", "$950.00", "GBP 99.00"});
  m_list.SortItems(2, true);
  EXPECT_EQ(Column(2), (Texts{"GBP 99.00", "$950.00", "$1,200.00"}));
}

TEST_F(ItemListTest, TitlesThatAreNumbersSortNumerically) {
  Fill(1, {"1984", "200", ""});
  m_list.SortItems(1, true);
  EXPECT_EQ(Column(1), (Texts{"", "200", "1984"}));
}

TEST_F(ItemListTest, DatesSortByTheLocaleAndRejectedTextsByText) {
  Fill(0, {"07/03/2005", "06/04/2005", "05/03/2005"});
  m_list.SortItems(0, true);
  EXPECT_EQ(Column(0), (Texts{"05/03/2005", "07/03/2005", "06/04/2005"}));
  m_list.SortItems(0, false);
  EXPECT_EQ(Column(0), (Texts{"06/04/2005", "07/03/2005", "05/03/2005"}));
}

class MonthFirstList : public ItemListTest {
 protected:
  MonthFirstList() : ItemListTest(ItemListVariant::HistoryUSA, DateOrder::MonthFirst) {}
};

TEST_F(MonthFirstList, DatesReadMonthFirst) {
  Fill(0, {"07/03/2005", "06/04/2005", "unknown"});
  m_list.SortItems(0, true);
  EXPECT_EQ(Column(0), (Texts{"06/04/2005", "07/03/2005", "unknown"}));
}

class QueryResultList : public ItemListTest {
 protected:
  QueryResultList() : ItemListTest(ItemListVariant::QueryResults) {}
};

TEST_F(QueryResultList, TimeLeftSortsBySecondsAndPricesLoseMoreMarks) {
  Fill(0, {"1d 2h", "2h 30m", "45m"});
  m_list.SortItems(0, true);
  EXPECT_EQ(Column(0), (Texts{"45m", "2h 30m", "1d 2h"}));
  m_list.DeleteAllItems();
  Fill(2, {"US $20.00",
           "\xA3"
           "3.00",
           "C $10.00"});
  m_list.SortItems(2, true);
  EXPECT_EQ(Column(2), (Texts{"\xA3"
                              "3.00",
                              "C $10.00", "US $20.00"}));
}

TEST_F(ItemListTest, FindNextSearchesTitlesAfterTheMark) {
  Fill(1, {"NOKIA 3310", "Lamp", "Vase", "nokia case", "Bowl"});
  m_list.FindNext("nokia");
  EXPECT_EQ(m_list.GetSelectionMark(), 0);
  m_list.FindNext("nokia");
  EXPECT_EQ(m_list.GetSelectionMark(), 3);
  m_list.FindNext("nokia");
  EXPECT_EQ(m_list.GetSelectionMark(), 3);
  ASSERT_EQ(m_messages.Messages().size(), 1U);
  EXPECT_EQ(m_messages.Messages()[0].text, "Item Not Found !");
}

TEST_F(ItemListTest, RowsGoToTheEndWhenAskedBeyondIt) {
  EXPECT_EQ(m_list.InsertItem(7, "a"), 0);
  EXPECT_EQ(m_list.InsertItem(7, "b"), 1);
  EXPECT_EQ(m_list.InsertItem(0, "c"), 0);
  EXPECT_EQ(m_list.InsertItem(-1, "d"), -1);
  EXPECT_EQ(Column(0), (Texts{"c", "a", "b"}));
  EXPECT_FALSE(m_list.SetItemData(3, nullptr));
  EXPECT_FALSE(m_list.SetItemText(0, 4, "x"));
}

TEST_F(ItemListTest, ExportOfAnEmptyListWritesTheHeadings) {
  EXPECT_EQ(m_list.ExportText(),
            "\tHot Items History List\r\n\r\nDate Ended\t\t\tBids\t\t\tPrice\t\t\tItem Title\r\n\r\n");
}

class UKHistoryList : public ItemListTest {
 protected:
  UKHistoryList() : ItemListTest(ItemListVariant::HistoryUK) {}
};

TEST_F(UKHistoryList, DisplayDetailsOpensTheUKPage) {
  Fill(1, {"Lamp"});
  m_list.OpenItemPage();
  EXPECT_TRUE(m_browser.Opened().empty());
  ASSERT_TRUE(m_list.ContextMenuAt(0));
  EXPECT_FALSE(m_list.ContextMenuAt(1));
  m_list.OpenItemPage();
  EXPECT_EQ(m_browser.Opened(), Texts{"http://cgi.ebay.co.uk/item?Lamp"});
}

class LinkedPageWorker : public testing::SandboxTest {};

TEST_F(LinkedPageWorker, OpensTheLinksOfASandboxItemPage) {
  testing::RecordingBrowser browser;
  testing::RecordingMessages messages;
  SessionPages pages(SandboxNetOptions());
  CItemListCtrl list(ItemListVariant::HistoryUSA, browser, messages, pages, DateOrder::DayFirst);
  const std::string history = testing::ReadFileBytes(Sandbox().ftpRoot() / "HotItemList.txt");
  auto record = std::make_shared<CHotItemRecord>(ParseHistoryLine(history.substr(0, history.find("\r\n"))));
  ASSERT_FALSE(record->GetItemLink().empty());
  list.SetItemData(list.InsertItem(0, ""), record);
  list.SetSelectionMark(0);

  list.OpenLinkedPage(sites::LinkedPage::BidHistory);
  ASSERT_TRUE(browser.WaitForCount(1));
  list.OpenLinkedPage(sites::LinkedPage::SellersOtherItems);
  ASSERT_TRUE(browser.WaitForCount(2));
  // The row is cleared at once: the worker already holds the link it needs.
  list.OpenLinkedPage(sites::LinkedPage::SellerFeedback);
  list.ClearRecords();
  ASSERT_TRUE(browser.WaitForCount(3));
  const Texts opened = browser.Opened();
  EXPECT_NE(opened[0].find("ViewBids"), std::string::npos) << opened[0];
  EXPECT_NE(opened[1].find("ViewListedItems"), std::string::npos) << opened[1];
  EXPECT_NE(opened[2].find("ViewFeedback"), std::string::npos) << opened[2];
  for (const std::string& url : opened) EXPECT_EQ(url.find("&amp;"), std::string::npos) << url;
}

}  // namespace
}  // namespace gavelscope::hotitems
