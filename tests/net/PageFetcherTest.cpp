// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "net/PageFetcher.h"

#include <gtest/gtest.h>

#include <thread>

#include "net/Session.h"
#include "support/SandboxFixture.h"

namespace gavelscope::net {
namespace {

using testing::ClosedLoopbackPort;
using testing::SandboxTest;
using testing::TextUrl;

class PageFetcher : public SandboxTest {};

TEST_F(PageFetcher, JoinsLinesWithNothingBetween) {
  SharedSession shared(SandboxNetOptions());
  EXPECT_EQ(shared.GetPageText(TextUrl("listings.ebay.com", "one\ntwo\nthree\n"), {}), "onetwothree");
  EXPECT_EQ(shared.GetPageText(TextUrl("listings.ebay.com", "no\nfinal break"), {}), "nofinal break");
  // A carriage return is part of its line, as a read line keeps it.
  EXPECT_EQ(shared.GetPageText(TextUrl("listings.ebay.com", "a\r\nb\r\n"), {}), "a\rb\r");
  // Bytes arrive as sent: no character set conversion.
  EXPECT_EQ(shared.GetPageText(TextUrl("listings.ebay.co.uk",
                                       "\xA3"
                                       "12\x80"),
                               {}),
            "\xA3"
            "12\x80");
}

TEST_F(PageFetcher, FailureYieldsEmptyTextAndARenewedWorkingSession) {
  NetOptions options = SandboxNetOptions();
  options.connectTo.insert(options.connectTo.begin(),
                           "dead.example:80:127.0.0.1:" + std::to_string(ClosedLoopbackPort()));
  SharedSession shared(options);
  const std::shared_ptr<Session> before = shared.Current();

  EXPECT_EQ(shared.GetPageText("http://dead.example/", {}), "");
  EXPECT_NE(shared.Current(), before);
  EXPECT_EQ(shared.GetPageText(TextUrl("listings.ebay.com", "back\n"), {}), "back");
}

TEST_F(PageFetcher, BrokenConnectionYieldsWhatWasReadAndRenews) {
  SharedSession shared(SandboxNetOptions());
  const std::shared_ptr<Session> before = shared.Current();
  EXPECT_EQ(shared.GetPageText(testing::CutUrl("listings.ebay.com", "one\ntwo\nthr"), {}), "onetwothr");
  EXPECT_NE(shared.Current(), before);
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

TEST_F(PageFetcher, RenewalLeavesAFetchInFlightItsSession) {
  SharedSession shared(SandboxNetOptions());
  std::shared_ptr<Session> held = shared.Current();
  // Another fetch fails and renews while `held` is still in use: it stays alive and usable.
  shared.GetPageText("http://unmapped.invalid:1/", {});
  ASSERT_NE(shared.Current(), held);
  EXPECT_EQ(FetchPageText(held, TextUrl("listings.ebay.com", "still\nhere"), {}).text, "stillhere");
}

TEST_F(PageFetcher, ConcurrentFetchesOnOneSessionEachGetTheirPage) {
  SharedSession shared(SandboxNetOptions());
  std::string uk;
  std::string usa;
  {
    std::jthread first([&] { uk = shared.GetPageText(TextUrl("listings.ebay.co.uk", "uk\npage"), {}); });
    std::jthread second([&] { usa = shared.GetPageText(TextUrl("listings.ebay.com", "usa\npage"), {}); });
  }
  EXPECT_EQ(uk, "ukpage");
  EXPECT_EQ(usa, "usapage");
}

}  // namespace
}  // namespace gavelscope::net
