// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "app/BrowserLauncher.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <set>

#include "support/RecordingMessages.h"
#include "support/TempFolder.h"

namespace gavelscope::app {
namespace {

using testing::RecordingMessages;
using testing::TempFolder;

// A stand-in browser that writes the address it was given into a pipe; reading the pipe waits for
// it, so the test needs no timing.
class BrowserLauncherTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(mkfifo(m_fifo.c_str(), 0600), 0);
    // Held open for writing too, so the pipe never reports its end between two browsers.
    m_pipe = open(m_fifo.c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_GE(m_pipe, 0);
  }
  void TearDown() override { close(m_pipe); }

  std::vector<std::string> StandInBrowser() const {
    return {"/bin/sh", "-c", "printf '%s\\n' \"$1\" > \"$0\"", m_fifo.string()};
  }

  std::string NextOpenedUrl() const {
    std::string url;
    for (char c; read(m_pipe, &c, 1) == 1 && c != '\n';) url += c;
    return url;
  }

  TempFolder m_folder;
  std::filesystem::path m_fifo = m_folder / "browser";
  int m_pipe = -1;
  RecordingMessages m_messages;
};

TEST_F(BrowserLauncherTest, HandsTheAddressToTheBrowserAsOneArgument) {
  CBrowserLauncher launcher(m_messages, StandInBrowser());
  // Spaces, quotes and shell characters reach the browser untouched: no shell sees the address.
  const std::string url = "http://listings.ebay.com/a b/list/?q=\"x\";$(touch gone)&y='1'";
  launcher.OpenUrlInBrowser(url);
  EXPECT_EQ(NextOpenedUrl(), url);
  launcher.Shutdown();
  EXPECT_TRUE(m_messages.Messages().empty());
  EXPECT_FALSE(std::filesystem::exists("gone"));
}

TEST_F(BrowserLauncherTest, TwoCallsStartTwoBrowsers) {
  CBrowserLauncher launcher(m_messages, StandInBrowser());
  launcher.OpenUrlInBrowser("https://www.gavelscope.example/");
  launcher.OpenUrlInBrowser("ftp://ftp.gavelscope.example/");
  std::set<std::string> opened{NextOpenedUrl(), NextOpenedUrl()};
  EXPECT_EQ(opened, (std::set<std::string>{"https://www.gavelscope.example/", "ftp://ftp.gavelscope.example/"}));
}

TEST_F(BrowserLauncherTest, BrowserThatCannotStartIsReported) {
  CBrowserLauncher launcher(m_messages, {"/nonexistent/browser"});
  launcher.OpenUrlInBrowser("http://www.gavelscope.example/");
  ASSERT_TRUE(m_messages.WaitForCount(1));
  EXPECT_EQ(m_messages.Messages()[0].text, "Failed to get IWebBrowser2 interface. HRESULT");
}

TEST_F(BrowserLauncherTest, BrowserThatFailsIsReported) {
  CBrowserLauncher launcher(m_messages, {"/bin/false"});
  launcher.OpenUrlInBrowser("http://www.gavelscope.example/");
  ASSERT_TRUE(m_messages.WaitForCount(1));
  EXPECT_EQ(m_messages.Messages()[0].text, "Failed to get IWebBrowser2 interface. HRESULT");
}

TEST(BrowsableUrl, OnlyWebAndFtpAddresses) {
  EXPECT_TRUE(IsBrowsableUrl("http://cgi.ebay.com/ws/eBayISAPI.dll?ViewItem&item=1"));
  EXPECT_TRUE(IsBrowsableUrl("HTTPS://example.com"));
  EXPECT_TRUE(IsBrowsableUrl("ftp://ftp.gavelscope.example/x"));
  EXPECT_FALSE(IsBrowsableUrl("file:///etc/passwd"));
  EXPECT_FALSE(IsBrowsableUrl("javascript:alert(1)"));
  EXPECT_FALSE(IsBrowsableUrl("--help"));
  EXPECT_FALSE(IsBrowsableUrl("http:relative"));
  EXPECT_FALSE(IsBrowsableUrl(""));
}

TEST_F(BrowserLauncherTest, OtherAddressesNeverReachTheBrowser) {
  CBrowserLauncher launcher(m_messages, StandInBrowser());
  launcher.OpenUrlInBrowser("file:///etc/passwd");
  ASSERT_TRUE(m_messages.WaitForCount(1));
  EXPECT_EQ(m_messages.Messages()[0].text, "Failed to get IWebBrowser2 interface. HRESULT");
}

}  // namespace
}  // namespace gavelscope::app
