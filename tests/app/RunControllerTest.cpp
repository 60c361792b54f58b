// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
//
// The run controller, and the main window's commands that drive it.
#include "app/RunController.h"

#include <gtest/gtest.h>

#include <set>
#include <thread>
#include <tuple>

#include "app/HeadlessMainView.h"
#include "app/MainCommands.h"
#include "support/RecordingBrowser.h"
#include "support/RecordingMessages.h"
#include "support/SandboxFixture.h"
#include "support/TempFolder.h"

namespace gavelscope::app {
namespace {

using sites::Site;

class RunControllerTest : public testing::SandboxTest {
 protected:
  // Unless `listsArrive`, the keyword lists never come.
  ControllerConfig Config(bool listsArrive = false) {
    ControllerConfig config{
        .profile = sites::CompiledProfile(), .net = SandboxNetOptions(), .cacheFolder = m_cache.path()};
    if (!listsArrive)
      config.net.connectTo.insert(config.net.connectTo.begin(), m_silent.ConnectTo("www.gavelscope.example"));
    return config;
  }

  // Starts a controller and waits for its auction loads, which wait for both start-up workers.
  std::unique_ptr<CRunController> Started(const ControllerConfig& config) {
    auto controller = std::make_unique<CRunController>(config, m_view, m_messages, m_browser);
    controller->Start();
    WaitForSettledLoads(*controller);
    return controller;
  }

  // The auction and history loads end on their own; with them the count is settled.
  static void WaitForSettledLoads(CRunController& controller) {
    for (Load load : {Load::AuctionsUSA, Load::AuctionsUK, Load::HotItems})
      EXPECT_TRUE(controller.LoadDone(load).Wait({}));
  }

  testing::SilentServer m_silent;
  testing::TempFolder m_cache;
  HeadlessMainView m_view;
  testing::RecordingMessages m_messages;
  testing::RecordingBrowser m_browser;
};

TEST_F(RunControllerTest, TheBarTurnsRedAtTheSeventhCompletionAndARefreshWaitsUntilTheKeywordsAreIn) {
  auto controller = Started(Config());
  const HeadlessMainView::State view = m_view.Snapshot();
  EXPECT_TRUE(view.visible[static_cast<int>(ViewId::TreeUSA)]);
  EXPECT_FALSE(view.visible[static_cast<int>(ViewId::TreeUK)]);
  EXPECT_EQ(view.stopButtonBitmap, kBitmapQueryIdle);
  EXPECT_TRUE(controller->IsRefreshing());
  EXPECT_FALSE(controller->RefreshDisplay());
  ASSERT_EQ(m_messages.Messages().size(), 1U);
  EXPECT_EQ(m_messages.Messages()[0].text, "System Is Already Refreshing Display");
  // Five completions are in; the seventh turns the bar red, an eighth changes nothing more.
  ASSERT_EQ(controller->FinishedLoads(), 5);
  for (int done = 5; done <= 8; ++done) {
    EXPECT_EQ(m_view.Snapshot().barColour, done < 7 ? kColourLoading : kColourLoaded) << done;
    EXPECT_EQ(m_view.Snapshot().waitCursor, done < 7 ? 1 : 0) << done;
    controller->OnThreadFinished();
  }
  controller->SetRefreshDone(true);
  EXPECT_TRUE(controller->RefreshDisplay());
  WaitForSettledLoads(*controller);
  // The refresh counts the two start-up loads itself, the auction loads follow, and the bar is green again.
  EXPECT_EQ(controller->FinishedLoads(), 5);
  EXPECT_EQ(m_view.Snapshot().barColour, kColourLoading);
  EXPECT_FALSE(controller->RefreshDisplay());
  EXPECT_EQ(m_messages.Messages().size(), 2U);
}

TEST_F(RunControllerTest, RefreshLoadsBothCataloguesAgainWithoutDoubling) {
  auto controller = Started(Config(true));
  for (Load load : {Load::KeywordsUK, Load::KeywordsUSA}) ASSERT_TRUE(controller->LoadDone(load).Wait({}));
  const std::size_t ukItems = controller->Tree(Site::UK).ItemCount();
  const std::size_t usaRows = controller->KeywordList(Site::USA).RowCount();
  const std::size_t auctionRows = controller->AuctionList(Site::UK).RowCount();
  // The sandbox's lists, whole: over thirty categories, and a Top 100 list.
  ASSERT_GT(ukItems, 31U);
  ASSERT_GT(usaRows, 10U);
  ASSERT_GT(auctionRows, 100U);
  EXPECT_EQ(controller->FinishedLoads(), 7);
  EXPECT_FALSE(controller->IsRefreshing());

  ASSERT_TRUE(controller->RefreshDisplay());
  for (Load load : {Load::KeywordsUK, Load::KeywordsUSA}) ASSERT_TRUE(controller->LoadDone(load).Wait({}));
  EXPECT_EQ(controller->Tree(Site::UK).ItemCount(), ukItems);
  EXPECT_EQ(controller->KeywordList(Site::USA).RowCount(), usaRows);
  // The auction threads of a refresh read the start-up's page at once: nothing is fetched again.
  WaitForSettledLoads(*controller);
  EXPECT_EQ(controller->AuctionList(Site::UK).RowCount(), auctionRows);
  EXPECT_EQ(controller->FinishedLoads(), 7);
}

TEST_F(RunControllerTest, ShutdownRemovesTheDownloadedFilesOnly) {
  const std::pair<const char*, bool> files[] = {
      {"HotItemList.txt", false}, {"GavelscopeBanners.txt", false}, {"saved.sbqry", true}};
  for (auto [name, kept] : files) testing::WriteFileBytes(m_cache / name, "x");
  Started(Config())->Shutdown();
  for (auto [name, kept] : files) EXPECT_EQ(std::filesystem::exists(m_cache / name), kept) << name;
}

TEST_F(RunControllerTest, PagesOffTheSitesAreNeverFetched) {
  ControllerConfig config = Config();
  config.net.connectTo.push_back("evil.example:80:127.0.0.1:" + std::to_string(Sandbox().PortFor("www.ebay.co.uk:80")));
  CRunController controller(config, m_view, m_messages, m_browser);
  EXPECT_EQ(controller.GetPageText(testing::TextUrl("cgi.ebay.co.uk", "item"), {}), "item");
  EXPECT_EQ(controller.GetPageText(testing::TextUrl("evil.example", "item"), {}), "");
  EXPECT_EQ(controller.GetPageText(testing::TextUrl("cgi.ebay.com@evil.example", "x"), {}), "");
}

// A controller that is never started: the commands only touch its views and flags.
class MainCommandsTest : public ::testing::Test {
 protected:
  testing::TempFolder m_cache;
  HeadlessMainView m_view;
  testing::RecordingMessages m_messages;
  testing::RecordingBrowser m_browser;
  CRunController m_controller{
      {.profile = sites::CompiledProfile(), .net = {}, .cacheFolder = m_cache.path()}, m_view, m_messages, m_browser};
  CMainCommands m_commands{m_controller, m_view, m_messages, m_browser};
};

// Each row switches the site after the tab; the query tab has one list for both sites.
TEST_F(MainCommandsTest, EachTabShowsItsViewsOfTheSelectedSiteOnlyExportsUnderItsTitleAndMyEbayIsTheSites) {
  EXPECT_FALSE(m_commands.SelectSite(Site::USA));
  using enum ViewId;
  const std::tuple<Tab, Site, std::set<ViewId>, const char*> tabs[] = {
      {Tab::Keywords, Site::UK, {TreeUK, KeywordsUK}, "Keywords"},
      {Tab::Auctions, Site::USA, {AuctionsUSA}, "Auctions"},
      {Tab::HotItems, Site::UK, {HotItemsUK}, "Hot Items"},
      {Tab::Query, Site::USA, {QueryResults, PagesSearched, StopQueryButton}, "Hot Items Query Results"}};
  for (const auto& [tab, site, shown, kind] : tabs) {
    m_commands.SelectTab(tab);
    EXPECT_TRUE(m_commands.SelectSite(site));
    const HeadlessMainView::State state = m_view.Snapshot();
    for (int view = 0; view <= static_cast<int>(PagesSearched); ++view) {
      EXPECT_EQ(state.visible[view], shown.contains(static_cast<ViewId>(view))) << kind << " " << view;
    }
    EXPECT_EQ(m_commands.ExportTitle(), std::string("Export Todays ") + kind + " List");
    m_commands.OpenMyEbay();
  }
  const std::string uk = "http://cgi1.ebay.co.uk/aw-cgi/eBayISAPI.dll?MyEbayLogin";
  const std::string usa = "http://cgi1.ebay.com/aw-cgi/eBayISAPI.dll?MyEbayLogin";
  EXPECT_EQ(m_browser.Opened(), (std::vector{uk, usa, uk, usa}));
}

TEST_F(MainCommandsTest, EnterNeverClosesAndSearchesTheVisibleListFromTheSearchEditOnly) {
  m_controller.AuctionList(Site::USA).InsertRow(0, {"Lamps", "1", nullptr});
  m_commands.SelectTab(Tab::Auctions);
  m_commands.EnterPressed(false, "lamp");
  EXPECT_TRUE(m_commands.skipDestroyOnce());
  EXPECT_EQ(m_controller.AuctionList(Site::USA).SelectionMark(), -1);
  m_commands.EnterPressed(true, "lamp");
  EXPECT_EQ(m_controller.AuctionList(Site::USA).SelectionMark(), 0);
  m_commands.EnterPressed(true, "");
  ASSERT_EQ(m_messages.Messages().size(), 1U);
  EXPECT_EQ(m_messages.Messages()[0].text, "Please Input A Search Word !");
}

TEST_F(MainCommandsTest, ExportWritesTheVisibleListOrReportsTheFile) {
  m_commands.SelectTab(Tab::HotItems);
  ASSERT_TRUE(m_commands.ExportView(m_cache / "items.txt"));
  EXPECT_EQ(testing::ReadFileBytes(m_cache / "items.txt"), m_controller.HotItemList(Site::USA).ExportText());
  EXPECT_FALSE(m_commands.ExportView(m_cache / "missing" / "items.txt"));
  ASSERT_EQ(m_messages.Messages().size(), 2U);
  EXPECT_NE(m_messages.Messages().back().text.find("missing/items.txt"), std::string::npos);
  EXPECT_FALSE(std::filesystem::exists(m_cache / "missing"));
}

TEST_F(MainCommandsTest, StopQueryTellsWhetherThereWasOneAndTheStopButtonShowsIt) {
  m_commands.StopQuery();
  EXPECT_EQ(m_messages.Messages().back().title, "Gavelscope Error");
  m_controller.SetQueryRunning(true);
  EXPECT_EQ(m_view.Snapshot().stopButtonBitmap, kBitmapQueryRunning);
  m_commands.StopQuery();
  EXPECT_FALSE(m_controller.IsQueryRunning());
  EXPECT_EQ(m_messages.Messages().back().text, "Gavelscope query analysis has been manually stopped");
  EXPECT_EQ(m_view.Snapshot().stopButtonBitmap, kBitmapQueryIdle);
}

TEST_F(MainCommandsTest, ThePagesCounterLosesNoCountAndReadsTextThatIsNoNumberAsNought) {
  m_controller.IncrementPagesSearched();
  m_controller.SetPagesSearchedText("Searching !");
  const auto count = [&] {
    for (int i = 0; i < 250; ++i) m_controller.IncrementPagesSearched();
  };
  { std::jthread a(count), b(count), c(count), d(count); }
  EXPECT_EQ(m_view.Snapshot().editText[static_cast<int>(ViewId::PagesSearched)], "1000");
}

}  // namespace
}  // namespace gavelscope::app
