// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "app/MainCommands.h"

#include <gtest/gtest.h>

#include "app/HeadlessMainView.h"
#include "support/RecordingBrowser.h"
#include "support/RecordingMessages.h"
#include "support/TempFolder.h"

namespace gavelscope::app {
namespace {

using sites::Site;

// A controller that is never started: the commands only touch its views and flags.
class MainCommandsTest : public ::testing::Test {
 protected:
  bool Visible(ViewId view) const { return m_view.Snapshot().visible[static_cast<int>(view)]; }

  static ControllerConfig Config(const std::filesystem::path& folder) {
    ControllerConfig config;
    config.profile = sites::CompiledProfile();
    config.cacheFolder = folder;
    return config;
  }

  testing::TempFolder m_folder;
  ControllerConfig m_config = Config(m_folder.path());
  HeadlessMainView m_view;
  testing::RecordingMessages m_messages;
  testing::RecordingBrowser m_browser;
  CRunController m_controller{m_config, m_view, m_messages, m_browser};
  CMainCommands m_commands{m_controller, m_view, m_messages, m_browser};
};

TEST(ViewSets, EachTabShowsItsViewsOfTheSelectedSite) {
  EXPECT_EQ(ViewsShown(Tab::Keywords, Site::UK), (std::vector<ViewId>{ViewId::TreeUK, ViewId::KeywordsUK}));
  EXPECT_EQ(ViewsShown(Tab::Auctions, Site::USA), std::vector<ViewId>{ViewId::AuctionsUSA});
  EXPECT_EQ(ViewsShown(Tab::HotItems, Site::UK), std::vector<ViewId>{ViewId::HotItemsUK});
  EXPECT_EQ(ViewsShown(Tab::Query, Site::UK),
            (std::vector<ViewId>{ViewId::QueryResults, ViewId::PagesSearched, ViewId::StopQueryButton}));
}

TEST_F(MainCommandsTest, TabsAndFlagsSwitchTheVisibleViews) {
  m_commands.SelectTab(Tab::Auctions);
  EXPECT_TRUE(Visible(ViewId::AuctionsUSA));
  EXPECT_FALSE(Visible(ViewId::TreeUSA));
  EXPECT_FALSE(m_commands.SelectSite(Site::USA));
  EXPECT_TRUE(m_commands.SelectSite(Site::UK));
  EXPECT_TRUE(Visible(ViewId::AuctionsUK));
  EXPECT_FALSE(Visible(ViewId::AuctionsUSA));
  // The query tab has one list for both sites: a site switch leaves it as it is.
  m_commands.SelectTab(Tab::Query);
  EXPECT_TRUE(m_commands.SelectSite(Site::USA));
  EXPECT_TRUE(Visible(ViewId::QueryResults));
  EXPECT_TRUE(Visible(ViewId::StopQueryButton));
  EXPECT_FALSE(Visible(ViewId::AuctionsUK));
}

TEST_F(MainCommandsTest, SearchGoesToTheVisibleListAndRefusesAnEmptyWord) {
  m_commands.SearchView("");
  ASSERT_EQ(m_messages.Messages().size(), 1U);
  EXPECT_EQ(m_messages.Messages()[0].text, "Please Input A Search Word !");
  m_controller.AuctionList(Site::USA).InsertRow(0, {"Lamps", "1", nullptr});
  m_commands.SelectTab(Tab::Auctions);
  m_commands.SearchView("lamp");
  EXPECT_EQ(m_controller.AuctionList(Site::USA).SelectionMark(), 0);
  m_commands.SearchView("vase");
  EXPECT_EQ(m_messages.Messages().back().text, "Item Not Found !");
}

TEST_F(MainCommandsTest, EnterNeverClosesAndSearchesOnlyFromTheSearchEdit) {
  m_commands.EnterPressed(false, "");
  EXPECT_TRUE(m_commands.skipDestroyOnce());
  EXPECT_TRUE(m_messages.Messages().empty());
  m_commands.EnterPressed(true, "");
  EXPECT_EQ(m_messages.Messages().size(), 1U);
}

TEST_F(MainCommandsTest, ExportWritesTheVisibleListOrReportsTheFile) {
  m_commands.SelectTab(Tab::HotItems);
  EXPECT_EQ(m_commands.ExportTitle(), "Export Todays Hot Items List");
  ASSERT_TRUE(m_commands.ExportView(m_folder / "items.txt"));
  EXPECT_EQ(testing::ReadFileBytes(m_folder / "items.txt"), m_controller.HotItemList(Site::USA).ExportText());
  const std::size_t shown = m_messages.Messages().size();
  EXPECT_FALSE(m_commands.ExportView(m_folder / "missing" / "items.txt"));
  ASSERT_EQ(m_messages.Messages().size(), shown + 1);
  EXPECT_NE(m_messages.Messages().back().text.find("missing/items.txt"), std::string::npos);
  EXPECT_FALSE(std::filesystem::exists(m_folder / "missing"));
  m_commands.SelectTab(Tab::Query);
  EXPECT_EQ(m_commands.ExportTitle(), "Export Todays Hot Items Query Results List");
}

TEST_F(MainCommandsTest, StopQueryTellsWhetherThereWasOne) {
  m_commands.StopQuery();
  EXPECT_EQ(m_messages.Messages().back().title, "Gavelscope Error");
  m_controller.SetQueryRunning(true);
  m_commands.StopQuery();
  EXPECT_FALSE(m_controller.IsQueryRunning());
  EXPECT_EQ(m_messages.Messages().back().text, "Gavelscope query analysis has been manually stopped");
  EXPECT_EQ(m_view.Snapshot().stopButtonBitmap, kBitmapQueryIdle);
}

TEST_F(MainCommandsTest, MyEbayOpensTheSitesSignInPage) {
  m_commands.OpenMyEbay();
  m_commands.SelectSite(Site::UK);
  m_commands.OpenMyEbay();
  EXPECT_EQ(m_browser.Opened(), (std::vector<std::string>{"http://cgi1.ebay.com/aw-cgi/eBayISAPI.dll?MyEbayLogin",
                                                          "http://cgi1.ebay.co.uk/aw-cgi/eBayISAPI.dll?MyEbayLogin"}));
}

}  // namespace
}  // namespace gavelscope::app
