// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "net/PageFetcher.h"

#include <gtest/gtest.h>

#include <thread>

#include "net/Session.h"
#include "support/SandboxFixture.h"

namespace gavelscope::net {
namespace {

using testing::TextUrl;

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
  options.connectTo.insert(options.connectTo.begin(),
                           "dead.example:80:127.0.0.1:" + std::to_string(testing::ClosedLoopbackPort()));
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

}  // namespace
}  // namespace gavelscope::net
