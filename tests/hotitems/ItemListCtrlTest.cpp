// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "hotitems/ItemListCtrl.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

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

  // One row per text, each shown in `column`; the record carries the text as its link too.
  void Fill(int column, std::initializer_list<const char*> texts) {
    for (const char* text : texts) {
      auto record = std::make_shared<CHotItemRecord>();
      using Setter = void (CHotItemRecord::*)(std::string);
      if (column == 0) {
        record->SetEnding(text);
      } else {
        constexpr Setter kSetters[] = {nullptr, &CHotItemRecord::SetTitle, &CHotItemRecord::SetPrice,
                                       &CHotItemRecord::SetBids};
        ((*record).*kSetters[column])(text);
      }
      record->SetItemLink(std::string("http://cgi.ebay.com/item?") + text);
      m_list.AppendRow(record);
    }
  }
  std::vector<std::string> Column(int column) const {
    std::vector<std::string> texts;
    for (std::size_t row = 0; row < m_list.RowCount(); ++row) texts.push_back(m_list.CellText(row, column));
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
  m_list.Clear();
  Fill(2, {"US $20.00",
           "\xA3"
           "3.00",
           "C $10.00"});
  m_list.SortItems(2, true);
  EXPECT_EQ(Column(2), (Texts{"\xA3"
                              "3.00",
                              "C $10.00", "US $20.00"}));
}

TEST_F(ItemListTest, ExportOfAnEmptyListWritesTheHeadings) {
  EXPECT_EQ(m_list.ExportText(),
            "\tHot Items History List\r\n\r\nDate Ended\t\t\tBids\t\t\tPrice\t\t\tItem Title\r\n\r\n");
}

TEST_F(ItemListTest, HeaderClicksWhileTheListFillsNeverMixRowsAndTheMarkKeepsItsItem) {
  constexpr int kRows = 20000;
  Fill(1, {"the marked one"});
  ASSERT_TRUE(m_list.ContextMenuAt(0));
  std::atomic<bool> filled = false;
  std::jthread filler([&] {
    for (int i = 0; i < kRows; ++i) {
      auto record = std::make_shared<CHotItemRecord>();
      const std::string n = std::to_string(i);
      record->SetEnding(n + "/01/2005");
      record->SetTitle("title " + n);
      record->SetPrice("$" + n);
      record->SetBids(n);
      m_list.InsertRow(static_cast<std::size_t>(i % 7), record);
    }
    filled = true;
  });
  // A header click every few hundred rows, all through the fill.
  int clicks = 0;
  for (std::size_t next = 0; !filled;) {
    if (m_list.RowCount() < next) continue;
    m_list.OnHeaderClick(clicks++ % CItemListCtrl::kColumnCount);
    next += 400;
  }
  filler.join();
  EXPECT_GT(clicks, 10);
  ASSERT_EQ(m_list.RowCount(), static_cast<std::size_t>(kRows + 1));
  for (std::size_t row = 0; row < m_list.RowCount(); row += 97) {
    const CItemListCtrl::RecordPtr record = m_list.RowAt(row);
    ASSERT_TRUE(record) << row;
    EXPECT_EQ(m_list.CellText(row, 1), record->GetTitle());
    EXPECT_EQ(m_list.CellText(row, 3), record->GetBids());
  }
  EXPECT_EQ(m_list.MarkedRow()->GetTitle(), "the marked one");
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
  list.AppendRow(record);
  list.SetSelectionMark(0);

  list.OpenLinkedPage(sites::LinkedPage::BidHistory);
  ASSERT_TRUE(browser.WaitForCount(1));
  list.OpenLinkedPage(sites::LinkedPage::SellersOtherItems);
  ASSERT_TRUE(browser.WaitForCount(2));
  // The row is cleared at once: the worker already holds the link it needs.
  list.OpenLinkedPage(sites::LinkedPage::SellerFeedback);
  list.Clear();
  ASSERT_TRUE(browser.WaitForCount(3));
  const Texts opened = browser.Opened();
  EXPECT_NE(opened[0].find("ViewBids"), std::string::npos) << opened[0];
  EXPECT_NE(opened[1].find("ViewListedItems"), std::string::npos) << opened[1];
  EXPECT_NE(opened[2].find("ViewFeedback"), std::string::npos) << opened[2];
  for (const std::string& url : opened) EXPECT_EQ(url.find("&amp;"), std::string::npos) << url;
}

}  // namespace
}  // namespace gavelscope::hotitems
