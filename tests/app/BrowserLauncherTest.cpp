// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
//
// What the program asks of the desktop: a web browser for its pages, and one instance at a time.
#include "app/BrowserLauncher.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <optional>
#include <set>

#include "app/InstanceGuard.h"
#include "support/RecordingMessages.h"
#include "support/TempFolder.h"

namespace gavelscope::app {
namespace {

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

  std::string NextOpenedUrl() const {
    std::string url;
    for (char c; read(m_pipe, &c, 1) == 1 && c != '\n';) url += c;
    return url;
  }

  testing::TempFolder m_folder;
  std::filesystem::path m_fifo = m_folder / "browser";
  int m_pipe = -1;
  testing::RecordingMessages m_messages;
  std::vector<std::string> m_standIn{"/bin/sh", "-c", "printf '%s\\n' \"$1\" > \"$0\"", m_fifo.string()};
};

TEST_F(BrowserLauncherTest, EachWebOrFtpAddressStartsABrowserWithTheAddressAsOneArgument) {
  CBrowserLauncher launcher(m_messages, m_standIn);
  // Spaces, quotes and shell characters reach the browser untouched: no shell sees the address.
  const std::set<std::string> urls{"http://listings.ebay.com/a b/list/?q=\"x\";$(touch gone)&y='1'",
                                   "HTTPS://example.com", "ftp://ftp.gavelscope.example/"};
  for (const std::string& url : urls) launcher.OpenUrlInBrowser(url);
  EXPECT_EQ((std::set<std::string>{NextOpenedUrl(), NextOpenedUrl(), NextOpenedUrl()}), urls);
  launcher.Shutdown();
  EXPECT_TRUE(m_messages.Messages().empty());
  EXPECT_FALSE(std::filesystem::exists("gone"));
}

// A browser that cannot start, one that fails, and the addresses no browser may be given.
TEST_F(BrowserLauncherTest, EveryPageThatCannotBeOpenedIsReported) {
  std::vector<std::pair<std::vector<std::string>, std::string>> cases{{{"/nonexistent/browser"}, "http://a.example/"},
                                                                      {{"/bin/false"}, "http://a.example/"}};
  for (const char* url : {"file:///etc/passwd", "javascript:alert(1)", "--help", "http:relative", ""}) {
    cases.push_back({m_standIn, url});
  }
  for (const auto& [command, url] : cases) {
    testing::RecordingMessages messages;
    CBrowserLauncher launcher(messages, command);
    launcher.OpenUrlInBrowser(url);
    ASSERT_TRUE(messages.WaitForCount(1)) << command[0] << " " << url;
    EXPECT_EQ(messages.Messages()[0].text, "Failed to get IWebBrowser2 interface. HRESULT");
  }
}

TEST(InstanceGuard, ASecondInstanceSeesTheFirstUntilItEndsAndAnUnwritableFolderBlocksNothing) {
  testing::TempFolder folder;
  std::optional<InstanceGuard> first(std::in_place, folder.path());
  EXPECT_FALSE(first->anotherInstanceRunning());
  EXPECT_TRUE(InstanceGuard(folder.path()).anotherInstanceRunning());
  // The refused second guard leaves the first one's claim intact.
  EXPECT_TRUE(InstanceGuard(folder.path()).anotherInstanceRunning());
  first.reset();
  EXPECT_FALSE(InstanceGuard(folder.path()).anotherInstanceRunning());
  EXPECT_FALSE(InstanceGuard("/proc/no-such-folder").anotherInstanceRunning());
}

}  // namespace
}  // namespace gavelscope::app
