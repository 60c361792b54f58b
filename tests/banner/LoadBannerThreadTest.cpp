// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "banner/LoadBannerThread.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <functional>
#include <future>
#include <mutex>

#include "net/Session.h"
#include "net/TextFeed.h"
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

class RecordingSink : public IBannerSink {
 public:
  void ShowBanner(const std::filesystem::path& picture, const std::string& link) override {
    std::size_t count = 0;
    {
      std::lock_guard lock(m_mutex);
      m_shown.push_back({link, testing::ReadFileBytes(picture), picture, Clock::now()});
      count = m_shown.size();
    }
    // Runs on the banner thread, so the rotation goes on only after it.
    if (onShow) onShow(count);
    m_changed.notify_all();
  }

  // False when fewer than `count` banners came within a time no passing run comes near.
  bool WaitFor(std::size_t count) {
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, 30s, [&] { return m_shown.size() >= count; });
  }
  std::vector<Shown> shown() {
    std::lock_guard lock(m_mutex);
    return m_shown;
  }
  std::vector<std::string> links() {
    std::vector<std::string> links;
    for (const Shown& shown : shown()) links.push_back(shown.link);
    return links;
  }

  std::function<void(std::size_t)> onShow;

 private:
  std::mutex m_mutex;
  std::condition_variable m_changed;
  std::vector<Shown> m_shown;
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
    const std::string url =
        "http://www.gavelscope.example/_test/reads?name=" + name + "&least=" + std::to_string(least);
    net::FeedOpenResult opened = net::OpenTextFeed(net::Session::Create(SandboxNetOptions()), url, {});
    std::string line;
    if (!opened.feed || !opened.feed->ReadLine(line)) return -1;
    return std::stoi(line);
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
  ASSERT_TRUE(m_sink.WaitFor(6));
  rotation->Stop();

  const std::vector<Shown> shown = m_sink.shown();
  EXPECT_EQ(m_sink.links(), (std::vector<std::string>{"L1", "L2", "L1", "L3", "L1", "L3"}));
  for (std::size_t i = 0; i < 6; ++i) {
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
  EXPECT_TRUE(m_sink.shown().empty());
  EXPECT_FALSE(std::filesystem::exists(m_cache / "GavelscopeBanner.gif"));
}

TEST_F(LoadBannerTest, AMissingPictureIsTriedABoundedNumberOfTimesAndATooLargeOneOnceThenPassedOver) {
  ServeList("missing.txt", "0|L1|no-such.gif|\n0|L2|b.gif|\n");
  auto rotation = Rotation("/_test/file?name=missing.txt",
                           {.minute = 1ms, .retryPause = 25ms, .maxPictureAttempts = 3, .fetchInterval = 0ms});
  const Clock::time_point started = Clock::now();
  rotation->Start();
  ASSERT_TRUE(m_sink.WaitFor(2));
  rotation->Stop();
  EXPECT_EQ(m_sink.links(), (std::vector<std::string>{"L2", "L2"}));
  // Three attempts, two pauses between them.
  EXPECT_GE(m_sink.shown()[0].at - started, 50ms);

  // Were the too large picture tried again, the hour's retry pause would keep the list from being
  // fetched a second time.
  ServeList("large.txt", "0|L1|a.gif|\n");
  net::NetOptions small = SandboxNetOptions();
  small.maxDownloadBytes = kPictureA.size() - 1;
  const int before = ListReads("large.txt", 0);
  const std::size_t shownBefore = m_sink.shown().size();
  auto tooLarge =
      Rotation("/_test/file?name=large.txt", {.minute = 0ms, .retryPause = 1h, .fetchInterval = 0ms}, small);
  tooLarge->Start();
  EXPECT_EQ(ListReads("large.txt", before + 2), before + 2);
  tooLarge->Stop();
  EXPECT_EQ(m_sink.shown().size(), shownBefore);
}

TEST_F(LoadBannerTest, AnEmptyListIsFetchedAgainAfterOneMinute) {
  ServeList("empty.txt", "");
  const int before = ListReads("empty.txt", 0);
  auto rotation = Rotation("/_test/file?name=empty.txt", {.minute = 200ms, .fetchInterval = 0ms});
  const Clock::time_point started = Clock::now();
  rotation->Start();
  EXPECT_EQ(ListReads("empty.txt", before + 2), before + 2);
  EXPECT_GE(Clock::now() - started, 200ms);
  rotation->Stop();
  EXPECT_TRUE(m_sink.shown().empty());
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
    ASSERT_TRUE(m_sink.WaitFor(m_sink.shown().size() + c.shownFirst)) << c.listPath;
    const Clock::time_point stopping = Clock::now();
    rotation->Stop();
    EXPECT_LT(Clock::now() - stopping, 1s) << c.listPath;
  }
}

TEST_F(LoadBannerTest, ListsOfNoMinutesFetchNeitherListsNorPicturesMoreOftenThanTheInterval) {
  constexpr auto kInterval = 30ms;
  // A list with no banner to show: nothing but the list's own pacing stands between its fetches.
  ServeList("nothing.txt", "no bars\n");
  const int before = ListReads("nothing.txt", 0);
  auto lists = Rotation("/_test/file?name=nothing.txt", {.minute = 0ms, .fetchInterval = kInterval});
  Clock::time_point started = Clock::now();
  lists->Start();
  ASSERT_EQ(ListReads("nothing.txt", before + 5), before + 5);
  EXPECT_GE(Clock::now() - started, 4 * kInterval);
  lists->Stop();

  ServeList("zero.txt", "0|L1|a.gif|\n-5|L2|b.gif|\n0|L3|no-such.gif|\n");
  auto pictures = Rotation("/_test/file?name=zero.txt",
                           {.minute = 0ms, .retryPause = 0ms, .maxPictureAttempts = 2, .fetchInterval = kInterval});
  started = Clock::now();
  pictures->Start();
  ASSERT_TRUE(m_sink.WaitFor(6));
  pictures->Stop();
  const std::vector<Shown> shown = m_sink.shown();
  // A round fetches two pictures and tries the missing one twice; failed attempts count too.
  for (std::size_t i = 0; i < shown.size(); ++i) {
    const auto fetchesBefore = static_cast<int>(4 * (i / 2) + i % 2);
    EXPECT_GE(shown[i].at - started, fetchesBefore * kInterval) << i;
  }
}

struct ParseRow {
  const char* name;
  std::string line;
  std::optional<BannerEntry> entry;
};

void PrintTo(const ParseRow& row, std::ostream* out) {
  *out << row.name;
}

class ParseBannerLineTest : public ::testing::TestWithParam<ParseRow> {};

TEST_P(ParseBannerLineTest, ReadsMinutesLinkAndFile) {
  const std::optional<BannerEntry> entry = ParseBannerLine(GetParam().line);
  ASSERT_EQ(entry.has_value(), GetParam().entry.has_value());
  if (!entry) return;
  EXPECT_EQ(entry->minutes, GetParam().entry->minutes);
  EXPECT_EQ(entry->link, GetParam().entry->link);
  EXPECT_EQ(entry->file, GetParam().entry->file);
}

INSTANTIATE_TEST_SUITE_P(
    Lines, ParseBannerLineTest,
    ::testing::Values(ParseRow{"Plain", "2|http://x/p.html|spring.gif|",
                               BannerEntry{2, "http://x/p.html", "spring.gif"}},
                      ParseRow{"ZeroMinutes", "0|L|a.gif|", BannerEntry{0, "L", "a.gif"}},
                      ParseRow{"NoDigitsIsZero", "soon|L|a.gif|", BannerEntry{0, "L", "a.gif"}},
                      ParseRow{"LeadingDigitsOnly", " 12min|L|a.gif|", BannerEntry{12, "L", "a.gif"}},
                      ParseRow{"CarriageReturnAfterLastBar", "1|L|a.gif|\r", BannerEntry{1, "L", "a.gif"}},
                      ParseRow{"EmptyLink", "3||a.gif|", BannerEntry{3, "", "a.gif"}},
                      ParseRow{"NoThirdBar", "1|L|a.gif", std::nullopt}, ParseRow{"NoBar", "1 L a.gif", std::nullopt},
                      ParseRow{"EmptyFile", "1|L||", std::nullopt}, ParseRow{"EmptyLine", "", std::nullopt}),
    [](const ::testing::TestParamInfo<ParseRow>& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace gavelscope::banner
