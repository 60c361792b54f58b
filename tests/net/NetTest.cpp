// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
//
// Pages, text feeds and FTP transfers against the sandbox's servers.
#include <gtest/gtest.h>

#include <vector>

#include "net/FtpClient.h"
#include "net/PageFetcher.h"
#include "net/Session.h"
#include "net/TextFeed.h"
#include "support/SandboxFixture.h"
#include "support/TempFolder.h"

namespace gavelscope::net {
namespace {

using testing::ReadFileBytes;
using testing::TextUrl;
using testing::WriteFileBytes;
using Lines = std::vector<std::string>;

std::string DeadMapping(const std::string& host) {
  return host + ":80:127.0.0.1:" + std::to_string(testing::ClosedLoopbackPort());
}

class PageFetcher : public testing::SandboxTest {};

TEST_F(PageFetcher, JoinsLinesWithNothingBetweenKeepingCarriageReturnsAndBytesAsSent) {
  SharedSession shared(SandboxNetOptions());
  EXPECT_EQ(shared.GetPageText(TextUrl("listings.ebay.co.uk", "one\r\ntwo\n\xA3\x31\x32\x80\n"), {}),
            "one\rtwo\xA3\x31\x32\x80");
  EXPECT_EQ(shared.GetPageText(TextUrl("listings.ebay.com", "no\nfinal break"), {}), "nofinal break");
}

// A moved page is followed over http a few hops, never to another scheme; the page is asked for
// with no request header of ours.
TEST_F(PageFetcher, FollowsRedirectsAFewHopsAndSendsNoRequestHeaderOfItsOwn) {
  const auto session = Session::Create(SandboxNetOptions());
  const std::string moved =
      "http://listings.ebay.com/_test/redirect?to=" + testing::Escaped(TextUrl("listings.ebay.com", "moved\n"));
  EXPECT_EQ(FetchPageText(session, moved, {}).text, "moved");
  EXPECT_EQ(FetchPageText(session, moved + "&hops=4", {}).text, "moved");
  const PageResult tooFar = FetchPageText(session, moved + "&hops=5", {});
  EXPECT_FALSE(tooFar.outcome);
  EXPECT_EQ(tooFar.text, "");
  EXPECT_FALSE(
      FetchPageText(session, "http://listings.ebay.com/_test/redirect?to=ftp%3A%2F%2Fftp.gavelscope.example%2F", {})
          .outcome);

  const std::string headers = FetchPageText(session, "http://listings.ebay.com/_test/headers", {}).text;
  EXPECT_EQ(headers.find("Accept"), std::string::npos) << headers;
  EXPECT_NE(headers.find("Host: listings.ebay.com"), std::string::npos) << headers;
}

TEST_F(PageFetcher, AFailureYieldsWhatWasReadAndRenewsTheSessionButLeavesAFetchInFlightItsOwn) {
  NetOptions options = SandboxNetOptions();
  options.connectTo.insert(options.connectTo.begin(), DeadMapping("dead.example"));
  SharedSession shared(options);
  std::shared_ptr<Session> held = shared.Current();
  EXPECT_EQ(shared.GetPageText("http://dead.example/", {}), "");
  ASSERT_NE(shared.Current(), held);
  EXPECT_EQ(FetchPageText(held, TextUrl("listings.ebay.com", "still\nhere"), {}).text, "stillhere");
  held = shared.Current();
  EXPECT_EQ(shared.GetPageText(testing::CutUrl("listings.ebay.com", "one\ntwo\nthr"), {}), "onetwothr");
  EXPECT_NE(shared.Current(), held);
  EXPECT_EQ(shared.GetPageText(TextUrl("listings.ebay.com", "back\n"), {}), "back");
}

TEST_F(PageFetcher, APageOverTheLimitOrTheDeadlineFailsWithWhatArrived) {
  NetOptions options = SandboxNetOptions();
  options.maxPageBytes = 5000;
  const PageResult large =
      FetchPageText(Session::Create(options), TextUrl("listings.ebay.com", std::string(6000, 'x')), {});
  EXPECT_FALSE(large.outcome);
  EXPECT_TRUE(large.outcome.overLimit);
  EXPECT_LE(large.text.size(), 5000U);
  // 1 KiB every 10 ms: fast enough for the low-speed limit, ten seconds long against the deadline.
  options = SandboxNetOptions();
  options.transferDeadline = std::chrono::milliseconds(300);
  const auto started = std::chrono::steady_clock::now();
  const PageResult slow =
      FetchPageText(Session::Create(options), "http://listings.ebay.com/_test/slow?bytes=1000000", {});
  EXPECT_FALSE(slow.outcome);
  EXPECT_FALSE(slow.outcome.overLimit);
  EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(3));
}

struct Read {
  Lines lines;
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
  Lines ours;
  for (const std::string& line : ReadFeed(m_session, "http://www.gavelscope.example/_test/headers").lines) {
    if (line.starts_with("Accept") || line.starts_with("User-Agent")) ours.push_back(line);
  }
  EXPECT_EQ(ours, (Lines{"Accept: text", "User-Agent: HTML Get Sample"}));
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
  const std::pair<std::string, Lines> feeds[] = {{"one\r\ntwo\n\nlast", {"one\r", "two", "", "last"}},
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
  EXPECT_EQ(cut.lines, (Lines{"one", "two"}));
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

// Whether the probe passes is proved by the command line's runs, with and without a server.
TEST_F(TextFeedTest, AnUnreachableHostOrAStopRequestFailsTheOpen) {
  NetOptions options = SandboxNetOptions();
  options.connectTo = {DeadMapping("www.gavelscope.example")};
  EXPECT_NE(ReadFeed(Session::Create(options), "http://www.gavelscope.example/list.txt").openError, "");
  std::stop_source stop;
  stop.request_stop();
  EXPECT_EQ(ReadFeed(m_session, "http://www.gavelscope.example/_test/hang", stop.get_token()).openError, "cancelled");
}

// The account the sandbox's FTP server serves.
const FtpAccount kVendorAccount{"ftp.gavelscope.example", 21, "gavelscope", "h0tlist"};

class FtpClientTest : public testing::SandboxTest {
 protected:
  testing::TempFolder m_local;
};

TEST_F(FtpClientTest, GetsAFileByteForBytePutsAndRemovesOneAndReportsAMissingOneWithoutTouchingTheServer) {
  FtpClient client(SandboxNetOptions(), kVendorAccount);
  ASSERT_TRUE(client.Connect({}));
  // Binary mode: the history file's CR LF line ends and any high bytes arrive untouched.
  const std::string served = ReadFileBytes(Sandbox().ftpRoot() / "HotItemList.txt");
  ASSERT_NE(served.find("\r\n"), std::string::npos);
  const NetResult got = client.GetFile("HotItemList.txt", m_local / "HotItemList.txt", {});
  ASSERT_TRUE(got) << got.error;
  EXPECT_EQ(ReadFileBytes(m_local / "HotItemList.txt"), served);

  WriteFileBytes(m_local / "upload.txt", "first line\nsecond line\n");
  ASSERT_TRUE(client.PutFile(m_local / "upload.txt", "Uploaded.txt", {}));
  const std::string arrived = ReadFileBytes(Sandbox().ftpRoot() / "Uploaded.txt");
  EXPECT_NE(arrived.find("first line"), std::string::npos);
  EXPECT_NE(arrived.find("second line"), std::string::npos);
  ASSERT_TRUE(client.Remove("Uploaded.txt", {}));
  EXPECT_FALSE(std::filesystem::exists(Sandbox().ftpRoot() / "Uploaded.txt"));
  EXPECT_FALSE(client.Remove("Uploaded.txt", {}));
  EXPECT_FALSE(client.PutFile(m_local / "absent.txt", "absent.txt", {}));
  EXPECT_FALSE(std::filesystem::exists(Sandbox().ftpRoot() / "absent.txt"));
}

TEST_F(FtpClientTest, FailuresSayWhyAndAFailedOrTooLargeDownloadKeepsTheLocalCopyAndLeavesNothingBeside) {
  FtpAccount wrong = kVendorAccount;
  wrong.password = "wrong";
  const NetResult refused = FtpClient(SandboxNetOptions(), wrong).Connect({});
  EXPECT_FALSE(refused);
  EXPECT_NE(refused.error.find("530"), std::string::npos) << refused.error;
  WriteFileBytes(m_local / "HotItemList.txt", "what we had");
  const NetResult missing =
      FtpClient(SandboxNetOptions(), kVendorAccount).GetFile("NoSuchFile.txt", m_local / "HotItemList.txt", {});
  EXPECT_FALSE(missing);
  EXPECT_NE(missing.error.find("550"), std::string::npos) << missing.error;

  NetOptions options = SandboxNetOptions();
  options.maxDownloadBytes = 1000;
  const NetResult large =
      FtpClient(options, kVendorAccount).GetFile("HotItemList.txt", m_local / "HotItemList.txt", {});
  EXPECT_FALSE(large);
  EXPECT_TRUE(large.overLimit);

  EXPECT_EQ(ReadFileBytes(m_local / "HotItemList.txt"), "what we had");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(m_local.path()), {}), 1);
}

}  // namespace
}  // namespace gavelscope::net
