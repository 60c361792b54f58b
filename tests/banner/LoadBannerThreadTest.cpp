// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "banner/LoadBannerThread.h"

#include <gtest/gtest.h>

#include <functional>
#include <future>

#include "net/Session.h"
#include "net/TextFeed.h"
#include "support/Recorder.h"
#include "support/SandboxFixture.h"
#include "support/TempFolder.h"

namespace gavelscope::banner {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

// The picture bytes: not text, so that a text-mode transfer would change them.
const std::string kPictureA = std::string("GIF89a A\0\r\n\xff", 12);
const std::string kPictureB = std::string("GIF89a B\r\n\x80\0", 12);

struct Shown {
  std::string link;
  std::string bytes;
  std::filesystem::path picture;
  Clock::time_point at;
};

// What the rotation published and showed. onShow runs on the banner thread after each banner, so
// the rotation goes on only after it.
class RecordingSink : public IBannerSink, public testing::Recorder<Shown> {
 public:
  void PublishLink(const std::string& link) override { links.Add(link); }
  void ShowBanner(const std::filesystem::path& picture) override {
    Add({links.All().back(), testing::ReadFileBytes(picture), picture, Clock::now()});
    if (onShow) onShow(All().size());
  }

  testing::Recorder<std::string> links;
  std::function<void(std::size_t)> onShow;
};

class LoadBannerTest : public testing::SandboxTest {
 protected:
  void SetUp() override {
    SandboxTest::SetUp();
    testing::WriteFileBytes(Sandbox().ftpRoot() / "a.gif", kPictureA);
    testing::WriteFileBytes(Sandbox().ftpRoot() / "b.gif", kPictureB);
  }
  // A banner list that the test can rewrite or remove while the rotation runs.
  void ServeList(const std::string& name, const std::string& content) {
    testing::WriteFileBytes(Sandbox().ftpRoot() / name, content);
  }
  std::unique_ptr<CLoadBannerThread> Rotation(const std::string& listPath, BannerTiming timing,
                                              net::NetOptions options = SandboxNetOptions()) {
    sites::Profile profile = sites::CompiledProfile();
    profile.vendor.bannerListPath = listPath;
    return std::make_unique<CLoadBannerThread>(profile, std::move(options), m_cache.path(), m_sink, timing);
  }
  // How often the list `name` has been asked for, once that is at least `least`.
  static int ListReads(const std::string& name, int least) {
    net::FeedOpenResult opened = net::OpenTextFeed(
        net::Session::Create(SandboxNetOptions()),
        "http://www.gavelscope.example/_test/reads?name=" + name + "&least=" + std::to_string(least), {});
    std::string line;
    return opened.feed && opened.feed->ReadLine(line) ? std::stoi(line) : -1;
  }

  testing::TempFolder m_cache;
  RecordingSink m_sink;
};

TEST_F(LoadBannerTest, ShowsEntriesInOrderPassingOverBadLinesAndFetchesTheListAgainForEachRound) {
  ServeList("rotation.txt", "1|L1|a.gif|\nno bars\n1|no third bar|a.gif\n1|no picture||\n2|L2|b.gif|\r\n");
  m_sink.onShow = [&](std::size_t count) {
    if (count == 2) ServeList("rotation.txt", "1|L1|a.gif|\n1|L3|b.gif|\n");
    // The third round's download fails; the second round's list is shown again.
    if (count == 4) std::filesystem::remove(Sandbox().ftpRoot() / "rotation.txt");
  };
  auto rotation = Rotation("/_test/file?name=rotation.txt", {.minute = 20ms, .fetchInterval = 0ms});
  rotation->Start();
  ASSERT_TRUE(m_sink.WaitForCount(6));
  rotation->Stop();

  const std::vector<Shown> shown = m_sink.All();
  const char* links[] = {"L1", "L2", "L1", "L3", "L1", "L3"};
  for (std::size_t i = 0; i < 6; ++i) {
    EXPECT_EQ(shown[i].link, links[i]) << i;
    EXPECT_EQ(shown[i].bytes, i % 2 == 0 ? kPictureA : kPictureB) << i;
    EXPECT_EQ(shown[i].picture, m_cache / "GavelscopeBanner.gif");
  }
  // Each banner stays its own number of minutes.
  EXPECT_GE(shown[1].at - shown[0].at, 20ms);
  EXPECT_GE(shown[2].at - shown[1].at, 40ms);
}

TEST_F(LoadBannerTest, AFirstListThatCannotBeFetchedEndsTheJob) {
  net::NetOptions unreachable = SandboxNetOptions();
  unreachable.connectTo = {"www.gavelscope.example:80:127.0.0.1:" + std::to_string(testing::ClosedLoopbackPort())};
  const std::pair<std::string, net::NetOptions> lists[] = {{"/GavelscopeBanners.txt", unreachable},
                                                           {"/_test/file?name=no-such-list.txt", SandboxNetOptions()}};
  for (const auto& [listPath, options] : lists) {
    auto rotation = Rotation(listPath, {}, options);
    std::promise<void> ended;
    // A job that wrongly goes on is stopped when the runner goes out of scope.
    std::jthread runner([&](std::stop_token stop) {
      rotation->Run(stop);
      ended.set_value();
    });
    EXPECT_EQ(ended.get_future().wait_for(30s), std::future_status::ready);
  }
  EXPECT_TRUE(m_sink.All().empty());
  EXPECT_FALSE(std::filesystem::exists(m_cache / "GavelscopeBanner.gif"));
}

TEST_F(LoadBannerTest, AMissingPictureIsTriedABoundedNumberOfTimesWithAPauseBetweenThenPassedOver) {
  ServeList("missing.txt", "0|L1|no-such.gif|\n0|L2|b.gif|\n");
  auto rotation = Rotation("/_test/file?name=missing.txt",
                           {.minute = 1ms, .retryPause = 25ms, .maxPictureAttempts = 3, .fetchInterval = 0ms});
  const Clock::time_point started = Clock::now();
  rotation->Start();
  ASSERT_TRUE(m_sink.WaitForCount(2));
  rotation->Stop();
  const std::vector<Shown> shown = m_sink.All();
  EXPECT_EQ(shown[0].link + shown[1].link, "L2L2");
  // Each link is published before its picture is asked for, so a click while the download fails
  // opens the new banner's page.
  EXPECT_EQ(m_sink.links.All().at(0), "L1");
  // Three attempts, two pauses between them.
  EXPECT_GE(shown[0].at - started, 50ms);
}

TEST_F(LoadBannerTest, RoundsThatShowNothingWaitAMinuteOrTheIntervalAndNeverRetryATooLargePicture) {
  net::NetOptions small = SandboxNetOptions();
  small.maxDownloadBytes = kPictureA.size() - 1;
  struct Case {
    const char* name;
    const char* content;
    BannerTiming timing;
    int reads;
    std::chrono::milliseconds atLeast;
    net::NetOptions options = SandboxNetOptions();
  };
  const Case cases[] = {
      {"empty.txt", "", {.minute = 200ms, .fetchInterval = 0ms}, 2, 200ms},
      {"nothing.txt", "no bars\n", {.minute = 0ms, .fetchInterval = 30ms}, 5, 120ms},
      // Were the picture tried again, the hour's retry pause would hold the list back.
      {"large.txt", "0|L1|a.gif|\n", {.minute = 0ms, .retryPause = 1h, .fetchInterval = 0ms}, 2, 0ms, small}};
  for (const Case& c : cases) {
    ServeList(c.name, c.content);
    const int before = ListReads(c.name, 0);
    auto rotation = Rotation(std::string("/_test/file?name=") + c.name, c.timing, c.options);
    const Clock::time_point started = Clock::now();
    rotation->Start();
    ASSERT_EQ(ListReads(c.name, before + c.reads), before + c.reads) << c.name;
    EXPECT_GE(Clock::now() - started, c.atLeast) << c.name;
  }
  EXPECT_TRUE(m_sink.All().empty());
}

TEST_F(LoadBannerTest, StoppingEndsADisplayTimeARetryPauseAFetchIntervalOrAListDownloadAtOnce) {
  ServeList("long.txt", "1|L1|a.gif|\n");
  ServeList("retry.txt", "0|L1|a.gif|\n0|L2|no-such.gif|\n");
  struct Case {
    const char* listPath;
    BannerTiming timing;
    std::size_t shownFirst;
  };
  const Case cases[] = {
      {"/_test/file?name=long.txt", {.minute = 1h}, 1},
      {"/_test/file?name=retry.txt", {.minute = 0ms, .retryPause = 1h, .fetchInterval = 0ms}, 1},
      // The first picture follows the first list at once; the second waits its turn.
      {"/_test/file?name=retry.txt", {.minute = 0ms, .fetchInterval = 1h}, 1},
      {"/_test/hang", {}, 0},
  };
  for (const Case& c : cases) {
    auto rotation = Rotation(c.listPath, c.timing);
    rotation->Start();
    ASSERT_TRUE(m_sink.WaitForCount(m_sink.All().size() + c.shownFirst)) << c.listPath;
    const Clock::time_point stopping = Clock::now();
    rotation->Stop();
    EXPECT_LT(Clock::now() - stopping, 1s) << c.listPath;
  }
}

TEST_F(LoadBannerTest, PicturesAreFetchedAtMostOncePerIntervalCountingFailedAttempts) {
  constexpr auto kInterval = 30ms;
  ServeList("zero.txt", "0|L1|a.gif|\n-5|L2|b.gif|\n0|L3|no-such.gif|\n");
  auto pictures = Rotation("/_test/file?name=zero.txt",
                           {.minute = 0ms, .retryPause = 0ms, .maxPictureAttempts = 2, .fetchInterval = kInterval});
  const Clock::time_point started = Clock::now();
  pictures->Start();
  ASSERT_TRUE(m_sink.WaitForCount(6));
  pictures->Stop();
  const std::vector<Shown> shown = m_sink.All();
  // A round fetches two pictures and tries the missing one twice.
  for (std::size_t i = 0; i < shown.size(); ++i) {
    const auto fetchesBefore = static_cast<int>(4 * (i / 2) + i % 2);
    EXPECT_GE(shown[i].at - started, fetchesBefore * kInterval) << i;
  }
}

TEST(ParseBannerLine, ReadsLeadingMinutesLinkAndFileAndRefusesALineWithoutThreeBarsOrAFile) {
  const std::pair<std::string, std::string> rows[] = {{"2|http://x/p.html|spring.gif|", "2 http://x/p.html spring.gif"},
                                                      {"soon|L|a.gif|", "0 L a.gif"},
                                                      {" 12min|L|a.gif|", "12 L a.gif"},
                                                      {"1|L|a.gif|\r", "1 L a.gif"},
                                                      {"3||a.gif|", "3  a.gif"},
                                                      {"1|L|a.gif", "none"},
                                                      {"1|L||", "none"}};
  for (const auto& [line, expected] : rows) {
    const std::optional<BannerEntry> entry = ParseBannerLine(line);
    EXPECT_EQ(entry ? std::to_string(entry->minutes) + " " + entry->link + " " + entry->file : "none", expected)
        << line;
  }
}

}  // namespace
}  // namespace gavelscope::banner
