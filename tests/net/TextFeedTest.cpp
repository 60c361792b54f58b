// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "net/TextFeed.h"

#include <gtest/gtest.h>

#include <vector>

#include "net/Session.h"
#include "support/SandboxFixture.h"

namespace gavelscope::net {
namespace {

using testing::ClosedLoopbackPort;
using testing::SandboxTest;
using testing::TextUrl;

class TextFeedTest : public SandboxTest {
 protected:
  std::vector<std::string> ReadAll(const std::string& url) {
    FeedOpenResult opened = OpenTextFeed(m_session, url, {});
    EXPECT_TRUE(opened.feed) << opened.error;
    std::vector<std::string> lines;
    if (!opened.feed) return lines;
    for (std::string line; opened.feed->ReadLine(line);) lines.push_back(line);
    EXPECT_FALSE(opened.feed->failed());
    return lines;
  }

  std::shared_ptr<Session> m_session = Session::Create(SandboxNetOptions());
};

TEST_F(TextFeedTest, SendsTheTwoHeaderLinesInOrder) {
  const std::vector<std::string> received = ReadAll("http://www.gavelscope.example/_test/headers");
  std::vector<std::string> ours;
  for (const std::string& line : received) {
    if (line.starts_with("Accept") || line.starts_with("User-Agent")) ours.push_back(line);
  }
  EXPECT_EQ(ours, (std::vector<std::string>{"Accept: text", "User-Agent: HTML Get Sample"}));
}

TEST_F(TextFeedTest, LinesLoseTheLineFeedButKeepACarriageReturn) {
  EXPECT_EQ(ReadAll(TextUrl("www.gavelscope.example", "one\r\ntwo\n\nlast")),
            (std::vector<std::string>{"one\r", "two", "", "last"}));
  EXPECT_EQ(ReadAll(TextUrl("www.gavelscope.example", "only\n")), (std::vector<std::string>{"only"}));
  EXPECT_TRUE(ReadAll(TextUrl("www.gavelscope.example", "")).empty());
}

TEST_F(TextFeedTest, LinesLongerThanAReadChunkArriveWhole) {
  const std::string longLine(20000, 'x');
  const std::vector<std::string> lines = ReadAll(TextUrl("www.gavelscope.example", longLine + "\nnext\n"));
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(lines[0], longLine);
  EXPECT_EQ(lines[1], "next");
}

TEST_F(TextFeedTest, BrokenConnectionEndsTheFeedAfterTheLastWholeLine) {
  FeedOpenResult opened = OpenTextFeed(m_session, testing::CutUrl("www.gavelscope.example", "one\ntwo\nthr"), {});
  ASSERT_TRUE(opened.feed) << opened.error;
  std::vector<std::string> lines;
  for (std::string line; opened.feed->ReadLine(line);) lines.push_back(line);
  EXPECT_EQ(lines, (std::vector<std::string>{"one", "two"}));
  EXPECT_TRUE(opened.feed->failed());
}

TEST_F(TextFeedTest, ALineOverItsLimitEndsTheFeedAfterTheLastWholeLine) {
  NetOptions options = SandboxNetOptions();
  options.maxLineBytes = 100;
  options.maxFeedBytes = 1000;
  const auto session = Session::Create(options);
  const std::string fits(100, 'x');
  for (const std::string& body : {"one\n" + fits + "\n" + fits + "x\ntwo\n", "one\n" + fits + "x"}) {
    FeedOpenResult opened = OpenTextFeed(session, TextUrl("www.gavelscope.example", body), {});
    ASSERT_TRUE(opened.feed) << opened.error;
    std::vector<std::string> lines;
    for (std::string line; opened.feed->ReadLine(line);) lines.push_back(line);
    EXPECT_EQ(lines.front(), "one");
    EXPECT_LE(lines.size(), 2U);
    EXPECT_TRUE(opened.feed->failed());
  }
  // A length declared over the feed's limit fails the open; an undeclared one fails as it passes.
  const FeedOpenResult large = OpenTextFeed(session, TextUrl("www.gavelscope.example", std::string(1001, 'y')), {});
  EXPECT_FALSE(large.feed);
  EXPECT_EQ(large.error, "answer larger than 1000 bytes");
}

TEST_F(TextFeedTest, UnreachableHostGivesOneFailureAndNoFeed) {
  NetOptions options = SandboxNetOptions();
  options.connectTo = {"www.gavelscope.example:80:127.0.0.1:" + std::to_string(ClosedLoopbackPort())};
  const FeedOpenResult opened = OpenTextFeed(Session::Create(options), "http://www.gavelscope.example/list.txt", {});
  EXPECT_FALSE(opened.feed);
  EXPECT_FALSE(opened.error.empty());
}

TEST_F(TextFeedTest, StopRequestEndsTheOpenOnASilentServer) {
  std::stop_source stop;
  stop.request_stop();
  const FeedOpenResult opened = OpenTextFeed(m_session, "http://www.gavelscope.example/_test/hang", stop.get_token());
  EXPECT_FALSE(opened.feed);
  EXPECT_EQ(opened.error, "cancelled");
}

TEST_F(TextFeedTest, ProbeSucceedsOnAnAnsweringServerOnly) {
  EXPECT_TRUE(ProbeUrl(m_session, "http://www.ebay.co.uk/", {}));
  NetOptions dead;
  dead.connectTo = {"www.ebay.co.uk:80:127.0.0.1:" + std::to_string(ClosedLoopbackPort())};
  EXPECT_FALSE(ProbeUrl(Session::Create(dead), "http://www.ebay.co.uk/", {}));
}

}  // namespace
}  // namespace gavelscope::net
