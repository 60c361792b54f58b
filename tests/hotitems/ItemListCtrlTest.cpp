// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "hotitems/ItemListCtrl.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "hotitems/LoadHotItemsThread.h"
#include "net/PageFetcher.h"
#include "support/RecordingBrowser.h"
#include "support/RecordingMessages.h"
#include "support/RecordingRunEvents.h"
#include "support/SandboxFixture.h"
#include "support/TempFolder.h"

namespace gavelscope::hotitems {
namespace {

using Texts = std::vector<std::string>;

Texts Column(const CItemListCtrl& list, int column) {
  Texts texts;
  for (std::size_t row = 0; row < list.RowCount(); ++row) texts.push_back(list.CellText(row, column));
  return texts;
}

// Pages come from a session on the sandbox, or from nowhere.
struct SessionPages : base::IPageSource {
  explicit SessionPages(net::NetOptions options) : pages(std::move(options)) {}
  std::string GetPageText(std::string_view url, std::stop_token stop) override { return pages.GetPageText(url, stop); }
  net::SharedSession pages;
};

class ItemListTest : public ::testing::Test {
 protected:
  explicit ItemListTest(ItemListVariant variant = ItemListVariant::HistoryUSA, DateOrder order = DateOrder::DayFirst)
      : m_list(variant, m_browser, m_messages, m_pages, order) {}

  // One row per text, shown in `column`: the cells are in the history line's order.
  void Fill(int column, const Texts& texts) {
    for (const std::string& text : texts) {
      std::string c[CItemListCtrl::kColumnCount];
      c[column] = text;
      const std::string line = "L~|~" + c[0] + "~|~" + c[1] + "~|~" + c[2] + "~|~" + c[3] + "~|~";
      m_list.AppendRow(std::make_shared<CHotItemRecord>(ParseHistoryLine(line)));
    }
  }

  testing::RecordingBrowser m_browser;
  testing::RecordingMessages m_messages;
  SessionPages m_pages{net::NetOptions{}};
  CItemListCtrl m_list;
};

struct SortRule {
  const char* name;
  ItemListVariant variant;
  DateOrder order;
  int column;
  Texts shown, ascending;
};

constexpr auto kUSA = ItemListVariant::HistoryUSA, kQuery = ItemListVariant::QueryResults;
constexpr auto kDay = DateOrder::DayFirst, kMonth = DateOrder::MonthFirst;
// "\243" is the pound sign of the pages' Latin-1: "\24330" is 30 pounds.
const SortRule kSortRules[] = {
    {"BidsTreatDashAsZero", kUSA, kDay, 3, {"5", "-", "41"}, {"-", "5", "41"}},
    {"PricesDropTheirMarks", kUSA, kDay, 2, {"$1,200", "GBP 950", "$99", "5"}, {"5", "$99", "GBP 950", "$1,200"}},
    {"NumberTitlesAsNumbers", kUSA, kDay, 1, {"1984", "200", ""}, {"", "200", "1984"}},
    {"DayFirstDates", kUSA, kDay, 0, {"06/04/2005", "07/03/2005"}, {"07/03/2005", "06/04/2005"}},
    {"MonthFirstDates", kUSA, kMonth, 0, {"n/a", "07/03/2005", "06/04/2005"}, {"06/04/2005", "07/03/2005", "n/a"}},
    {"QueryTimeLeftInSeconds", kQuery, kDay, 0, {"1d 2h", "2h 30m", "45m"}, {"45m", "2h 30m", "1d 2h"}},
    {"QueryPricesDropMarks", kQuery, kDay, 2, {"C $40", "\24330", "US $20", "10"}, {"10", "US $20", "\24330", "C $40"}},
};

class ItemListSort : public ItemListTest, public ::testing::WithParamInterface<int> {
 protected:
  ItemListSort() : ItemListTest(kSortRules[GetParam()].variant, kSortRules[GetParam()].order) {}
};

// A click on another column than the last sorts ascending; a second click on it reverses.
TEST_P(ItemListSort, HeaderClicksSortByTheColumnsRuleBothWays) {
  const SortRule& rule = kSortRules[GetParam()];
  Fill(rule.column, rule.shown);
  m_list.SortItems((rule.column + 1) % CItemListCtrl::kColumnCount, false);
  m_list.OnHeaderClick(rule.column);
  EXPECT_EQ(Column(m_list, rule.column), rule.ascending);
  m_list.OnHeaderClick(rule.column);
  EXPECT_EQ(Column(m_list, rule.column), Texts(rule.ascending.rbegin(), rule.ascending.rend()));
  EXPECT_EQ(std::pair(m_list.SortColumn(), m_list.SortAscending()), std::pair(rule.column, false));
}

INSTANTIATE_TEST_SUITE_P(Rules, ItemListSort, ::testing::Range(0, static_cast<int>(std::size(kSortRules))),
                         [](const auto& info) { return std::string(kSortRules[info.param].name); });

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

// The loader fills both history lists from the sandbox's FTP server.
class LoadHotItemsTest : public testing::SandboxTest {
 protected:
  void Serve(const std::string& history) { testing::WriteFileBytes(Sandbox().ftpRoot() / "HotItemList.txt", history); }
  void Load() {
    CLoadHotItemsThread loader(sites::CompiledProfile(), SandboxNetOptions(), m_folder.path(), {m_usa, m_uk, m_events});
    loader.SetRetryPause(std::chrono::milliseconds(0));
    loader.Run({});
  }

  testing::TempFolder m_folder;
  testing::RecordingBrowser m_browser;
  testing::RecordingMessages m_messages;
  SessionPages m_pages{net::NetOptions{}};
  testing::RecordingRunEvents m_events;
  CItemListCtrl m_usa{ItemListVariant::HistoryUSA, m_browser, m_messages, m_pages, DateOrder::DayFirst};
  CItemListCtrl m_uk{ItemListVariant::HistoryUK, m_browser, m_messages, m_pages, DateOrder::DayFirst};
};

TEST_F(LoadHotItemsTest, RoutesLinesBySiteInFileOrderThenSortsByBidsAndEachLoadReplacesTheRows) {
  Serve(
      "L1~|~07/03/2005~|~first~|~$5.00~|~41~|~\r\n"
      "http://cgi.ebay.com/L2~|~07/03/2005~|~pounds~|~GBP 5.00~|~33~|~\r\n"
      "L3~|~08/03/2005~|~third~|~$7.00~|~41~|~\n"
      "L4~|~08/03/2005~|~fourth~|~$1.00~|~-~|~");
  Load();
  Load();
  EXPECT_EQ(Column(m_usa, 1), (Texts{"fourth", "first", "third"}));
  EXPECT_EQ(Column(m_uk, 1), Texts{"pounds"});
  // The row index the list gave when the line was read.
  EXPECT_EQ(m_usa.RowAt(1)->GetRow(), 0);
  EXPECT_EQ(m_usa.SortColumn(), 3);
  // The UK list opens the marked item on its own site; without a mark, nothing.
  m_uk.OpenItemPage();
  m_uk.SetSelectionMark(0);
  m_uk.OpenItemPage();
  EXPECT_EQ(m_browser.Opened(), Texts{"http://cgi.ebay.co.uk/L2"});
  // An empty history, then none at all (after bounded retries): each load empties both lists.
  Serve("");
  Load();
  EXPECT_EQ(m_usa.RowCount() + m_uk.RowCount(), 0U);
  std::filesystem::remove(Sandbox().ftpRoot() / "HotItemList.txt");
  m_usa.AppendRow(std::make_shared<CHotItemRecord>());
  Load();
  EXPECT_EQ(m_usa.RowCount() + m_uk.RowCount(), 0U);
  EXPECT_TRUE(m_usa.IsRedrawOn() && m_uk.IsRedrawOn());
  EXPECT_EQ(m_events.finished, 4);
}

// A suite of its own, so the sandbox's history is the one it was generated with.
class LinkedPageWorker : public LoadHotItemsTest {};

TEST_F(LinkedPageWorker, OpensALinkOfALoadedItemsSandboxPageEvenOnceItsRowIsGone) {
  Load();
  SessionPages pages(SandboxNetOptions());
  CItemListCtrl list(ItemListVariant::HistoryUSA, m_browser, m_messages, pages, DateOrder::DayFirst);
  list.AppendRow(m_usa.RowAt(0));
  list.SetSelectionMark(0);
  list.OpenLinkedPage(sites::LinkedPage::BidHistory);
  // The row is cleared at once: the worker already holds the link it needs.
  list.Clear();
  ASSERT_TRUE(m_browser.WaitForCount(1));
  // The link as the page writes it, its "&amp;" read as "&".
  EXPECT_NE(m_browser.Opened()[0].find("?ViewBids&item="), std::string::npos) << m_browser.Opened()[0];
}

}  // namespace
}  // namespace gavelscope::hotitems
