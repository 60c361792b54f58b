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
using testing::TextUrl;

struct Read {
  std::vector<std::string> lines;
  bool failed = true;
  std::string openError;
};

Read ReadFeed(const std::shared_ptr<Session>& session, const std::string& url, std::stop_token stop = {}) {
  FeedOpenResult opened = OpenTextFeed(session, url, stop);
  Read read;
  read.openError = opened.error;
  if (!opened.feed) return read;
  for (std::string line; opened.feed->ReadLine(line);) read.lines.push_back(line);
  read.failed = opened.feed->failed();
  return read;
}

class TextFeedTest : public testing::SandboxTest {
 protected:
  std::shared_ptr<Session> m_session = Session::Create(SandboxNetOptions());
};

TEST_F(TextFeedTest, SendsTheTwoHeaderLinesInOrderAndFollowsAMovedList) {
  std::vector<std::string> ours;
  for (const std::string& line : ReadFeed(m_session, "http://www.gavelscope.example/_test/headers").lines) {
    if (line.starts_with("Accept") || line.starts_with("User-Agent")) ours.push_back(line);
  }
  EXPECT_EQ(ours, (std::vector<std::string>{"Accept: text", "User-Agent: HTML Get Sample"}));
  const std::string moved = "http://www.gavelscope.example/_test/redirect?hops=2&to=" +
                            testing::Escaped(TextUrl("www.gavelscope.example", "one\ntwo\n"));
  FeedOpenResult opened = OpenTextFeed(m_session, moved, {});
  ASSERT_TRUE(opened.feed) << opened.error;
  EXPECT_EQ(opened.feed->responseCode(), 200);
  std::string line;
  ASSERT_TRUE(opened.feed->ReadLine(line));
  EXPECT_EQ(line, "one");
}

TEST_F(TextFeedTest, LinesLoseTheLineFeedButKeepACarriageReturnAndArriveWholeHoweverLong) {
  const std::string longLine(20000, 'x');
  const std::pair<std::string, std::vector<std::string>> feeds[] = {
      {"one\r\ntwo\n\nlast", {"one\r", "two", "", "last"}},
      {"only\n", {"only"}},
      {"", {}},
      {longLine + "\nnext\n", {longLine, "next"}}};
  for (const auto& [body, lines] : feeds) {
    const Read read = ReadFeed(m_session, TextUrl("www.gavelscope.example", body));
    EXPECT_EQ(read.lines, lines);
    EXPECT_FALSE(read.failed) << read.openError;
  }
}

TEST_F(TextFeedTest, ABrokenConnectionOrALineOverItsLimitEndsTheFeedAfterTheLastWholeLine) {
  const Read cut = ReadFeed(m_session, testing::CutUrl("www.gavelscope.example", "one\ntwo\nthr"));
  EXPECT_EQ(cut.lines, (std::vector<std::string>{"one", "two"}));
  EXPECT_TRUE(cut.failed);

  NetOptions options = SandboxNetOptions();
  options.maxLineBytes = 100;
  options.maxFeedBytes = 1000;
  const auto session = Session::Create(options);
  const std::string fits(100, 'x');
  for (const std::string& body : {"one\n" + fits + "\n" + fits + "x\ntwo\n", "one\n" + fits + "x"}) {
    const Read read = ReadFeed(session, TextUrl("www.gavelscope.example", body));
    ASSERT_FALSE(read.lines.empty()) << read.openError;
    EXPECT_EQ(read.lines.front(), "one");
    EXPECT_LE(read.lines.size(), 2U);
    EXPECT_TRUE(read.failed);
  }
  // A length declared over the feed's limit fails the open; an undeclared one fails as it passes.
  EXPECT_EQ(ReadFeed(session, TextUrl("www.gavelscope.example", std::string(1001, 'y'))).openError,
            "answer larger than 1000 bytes");
}

TEST_F(TextFeedTest, AnUnreachableHostOrAStopRequestFailsTheOpen) {
  NetOptions options = SandboxNetOptions();
  options.connectTo = {"www.gavelscope.example:80:127.0.0.1:" + std::to_string(ClosedLoopbackPort())};
  EXPECT_NE(ReadFeed(Session::Create(options), "http://www.gavelscope.example/list.txt").openError, "");
  std::stop_source stop;
  stop.request_stop();
  EXPECT_EQ(ReadFeed(m_session, "http://www.gavelscope.example/_test/hang", stop.get_token()).openError, "cancelled");
}

TEST_F(TextFeedTest, ProbeSucceedsOnAnAnsweringServerOnly) {
  EXPECT_TRUE(ProbeUrl(m_session, "http://www.ebay.co.uk/", {}));
  NetOptions dead;
  dead.connectTo = {"www.ebay.co.uk:80:127.0.0.1:" + std::to_string(ClosedLoopbackPort())};
  EXPECT_FALSE(ProbeUrl(Session::Create(dead), "http://www.ebay.co.uk/", {}));
}

}  // namespace
}  // namespace gavelscope::net
