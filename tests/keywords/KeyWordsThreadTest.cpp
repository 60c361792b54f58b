// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "keywords/KeyWordsThread.h"

#include <gtest/gtest.h>

#include <atomic>

#include "support/RecordingBrowser.h"
#include "support/RecordingMessages.h"
#include "support/RecordingRunEvents.h"
#include "support/SandboxFixture.h"

namespace gavelscope::keywords {
namespace {

using testing::SandboxTest;

class KeyWordsThreadTest : public SandboxTest {
 protected:
  // A Site whose category list is exactly `list`.
  sites::Profile ProfileServing(std::string_view list) {
    sites::Profile profile = sites::CompiledProfile();
    profile.vendor.webServer = testing::TextUrl("www.gavelscope.example", list);
    profile.uk.categoryListPath = "";
    return profile;
  }
  void RunUK(const sites::Profile& profile, net::NetOptions options) {
    CKeyWordsThreadUK thread(profile, std::move(options), {m_treeUK, m_listUK, m_events});
    thread.SetLinePause(std::chrono::milliseconds(0));
    thread.Run({});
  }

  testing::RecordingBrowser m_browser;
  testing::RecordingMessages m_messages;
  testing::RecordingRunEvents m_events;
  CKeywordListCtrl m_listUK{m_browser, m_messages};
  CKeywordListCtrl m_listUSA{m_browser, m_messages};
  CCategoryTree m_treeUK{0, m_listUK, m_browser, m_messages};
  CCategoryTree m_treeUSA{1, m_listUSA, m_browser, m_messages};
};

TEST_F(KeyWordsThreadTest, StepsTheProgressOncePerCategoryLine) {
  RunUK(ProfileServing("~CAT~A~|~LA~|~\r\n~SUBCAT~A1~|~L1~|~\r\n~KEYWORD~lamp~|~S~|~\r\n~SUBCAT~A2~|~L2~|~\r\n"
                       "~CAT~B~|~LB~|~\r\n~SUBCAT~B1~|~L3~|~\r\n~CAT~C~|~LC~|~\r\n"),
        SandboxNetOptions());
  EXPECT_EQ(m_events.steps, 3);
  EXPECT_EQ(m_treeUK.RootItems().size(), 4U);
  EXPECT_EQ(m_listUK.RowAt(0)->GetKeyword(), "lamp");
  EXPECT_TRUE(m_events.refreshDone);
  EXPECT_EQ(m_events.finished, 1);
  EXPECT_TRUE(m_treeUK.IsRedrawOn());
  // The UK thread leaves the USA views alone.
  EXPECT_EQ(m_treeUSA.ItemCount(), 0U);
  EXPECT_EQ(m_listUSA.RowCount(), 0U);
}

TEST_F(KeyWordsThreadTest, UnreachableListLeavesTheTop100ItemAndStillCompletes) {
  net::NetOptions options = SandboxNetOptions();
  options.connectTo = {"www.gavelscope.example:80:127.0.0.1:" + std::to_string(testing::ClosedLoopbackPort())};
  RunUK(sites::CompiledProfile(), options);
  ASSERT_EQ(m_treeUK.ItemCount(), 1U);
  EXPECT_EQ(m_treeUK.GetItemText(m_treeUK.RootItems()[0]), "Top 100 Keywords");
  EXPECT_TRUE(m_treeUK.GetItemData(m_treeUK.RootItems()[0])->empty());
  EXPECT_EQ(m_events.steps, 0);
  EXPECT_TRUE(m_events.refreshDone);
  EXPECT_EQ(m_events.finished, 1);
}

TEST_F(KeyWordsThreadTest, LoadsTheSandboxList) {
  RunUK(sites::CompiledProfile(), SandboxNetOptions());
  EXPECT_GE(m_treeUK.RootItems().size(), 31U);
  EXPECT_GT(m_listUK.RowCount(), 10U);
  EXPECT_EQ(m_events.steps, static_cast<int>(m_treeUK.RootItems().size()) - 1);
}

}  // namespace
}  // namespace gavelscope::keywords
