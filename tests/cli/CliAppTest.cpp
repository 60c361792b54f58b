// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "cli/CliApp.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/inotify.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <optional>
#include <sstream>

#include "RunInProcess.h"
#include "net/NetOptions.h"
#include "support/SandboxFixture.h"
#include "support/TempFolder.h"

namespace gavelscope::cli {
namespace {

using namespace std::chrono_literals;

// The exit status of `child` if it exits within `limit`; it is killed if it does not.
std::optional<int> WaitForExit(pid_t child, std::chrono::milliseconds limit, rusage* usage = nullptr) {
  const int exited = static_cast<int>(syscall(SYS_pidfd_open, child, 0));
  pollfd done{exited, POLLIN, 0};
  const bool inTime = poll(&done, 1, static_cast<int>(limit.count())) == 1;
  close(exited);
  if (!inTime) kill(child, SIGKILL);
  int status = 0;
  wait4(child, &status, 0, usage);
  if (!inTime || !WIFEXITED(status)) return std::nullopt;
  return WEXITSTATUS(status);
}

// The window program, run for its command line alone: without a display it goes no further.
Ran RunWindow(const std::vector<std::string>& args) {
  testing::TempFolder folder;
  std::vector<std::string> words{GAVELSCOPE_WINDOW_PATH};
  words.insert(words.end(), args.begin(), args.end());
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  char* envp[] = {nullptr};
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_addopen(&files, 1, (folder / "out").c_str(), O_WRONLY | O_CREAT, 0600);
  posix_spawn_file_actions_addopen(&files, 2, (folder / "err").c_str(), O_WRONLY | O_CREAT, 0600);
  pid_t child = 0;
  const int spawned = posix_spawn(&child, argv[0], &files, nullptr, argv.data(), envp);
  posix_spawn_file_actions_destroy(&files);
  if (spawned != 0) return {-1, "", "cannot start " + words[0]};
  const std::optional<int> status = WaitForExit(child, 30s);
  return {status.value_or(-1), testing::ReadFileBytes(folder / "out"), testing::ReadFileBytes(folder / "err")};
}

struct UsageCase {
  const char* name;
  bool window;  // the window program rather than gavelscope-cli
  std::vector<std::string> args;
  std::string what;  // what the first line of the message says is wrong
};

void PrintTo(const UsageCase& c, std::ostream* os) {
  *os << c.name;
}

class UsageErrors : public ::testing::TestWithParam<UsageCase> {};

// One line says what is wrong, the next where the help is; nothing is started.
TEST_P(UsageErrors, ExitWithTwoAndOneLineOnWhatIsWrong) {
  const UsageCase& c = GetParam();
  const Ran outcome = c.window ? RunWindow(c.args) : RunCommand(c.args);
  const std::string program = c.window ? "gavelscope" : "gavelscope-cli";
  EXPECT_EQ(outcome.status, kExitUsage);
  EXPECT_EQ(outcome.out, "");
  EXPECT_TRUE(outcome.err.starts_with(program + ": " + c.what + "\nRun '" + program + " ")) << outcome.err;
  EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 2) << outcome.err;
}

INSTANTIATE_TEST_SUITE_P(
    Cli, UsageErrors,
    ::testing::Values(
        UsageCase{"NoCommand", false, {}, "no command given"},
        UsageCase{"UnknownCommand", false, {"bogus"}, "unknown command: bogus"},
        UsageCase{"UnknownOption", false, {"history", "--site", "uk", "--bogus=1"}, "unknown option: --bogus"},
        UsageCase{"SiteMissing", false, {"categories"}, "--site is required"},
        UsageCase{"SiteUnknown", false, {"categories", "--site", "fr"}, "--site: \"fr\" is not usa|uk"},
        UsageCase{"OutputWithoutValue", false, {"query-new", "--output"}, "--output: needs a value (FILE.sbqry)"},
        UsageCase{"EmptyOutput", false, {"query-new", "--output", ""}, "--output: needs a file name"},
        UsageCase{"EmptyExport",
                  false,
                  {"auctions", "--site", "uk", "--export", ""},
                  "--export: needs a file name, or - for standard output"},
        UsageCase{"FormatUnknown",
                  false,
                  {"auctions", "--site", "uk", "--format", "xml"},
                  "--format: \"xml\" is not text|csv|json"},
        UsageCase{"ItemWithFormat",
                  false,
                  {"keywords", "--site", "uk", "--item", "Art", "--format=csv"},
                  "--format excludes --item"},
        UsageCase{"SecondQueryFile", false, {"query", "a.sbqry", "b.sbqry"}, "query takes one query file, not 2"},
        UsageCase{"TwoBidTests",
                  false,
                  {"query-new", "--bids-less", "1", "--bids-greater", "2", "--output", "q"},
                  "only one bids test may be given"},
        UsageCase{"OneBoundOfARange",
                  false,
                  {"query-new", "--price-range", "5", "--output", "q"},
                  "--price-range: needs 2 values (A B)"},
        UsageCase{"UnsavableBound",
                  false,
                  {"query-new", "--days-less", "-1", "--output", "q"},
                  "--days-less: cannot take -1"},
        UsageCase{"ConnectToMalformed",
                  false,
                  {"categories", "--site", "uk", "--connect-to", "host:80"},
                  "--connect-to: \"host:80\" is not HOST:PORT:ADDR:PORT"},
        UsageCase{"WindowConnectToMalformed",
                  true,
                  {"--connect-to", "foo"},
                  "--connect-to: \"foo\" is not HOST:PORT:ADDR:PORT"},
        UsageCase{"WindowScreenshotWithoutValue", true, {"--screenshot"}, "--screenshot: needs a value (FILE)"},
        UsageCase{"WindowArgument", true, {"stray"}, "unexpected argument: stray"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(Cli, EveryCommandHasItsOwnHelp) {
  for (const char* command : {"categories", "keywords", "auctions", "history", "query", "query-new", "query-show"}) {
    const Ran outcome = RunCommand({"--sandbox", command, "--help"});
    EXPECT_EQ(outcome.status, kExitOk) << command;
    EXPECT_TRUE(outcome.out.starts_with("Usage: gavelscope-cli " + std::string(command) + " ")) << outcome.out;
  }
  EXPECT_NE(RunCommand({"--help"}).out.find("\n  query-new  "), std::string::npos);
  EXPECT_EQ(RunCommand({"query", "--version"}).out, "gavelscope-cli 2.0\n");
  const Ran window = RunWindow({"--help"});
  EXPECT_EQ(window.status, kExitOk);
  EXPECT_TRUE(window.out.starts_with("Usage: gavelscope [--connect-to HOST:PORT:ADDR:PORT]... [--sandbox]"))
      << window.out;
}

TEST(Cli, NoInternetEndsWithTheSystemMessage) {
  const auto started = std::chrono::steady_clock::now();
  const Ran outcome =
      RunCommand({"--connect-to", "www.ebay.co.uk:80:127.0.0.1:" + std::to_string(testing::ClosedLoopbackPort()),
                  "categories", "--site", "uk"});
  EXPECT_EQ(outcome.status, kExitFailure);
  EXPECT_EQ(outcome.err, "Error - No Internet connection.\n");
  EXPECT_TRUE(outcome.out.empty());
  EXPECT_LT(std::chrono::steady_clock::now() - started, 20s);
}

TEST(Cli, SandboxOptionRunsCommandsWhoseExportsGoToStdoutOrAFile) {
  // The program's own options go after the command as well as before it.
  const Ran categories = RunCommand({"categories", "--site=usa", "--sandbox"});
  ASSERT_EQ(categories.status, kExitOk) << categories.err;
  EXPECT_TRUE(categories.out.starts_with("Antiques\t/Antiques_W0QQsacatZ1000/list\n")) << categories.out;
  std::vector<std::string> args{"--sandbox", "keywords", "--site", "usa", "--item", "Antiques"};
  const Ran item = RunCommand(args);
  ASSERT_EQ(item.status, kExitOk) << item.err;
  EXPECT_NE(item.out.find("\thttp://search.ebay.com/"), std::string::npos) << item.out;
  args.back() = "ANTIQUES";
  EXPECT_EQ(RunCommand(args).out, item.out);
  args.back() = "No Such Category";
  EXPECT_EQ(RunCommand(args).status, kExitFailure);

  // What an export holds is compared with the stand-in sites' own in CMakeLists.txt; here, where it goes.
  testing::TempFolder folder;
  args = {"--sandbox", "auctions", "--site", "usa"};
  const Ran printed = RunCommand(args);
  ASSERT_EQ(printed.status, kExitOk) << printed.err;
  args.insert(args.end(), {"--export", (folder / "auctions.txt").string()});
  const Ran exported = RunCommand(args);
  ASSERT_EQ(exported.status, kExitOk) << exported.err;
  EXPECT_EQ(testing::ReadFileBytes(folder / "auctions.txt"), printed.out);
  EXPECT_EQ(exported.err, "List Has Been Successfully Exported.\n");
  EXPECT_TRUE(exported.out.empty());
  args.back() = "-";
  const Ran piped = RunCommand(args);
  EXPECT_EQ(piped.out, printed.out);
  EXPECT_EQ(piped.err + printed.err, "");
  args.back() = (folder / "no-such-folder" / "auctions.txt").string();
  const Ran failed = RunCommand(args);
  EXPECT_EQ(failed.status, kExitFailure);
  EXPECT_EQ(failed.err, "Cannot write " + args.back() + ": No such file or directory\n");
}

TEST(Cli, QueryFilesAreWrittenShownAndReportedWhenTheyFail) {
  testing::TempFolder folder;
  const std::string file = (folder / "q.sbqry").string();
  const Ran saved =
      RunCommand({"query-new", "--category", "Toys", "--category", "Dolls", "--keywords", " lego, duplo ",
                  "--page-depth=3", "--bids-range", "2", "9", "--sort", "title", "--descending", "--output=" + file});
  ASSERT_EQ(saved.status, kExitOk) << saved.err;
  const Ran shown = RunCommand({"query-show", file});
  ASSERT_EQ(shown.status, kExitOk) << shown.err;
  // The fields in declaration order, then the categories; the USA site unless told otherwise.
  EXPECT_TRUE(
      shown.out.starts_with("m_bBidFilter: 1\nm_bDaysFilter: 0\nm_bPriceFilter: 0\nm_bInternational: 1\n"
                            "m_strKeywords: lego, duplo\nm_nPageDepth: 3\nm_bBidsGreater: 0\n"));
  EXPECT_NE(shown.out.find("\nm_bBidsRange: 1\n"), std::string::npos);
  EXPECT_NE(shown.out.find("\nm_bDaysRange: 0\nm_nBidsGreater: -1\nm_nBidsLess: -1\nm_nBidsFrom: 2\nm_nBidsTo: 9\n"),
            std::string::npos);
  EXPECT_TRUE(
      shown.out.ends_with("\nm_bAscending: 0\nm_bSortPrice: 0\nm_bSortBids: 0\nm_bSortTitle: 1\n"
                          "m_bSortDateEnded: 0\ncategory: Toys\ncategory: Dolls\n"));
  EXPECT_EQ(std::count(shown.out.begin(), shown.out.end(), '\n'), 34);

  const std::string unwritable = (folder / "missing" / "q.sbqry").string();
  const Ran unsaved = RunCommand({"query-new", "--output", unwritable});
  EXPECT_EQ(unsaved.status, kExitFailure);
  EXPECT_EQ(unsaved.err, "Cannot Save To File : " + unwritable + ": No such file or directory\n");
  const std::string broken = (folder / "broken.sbqry").string(), oversize = (folder / "oversize.sbqry").string();
  testing::WriteFileBytes(broken, "\xFF\xFF\x02");
  // Data after the last category is ignored, but a file is not read without end.
  testing::WriteFileBytes(oversize, testing::ReadFileBytes(file) + std::string(net::limits::kMaxQueryFileBytes, '\0'));
  for (const std::string& bad : {broken, oversize, folder.path().string()}) {
    for (const char* command : {"query", "query-show"}) {
      const Ran unloaded = RunCommand({command, bad});
      EXPECT_EQ(unloaded.status, kExitFailure);
      EXPECT_EQ(unloaded.err, "Cannot Load File : " + bad + "\n");
    }
  }
}

// The real program, stopped by a signal while a site keeps it waiting: it ends as a finished run
// does, with its working folder removed, and says which signal ended it.
class CliSignals : public testing::SandboxTest, public ::testing::WithParamInterface<int> {};

TEST_P(CliSignals, StopTheRunAndRemoveItsFolder) {
  testing::TempFolder cache;
  const auto folder = cache / "gavelscope";
  std::filesystem::create_directory(folder);
  const int watch = inotify_init1(IN_CLOEXEC);
  ASSERT_GE(inotify_add_watch(watch, folder.c_str(), IN_CREATE), 0);

  testing::SilentServer silent;
  std::vector<std::string> words{GAVELSCOPE_CLI_PATH, "--connect-to", silent.ConnectTo("listings.ebay.com")};
  for (const std::string& mapping : Sandbox().connectTo()) words.insert(words.end(), {"--connect-to", mapping});
  words.insert(words.end(), {"categories", "--site", "usa"});
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  const std::string home = "XDG_CACHE_HOME=" + cache.path().string();
  std::vector<char*> envp{const_cast<char*>(home.c_str()), nullptr};
  pid_t child = 0;
  ASSERT_EQ(posix_spawn(&child, argv[0], nullptr, nullptr, argv.data(), envp.data()), 0);

  // The run folder appears once the probe has passed and the run has begun.
  pollfd ready{watch, POLLIN, 0};
  ASSERT_EQ(poll(&ready, 1, 30000), 1);
  close(watch);
  kill(child, GetParam());
  EXPECT_EQ(WaitForExit(child, 10s), 128 + GetParam()) << "not ended by the signal within 10 s";
  EXPECT_TRUE(std::filesystem::is_empty(folder));
}

INSTANTIATE_TEST_SUITE_P(Cli, CliSignals, ::testing::Values(SIGINT, SIGTERM), [](const auto& info) {
  return std::string(info.param == SIGINT ? "Interrupt" : "Terminate");
});

// Against servers that misbehave on purpose, each run must end within its limit, with the result a
// failed read has, and within a fixed amount of memory.
constexpr const char* kEmptyHistory =
    "\tHot Items History List\r\n\r\nDate Ended\t\t\tBids\t\t\tPrice\t\t\tItem Title\r\n\r\n";
constexpr const char* kTop100Heading = "\tTodays Top 100 Keywords\r\n\r\nPosition\t\t\tKeyword\r\n\r\n";

struct HostileCase {
  const char* name;
  const char* mode;
  std::vector<std::string> command;
  std::chrono::seconds bound;  // the limit that ends it, with a margin for a loaded machine
  const char* outputStartsWith;
};

void PrintTo(const HostileCase& c, std::ostream* os) {
  *os << c.name;
}

class HostileServers : public ::testing::TestWithParam<HostileCase> {};

TEST_P(HostileServers, EndInTimeWithinBoundedMemory) {
  const HostileCase& c = GetParam();
  std::string error;
  const auto sandbox = standin::SandboxProcess::Start(
      {GAVELSCOPE_SANDBOX_PYTHON, GAVELSCOPE_SANDBOX_SCRIPT, {"--hostile", c.mode}}, error);
  ASSERT_TRUE(sandbox) << error;
  std::vector<std::string> args;
  for (const std::string& mapping : sandbox->connectTo()) args.insert(args.end(), {"--connect-to", mapping});
  args.insert(args.end(), c.command.begin(), c.command.end());

  // The command runs in a child process of its own, so that its peak memory is its own, with the
  // real program's limits but seconds where it waits minutes.
  testing::TempFolder folder;
  CliEnvironment environment;
  environment.net.connectTimeout = environment.net.lowSpeedTime = 2s;
  environment.net.transferDeadline = 10s;
  environment.net.retryBudget = 3s;
  environment.queryPollInterval = 100ms;
  const auto started = std::chrono::steady_clock::now();
  const pid_t child = fork();
  if (child == 0) {
    std::ostringstream out, err;
    const int status = RunCli(args, environment, out, err);
    testing::WriteFileBytes(folder / "out", out.str());
    testing::WriteFileBytes(folder / "err", err.str());
    _exit(status);
  }
  rusage usage{};
  const std::optional<int> status = WaitForExit(child, c.bound + 20s, &usage);
  const auto took = std::chrono::steady_clock::now() - started;
  ASSERT_EQ(status, kExitOk) << testing::ReadFileBytes(folder / "err");
  EXPECT_LT(took, c.bound) << "took " << std::chrono::duration_cast<std::chrono::milliseconds>(took).count() << " ms";
  EXPECT_LT(usage.ru_maxrss, 300 * 1024) << "KiB at the peak";
  EXPECT_TRUE(testing::ReadFileBytes(folder / "out").starts_with(c.outputStartsWith));
}

INSTANTIATE_TEST_SUITE_P(
    Cli, HostileServers,
    ::testing::Values(
        // A body that never ends stops at the page limit; what arrived is scanned.
        HostileCase{"EndlessHomePage", "endless-home", {"auctions", "--site", "usa"}, 15s, "\t\t\tTodays Auctions"},
        // One byte in 0.9 s is below the low-speed limit.
        HostileCase{"DrippingHomePage", "drip-home", {"categories", "--site", "uk"}, 8s, ""},
        HostileCase{"EndlessLine", "endless-line", {"keywords", "--site", "usa"}, 10s, kTop100Heading},
        HostileCase{"EndlessCategoryLines", "endless-cat", {"keywords", "--site", "uk"}, 15s, kTop100Heading},
        HostileCase{"EndlessKeywordLines", "endless-keyword", {"keywords", "--site", "usa"}, 15s, kTop100Heading},
        // Files over the download limit are given up at once, not tried thirty times.
        HostileCase{"HugeHistory", "huge-history", {"history", "--site", "usa"}, 10s, kEmptyHistory},
        HostileCase{"EndlessHistory", "endless-history", {"history", "--site", "uk"}, 10s, kEmptyHistory},
        // Every attempt waits for a connection that never comes: the retry budget ends them all.
        HostileCase{
            "HistoryServerNeverConnectsBack", "silent-history", {"history", "--site", "usa"}, 8s, kEmptyHistory}),
    [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace gavelscope::cli
