// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
//
// The command line against servers that misbehave on purpose: each run must end within its limit,
// with the result a failed read has, and within a fixed amount of memory.
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <sstream>

#include "cli/CliApp.h"
#include "standin/SandboxProcess.h"
#include "support/TempFolder.h"

namespace gavelscope::cli {
namespace {

using namespace std::chrono_literals;

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
  const int exited = static_cast<int>(syscall(SYS_pidfd_open, child, 0));
  pollfd done{exited, POLLIN, 0};
  const bool inTime = poll(&done, 1, static_cast<int>(std::chrono::milliseconds(c.bound + 20s).count())) == 1;
  close(exited);
  if (!inTime) kill(child, SIGKILL);
  int status = 0;
  rusage usage{};
  wait4(child, &status, 0, &usage);
  const auto took = std::chrono::steady_clock::now() - started;
  ASSERT_TRUE(inTime && WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), kExitOk) << testing::ReadFileBytes(folder / "err");
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
