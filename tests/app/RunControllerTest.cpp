// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "app/RunController.h"

#include <gtest/gtest.h>

#include <chrono>

#include "app/HeadlessMainView.h"
#include "support/RecordingBrowser.h"
#include "support/RecordingMessages.h"
#include "support/SandboxFixture.h"
#include "support/TempFolder.h"

namespace gavelscope::app {
namespace {

using sites::Site;
using testing::RecordingMessages;
using testing::SandboxTest;
using testing::TempFolder;
using testing::TextUrl;

class RunControllerTest : public SandboxTest {
 protected:
  // Unless `listsArrive`, the keyword lists never come, so the count and the refreshing flag are the
  // test's to drive.
  ControllerConfig Config(bool listsArrive = false) {
    ControllerConfig config;
    config.profile = sites::CompiledProfile();
    config.net = SandboxNetOptions();
    if (!listsArrive) {
      config.net.connectTo.insert(config.net.connectTo.begin(), m_silent.ConnectTo("www.gavelscope.example"));
    }
    config.cacheFolder = m_cache.path();
    return config;
  }

  // Starts a controller and waits until both start-up workers are through.
  std::unique_ptr<CRunController> Started(const ControllerConfig& config) {
    auto controller = std::make_unique<CRunController>(config, m_view, m_messages, m_browser);
    controller->Start();
    EXPECT_TRUE(controller->Categories(Site::UK).ready.Wait({}));
    EXPECT_TRUE(controller->Categories(Site::USA).ready.Wait({}));
    WaitForSettledLoads(*controller);
    return controller;
  }

  // The auction and history loads end on their own; with them the count is settled.
  static void WaitForSettledLoads(CRunController& controller) {
    EXPECT_TRUE(controller.LoadDone(Load::AuctionsUSA).Wait({}));
    EXPECT_TRUE(controller.LoadDone(Load::AuctionsUK).Wait({}));
    EXPECT_TRUE(controller.LoadDone(Load::HotItems).Wait({}));
  }

  testing::SilentServer m_silent;
  TempFolder m_cache;
  HeadlessMainView m_view;
  RecordingMessages m_messages;
  testing::RecordingBrowser m_browser;
};

TEST_F(RunControllerTest, StartUpDiscoversTheCategoriesOfBothSites) {
  auto controller = Started(Config());
  for (Site site : {Site::UK, Site::USA}) {
    const sites::SiteCategories& found = controller->Categories(site);
    EXPECT_FALSE(found.arrCategoryNames.empty());
    EXPECT_EQ(found.arrCategoryNames.size(), found.arrCategoryLinks.size());
    EXPECT_NE(found.strHomePage.find("</b></a> ("), std::string::npos);
  }
  EXPECT_EQ(controller->Categories(Site::UK).arrCategoryNames[0], "Antiques");
  // The home pages link categories by path; the cut drops the closing "/".
  EXPECT_EQ(controller->Categories(Site::UK).arrCategoryLinks[0], "/Antiques_W0QQsacatZ1000/list");
  EXPECT_EQ(controller->FinishedLoads(), 5);
  EXPECT_TRUE(controller->IsRefreshing());

  const HeadlessMainView::State view = m_view.Snapshot();
  EXPECT_TRUE(view.visible[static_cast<int>(ViewId::TreeUSA)]);
  EXPECT_FALSE(view.visible[static_cast<int>(ViewId::TreeUK)]);
  EXPECT_EQ(view.editText[static_cast<int>(ViewId::PagesSearched)], "0");
  EXPECT_EQ(view.barColour, kColourLoading);
  EXPECT_EQ(view.stopButtonBitmap, kBitmapQueryIdle);
  EXPECT_EQ(view.waitCursor, 1);
}

TEST_F(RunControllerTest, EmptyHomePageStillSetsTheEventAndCounts) {
  ControllerConfig config = Config();
  config.profile.uk.listingRoot = TextUrl("listings.ebay.co.uk", "");
  config.profile.usa.listingRoot = TextUrl("listings.ebay.com", "<html>no categories today</html>");
  auto controller = Started(config);
  EXPECT_TRUE(controller->Categories(Site::UK).arrCategoryNames.empty());
  EXPECT_TRUE(controller->Categories(Site::USA).arrCategoryLinks.empty());
  EXPECT_EQ(controller->FinishedLoads(), 5);
}

TEST_F(RunControllerTest, UnreachableHomePageStillSetsTheEventAndCounts) {
  ControllerConfig config = Config();
  config.net.connectTo.insert(config.net.connectTo.begin(),
                              "listings.ebay.com:80:127.0.0.1:" + std::to_string(testing::ClosedLoopbackPort()));
  auto controller = Started(config);
  EXPECT_TRUE(controller->Categories(Site::USA).arrCategoryNames.empty());
  EXPECT_FALSE(controller->Categories(Site::UK).arrCategoryNames.empty());
  EXPECT_EQ(controller->FinishedLoads(), 5);
}

TEST_F(RunControllerTest, BarTurnsRedAtTheSeventhCompletionOnly) {
  auto controller = Started(Config());
  ASSERT_EQ(controller->FinishedLoads(), 5);
  controller->OnThreadFinished();
  EXPECT_EQ(m_view.Snapshot().barColour, kColourLoading);
  EXPECT_EQ(m_view.Snapshot().waitCursor, 1);
  controller->OnThreadFinished();
  EXPECT_EQ(m_view.Snapshot().barColour, kColourLoaded);
  EXPECT_EQ(m_view.Snapshot().waitCursor, 0);
  // An eighth completion changes nothing more.
  controller->OnThreadFinished();
  EXPECT_EQ(m_view.Snapshot().waitCursor, 0);
}

TEST_F(RunControllerTest, RefreshIsRefusedUntilTheRefreshIsDone) {
  auto controller = Started(Config());
  EXPECT_FALSE(controller->RefreshDisplay());
  ASSERT_EQ(m_messages.Messages().size(), 1U);
  EXPECT_EQ(m_messages.Messages()[0].text, "System Is Already Refreshing Display");
  EXPECT_EQ(m_messages.Messages()[0].title, "Gavelscope");
  EXPECT_EQ(controller->FinishedLoads(), 5);

  controller->SetRefreshDone(true);
  EXPECT_TRUE(controller->RefreshDisplay());
  WaitForSettledLoads(*controller);
  EXPECT_EQ(m_messages.Messages().size(), 1U);
  // The refresh counts the two start-up loads itself, the auction loads follow, and the bar is green again.
  EXPECT_EQ(controller->FinishedLoads(), 5);
  EXPECT_EQ(m_view.Snapshot().barColour, kColourLoading);
  EXPECT_FALSE(controller->RefreshDisplay());
  EXPECT_EQ(m_messages.Messages().size(), 2U);
}

TEST_F(RunControllerTest, RefreshLoadsBothCataloguesAgainWithoutDoubling) {
  auto controller = Started(Config(true));
  ASSERT_TRUE(controller->LoadDone(Load::KeywordsUK).Wait({}));
  ASSERT_TRUE(controller->LoadDone(Load::KeywordsUSA).Wait({}));
  const std::size_t ukItems = controller->Tree(Site::UK).ItemCount();
  const std::size_t usaRows = controller->KeywordList(Site::USA).RowCount();
  const std::size_t auctionRows = controller->AuctionList(Site::UK).RowCount();
  ASSERT_GT(ukItems, 1U);
  ASSERT_GT(auctionRows, 100U);
  EXPECT_EQ(controller->FinishedLoads(), 7);
  EXPECT_FALSE(controller->IsRefreshing());

  ASSERT_TRUE(controller->RefreshDisplay());
  ASSERT_TRUE(controller->LoadDone(Load::KeywordsUK).Wait({}));
  ASSERT_TRUE(controller->LoadDone(Load::KeywordsUSA).Wait({}));
  EXPECT_EQ(controller->Tree(Site::UK).ItemCount(), ukItems);
  EXPECT_EQ(controller->KeywordList(Site::USA).RowCount(), usaRows);
  // The auction threads of a refresh read the start-up's page at once: nothing is fetched again.
  WaitForSettledLoads(*controller);
  EXPECT_EQ(controller->AuctionList(Site::UK).RowCount(), auctionRows);
  EXPECT_EQ(controller->FinishedLoads(), 7);
}

TEST_F(RunControllerTest, ShutdownReturnsQuicklyWhileWorkersWaitOnASilentServer) {
  ControllerConfig config = Config();
  config.profile.uk.listingRoot = "http://listings.ebay.co.uk/_test/hang";
  config.profile.usa.listingRoot = "http://listings.ebay.com/_test/hang";
  CRunController controller(config, m_view, m_messages, m_browser);
  controller.Start();
  const auto started = std::chrono::steady_clock::now();
  controller.Shutdown();
  EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(2));
}

TEST_F(RunControllerTest, ShutdownRemovesTheDownloadedFilesOnly) {
  for (const char* name : {"HotItemList.txt", "GavelscopeBanners.txt", "saved.sbqry"}) {
    testing::WriteFileBytes(m_cache / name, "x");
  }
  Started(Config())->Shutdown();
  EXPECT_FALSE(std::filesystem::exists(m_cache / "HotItemList.txt"));
  EXPECT_FALSE(std::filesystem::exists(m_cache / "GavelscopeBanners.txt"));
  EXPECT_TRUE(std::filesystem::exists(m_cache / "saved.sbqry"));
}

TEST_F(RunControllerTest, QueryFlagAndPagesCounter) {
  auto controller = Started(Config());
  controller->SetQueryRunning(true);
  EXPECT_TRUE(controller->IsQueryRunning());
  EXPECT_EQ(m_view.Snapshot().stopButtonBitmap, kBitmapQueryRunning);
  controller->SetQueryRunning(false);
  EXPECT_EQ(m_view.Snapshot().stopButtonBitmap, kBitmapQueryIdle);

  controller->IncrementPagesSearched();
  controller->IncrementPagesSearched();
  EXPECT_EQ(m_view.Snapshot().editText[static_cast<int>(ViewId::PagesSearched)], "2");
  // The counter reads the edit's text as a number: text that is not one counts as 0.
  controller->SetPagesSearchedText("Searching !");
  controller->IncrementPagesSearched();
  EXPECT_EQ(m_view.Snapshot().editText[static_cast<int>(ViewId::PagesSearched)], "1");
}

TEST_F(RunControllerTest, PagesOffTheSitesAreNeverFetched) {
  ControllerConfig config = Config();
  config.net.connectTo.push_back("evil.example:80:127.0.0.1:" + std::to_string(Sandbox().PortFor("www.ebay.co.uk:80")));
  auto controller = Started(config);
  EXPECT_EQ(controller->GetPageText(testing::TextUrl("cgi.ebay.co.uk", "item"), {}), "item");
  for (const std::string& link :
       {testing::TextUrl("evil.example", "item"), testing::TextUrl("cgi.ebay.com@evil.example", "x")}) {
    EXPECT_EQ(controller->GetPageText(link, {}), "") << link;
  }
}

TEST_F(RunControllerTest, ConcurrentPageCountsAreNotLost) {
  auto controller = Started(Config());
  {
    std::vector<std::jthread> counters;
    for (int t = 0; t < 4; ++t) {
      counters.emplace_back([&] {
        for (int i = 0; i < 250; ++i) controller->IncrementPagesSearched();
      });
    }
  }
  EXPECT_EQ(m_view.Snapshot().editText[static_cast<int>(ViewId::PagesSearched)], "1000");
}

}  // namespace
}  // namespace gavelscope::app
