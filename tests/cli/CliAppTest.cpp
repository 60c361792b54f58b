// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "cli/CliApp.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/inotify.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <sstream>

#include "support/SandboxFixture.h"
#include "support/TempFolder.h"

namespace gavelscope::cli {
namespace {

struct Outcome {
  int status;
  std::string out;
  std::string err;
};

Outcome RunCommand(const std::vector<std::string>& args) {
  CliEnvironment environment;
  environment.sandbox.python = GAVELSCOPE_SANDBOX_PYTHON;
  environment.sandbox.script = GAVELSCOPE_SANDBOX_SCRIPT;
  std::ostringstream out;
  std::ostringstream err;
  const int status = RunCli(args, environment, out, err);
  return {status, out.str(), err.str()};
}

struct UsageCase {
  const char* name;
  std::vector<std::string> args;
};

void PrintTo(const UsageCase& c, std::ostream* os) {
  *os << c.name;
}

class CliUsageErrors : public ::testing::TestWithParam<UsageCase> {};

TEST_P(CliUsageErrors, ExitWithTwoAndTheUsage) {
  const Outcome outcome = RunCommand(GetParam().args);
  EXPECT_EQ(outcome.status, kExitUsage);
  EXPECT_TRUE(outcome.out.empty());
  EXPECT_NE(outcome.err.find("Usage: gavelscope-cli"), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(Cli, CliUsageErrors,
                         ::testing::Values(UsageCase{"NoCommand", {}}, UsageCase{"UnknownCommand", {"bogus"}},
                                           UsageCase{"SiteUnknown", {"categories", "--site", "fr"}},
                                           UsageCase{"ConnectToMalformed",
                                                     {"--connect-to", "host:80", "categories", "--site", "uk"}},
                                           UsageCase{"EmptyExport", {"auctions", "--site", "uk", "--export", ""}},
                                           UsageCase{"EmptyOutput", {"query-new", "--output", ""}}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(Cli, HelpAndVersionGoToStdout) {
  EXPECT_EQ(RunCommand({"--help"}).status, kExitOk);
  EXPECT_NE(RunCommand({"--help"}).out.find("categories --site usa|uk"), std::string::npos);
  EXPECT_EQ(RunCommand({"--version"}).out, "gavelscope-cli 2.0\n");
}

TEST(Cli, NoInternetEndsWithTheSystemMessage) {
  const auto started = std::chrono::steady_clock::now();
  const Outcome outcome =
      RunCommand({"--connect-to", "www.ebay.co.uk:80:127.0.0.1:" + std::to_string(testing::ClosedLoopbackPort()),
                  "categories", "--site", "uk"});
  EXPECT_EQ(outcome.status, kExitFailure);
  EXPECT_EQ(outcome.err, "Error - No Internet connection.\n");
  EXPECT_TRUE(outcome.out.empty());
  EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(20));
}

class CliOnSandbox : public testing::SandboxTest {};

TEST_F(CliOnSandbox, CategoriesPrintsNameTabLinkPerCategory) {
  std::vector<std::string> args;
  for (const std::string& mapping : Sandbox().connectTo()) {
    args.push_back("--connect-to");
    args.push_back(mapping);
  }
  args.insert(args.end(), {"categories", "--site", "uk"});
  const Outcome outcome = RunCommand(args);
  ASSERT_EQ(outcome.status, kExitOk) << outcome.err;
  std::istringstream lines(outcome.out);
  int count = 0;
  for (std::string line; std::getline(lines, line); ++count) {
    const auto tab = line.find('\t');
    ASSERT_NE(tab, std::string::npos) << line;
    EXPECT_GT(tab, 0U);
    EXPECT_TRUE(line.substr(tab + 1).starts_with("/")) << line;
  }
  EXPECT_GT(count, 0);
}

TEST_F(CliOnSandbox, KeywordsExportGoesToStdoutOrToAFile) {
  std::vector<std::string> args;
  for (const std::string& mapping : Sandbox().connectTo()) args.insert(args.end(), {"--connect-to", mapping});
  args.insert(args.end(), {"keywords", "--site", "uk"});
  const Outcome printed = RunCommand(args);
  ASSERT_EQ(printed.status, kExitOk) << printed.err;
  EXPECT_TRUE(printed.out.starts_with("\tTodays Top 100 Keywords\r\n\r\nPosition\t\t\tKeyword\r\n\r\n1\t\t\t\t"));
  EXPECT_TRUE(printed.err.empty());

  testing::TempFolder folder;
  args.insert(args.end(), {"--export", (folder / "top.txt").string()});
  const Outcome exported = RunCommand(args);
  ASSERT_EQ(exported.status, kExitOk) << exported.err;
  EXPECT_EQ(testing::ReadFileBytes(folder / "top.txt"), printed.out);
  EXPECT_EQ(exported.err, "List Has Been Successfully Exported.\n");
  EXPECT_TRUE(exported.out.empty());

  args.back() = "-";
  const Outcome piped = RunCommand(args);
  EXPECT_EQ(piped.out, printed.out);
  EXPECT_TRUE(piped.err.empty());
}

TEST_F(CliOnSandbox, AuctionsExportToAFile) {
  testing::TempFolder folder;
  std::vector<std::string> args;
  for (const std::string& mapping : Sandbox().connectTo()) args.insert(args.end(), {"--connect-to", mapping});
  args.insert(args.end(), {"auctions", "--site", "usa", "--export", (folder / "auctions.txt").string()});
  const Outcome outcome = RunCommand(args);
  ASSERT_EQ(outcome.status, kExitOk) << outcome.err;
  EXPECT_EQ(outcome.err, "List Has Been Successfully Exported.\n");
  const std::string written = testing::ReadFileBytes(folder / "auctions.txt");
  EXPECT_TRUE(written.starts_with("\t\t\tTodays Auctions\r\n\r\nPosition\tCount\tAuction\r\n\r\n1\t\t")) << written;
  // A file that cannot be written is reported with the system's reason, and the command fails.
  args.back() = (folder / "no-such-folder" / "auctions.txt").string();
  const Outcome failed = RunCommand(args);
  EXPECT_EQ(failed.status, kExitFailure);
  EXPECT_EQ(failed.err, "Cannot write " + args.back() + ": No such file or directory\n");
}

TEST_F(CliOnSandbox, KeywordsOfOneItem) {
  std::vector<std::string> args;
  for (const std::string& mapping : Sandbox().connectTo()) args.insert(args.end(), {"--connect-to", mapping});
  args.insert(args.end(), {"keywords", "--site", "usa", "--item", "Antiques"});
  const Outcome outcome = RunCommand(args);
  ASSERT_EQ(outcome.status, kExitOk) << outcome.err;
  EXPECT_NE(outcome.out.find("\thttp://search.ebay.com/"), std::string::npos) << outcome.out;
  args.back() = "No Such Category";
  EXPECT_EQ(RunCommand(args).status, kExitFailure);
}

TEST(Cli, QueryFilesAreWrittenShownAndReportedWhenTheyFail) {
  testing::TempFolder folder;
  const std::string empty = (folder / "empty.sbqry").string();
  ASSERT_EQ(RunCommand({"query-new", "--site", "uk", "--output", empty}).status, kExitOk);
  EXPECT_EQ(testing::ReadFileBytes(empty).size(), 146U);

  const std::string file = (folder / "q.sbqry").string();
  ASSERT_EQ(
      RunCommand({"query-new", "--category", "Toys", "--category", "Dolls", "--keywords", " lego, duplo ",
                  "--page-depth", "3", "--bids-range", "2", "9", "--sort", "title", "--descending", "--output", file})
          .status,
      kExitOk);
  const Outcome shown = RunCommand({"query-show", file});
  ASSERT_EQ(shown.status, kExitOk) << shown.err;
  for (const char* line : {"m_bBidFilter: 1\n", "m_bInternational: 1\n", "m_strKeywords: lego, duplo\n",
                           "m_nPageDepth: 3\n", "m_bBidsRange: 1\n", "m_nBidsFrom: 2\n", "m_nBidsTo: 9\n",
                           "m_bAscending: 0\n", "m_bSortTitle: 1\n", "category: Toys\ncategory: Dolls\n"}) {
    EXPECT_NE(shown.out.find(line), std::string::npos) << line;
  }

  const std::string unwritable = (folder / "missing" / "q.sbqry").string();
  const Outcome unsaved = RunCommand({"query-new", "--output", unwritable});
  EXPECT_EQ(unsaved.status, kExitFailure);
  EXPECT_EQ(unsaved.err, "Cannot Save To File : " + unwritable + ": No such file or directory\n");
  testing::WriteFileBytes(folder / "broken.sbqry", "\xFF\xFF\x02");
  const Outcome unloaded = RunCommand({"query", (folder / "broken.sbqry").string()});
  EXPECT_EQ(unloaded.status, kExitFailure);
  EXPECT_EQ(unloaded.err, "Cannot Load File : " + (folder / "broken.sbqry").string() + "\n");
  EXPECT_EQ(RunCommand({"query-new", "--bids-greater", "1", "--bids-less", "2", "--output", file}).status, kExitUsage);
}

TEST(Cli, SandboxOptionStartsTheStandInSites) {
  const Outcome outcome = RunCommand({"--sandbox", "categories", "--site", "usa"});
  ASSERT_EQ(outcome.status, kExitOk) << outcome.err;
  EXPECT_TRUE(outcome.out.starts_with("Antiques\t/Antiques_W0QQsacatZ1000/list\n")) << outcome.out;
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
  const int exited = static_cast<int>(syscall(SYS_pidfd_open, child, 0));
  pollfd done{exited, POLLIN, 0};
  EXPECT_EQ(poll(&done, 1, 10000), 1) << "still running 10 s after the signal";
  close(exited);
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 128 + GetParam());
  EXPECT_TRUE(std::filesystem::is_empty(folder));
}

INSTANTIATE_TEST_SUITE_P(Cli, CliSignals, ::testing::Values(SIGINT, SIGTERM),
                         [](const auto& info) { return std::string(info.param == SIGINT ? "Interrupt" : "Terminate"); });

}  // namespace
}  // namespace gavelscope::cli
