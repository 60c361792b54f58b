// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "hotitems/LoadHotItemsThread.h"

#include <gtest/gtest.h>

#include <atomic>

#include "support/RecordingBrowser.h"
#include "support/RecordingMessages.h"
#include "support/RecordingRunEvents.h"
#include "support/SandboxFixture.h"
#include "support/TempFolder.h"

namespace gavelscope::hotitems {
namespace {

class NoPages : public base::IPageSource {
 public:
  std::string GetPageText(std::string_view, std::stop_token) override { return {}; }
};

class LoadHotItemsTest : public testing::SandboxTest {
 protected:
  void Serve(const std::string& history) { testing::WriteFileBytes(Sandbox().ftpRoot() / "HotItemList.txt", history); }
  void Load(net::NetOptions options) {
    CLoadHotItemsThread loader(sites::CompiledProfile(), std::move(options), m_folder.path(), {m_usa, m_uk, m_events});
    loader.SetRetryPause(std::chrono::milliseconds(0));
    loader.Run({});
  }
  void Load() { Load(SandboxNetOptions()); }
  static std::vector<std::string> Titles(const CItemListCtrl& list) {
    std::vector<std::string> titles;
    for (int row = 0; row < list.RowCount(); ++row) titles.push_back(list.RowAt(row)->GetTitle());
    return titles;
  }

  testing::TempFolder m_folder;
  testing::RecordingBrowser m_browser;
  testing::RecordingMessages m_messages;
  NoPages m_pages;
  testing::RecordingRunEvents m_events;
  CItemListCtrl m_usa{ItemListVariant::HistoryUSA, m_browser, m_messages, m_pages, DateOrder::DayFirst};
  CItemListCtrl m_uk{ItemListVariant::HistoryUK, m_browser, m_messages, m_pages, DateOrder::DayFirst};
};

using Texts = std::vector<std::string>;

TEST_F(LoadHotItemsTest, RoutesLinesBySiteInFileOrderThenSortsByBids) {
  Serve(
      "L1~|~07/03/2005~|~first~|~$5.00~|~41~|~\r\n"
      "L2~|~07/03/2005~|~pounds~|~GBP 5.00~|~33~|~\r\n"
      "L3~|~08/03/2005~|~third~|~$7.00~|~41~|~\n"
      "L4~|~08/03/2005~|~fourth~|~$1.00~|~-~|~");
  Load();
  EXPECT_EQ(Titles(m_usa), (Texts{"fourth", "first", "third"}));
  EXPECT_EQ(Titles(m_uk), Texts{"pounds"});
  EXPECT_EQ(m_usa.CellText(1, 0), "07/03/2005");
  EXPECT_EQ(m_usa.CellText(2, 3), "41");
  // The row index the list gave when the line was read.
  EXPECT_EQ(m_usa.RowAt(1)->GetRow(), 0);
  EXPECT_EQ(m_usa.SortColumn(), 3);
  EXPECT_TRUE(m_usa.IsRedrawOn());
  EXPECT_TRUE(m_uk.IsRedrawOn());
  EXPECT_EQ(m_events.finished, 1);
}

TEST_F(LoadHotItemsTest, AReloadDoesNotDoubleTheRows) {
  Serve("L1~|~07/03/2005~|~a~|~$5.00~|~41~|~\r\nL2~|~07/03/2005~|~b~|~GBP 5.00~|~33~|~\r\n");
  Load();
  Load();
  EXPECT_EQ(m_usa.RowCount(), 1);
  EXPECT_EQ(m_uk.RowCount(), 1);
  EXPECT_EQ(m_events.finished, 2);
}

TEST_F(LoadHotItemsTest, EmptyFileGivesEmptyListsAndCompletes) {
  Serve("");
  Load();
  EXPECT_EQ(m_usa.RowCount(), 0);
  EXPECT_EQ(m_uk.RowCount(), 0);
  EXPECT_EQ(m_events.finished, 1);
}

TEST_F(LoadHotItemsTest, MissingFileEndsAfterTheBoundedRetries) {
  std::filesystem::remove(Sandbox().ftpRoot() / "HotItemList.txt");
  m_usa.AppendRow(std::make_shared<CHotItemRecord>());
  Load();
  EXPECT_EQ(m_usa.RowCount(), 0);
  EXPECT_TRUE(m_usa.IsRedrawOn());
  EXPECT_EQ(m_events.finished, 1);
}

TEST_F(LoadHotItemsTest, UnreachableServerEndsTheSameWay) {
  net::NetOptions options = SandboxNetOptions();
  options.connectTo = {"ftp.gavelscope.example:21:127.0.0.1:" + std::to_string(testing::ClosedLoopbackPort())};
  Load(options);
  EXPECT_EQ(m_uk.RowCount(), 0);
  EXPECT_TRUE(m_uk.IsRedrawOn());
  EXPECT_EQ(m_events.finished, 1);
}

}  // namespace
}  // namespace gavelscope::hotitems
