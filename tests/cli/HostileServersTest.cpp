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
#include "query/QueryFile.h"
#include "standin/SandboxProcess.h"
#include "support/SandboxFixture.h"
#include "support/TempFolder.h"

namespace gavelscope::cli {
namespace {

using namespace std::chrono_literals;

constexpr long kMaxPeakKiB = 300 * 1024;
constexpr const char* kEmptyHistory =
    "\tHot Items History List\r\n\r\nDate Ended\t\t\tBids\t\t\tPrice\t\t\tItem Title\r\n\r\n";
constexpr const char* kTop100Heading = "\tTodays Top 100 Keywords\r\n\r\nPosition\t\t\tKeyword\r\n\r\n";

// The limits of the real program, but with seconds where it waits minutes, so that a stalled
// server costs a test seconds.
net::NetOptions TestLimits() {
  net::NetOptions options;
  options.connectTimeout = 2s;
  options.lowSpeedTime = 2s;
  options.transferDeadline = 10s;
  options.retryBudget = 3s;
  return options;
}

struct ChildRun {
  int status = -1;
  std::string out;
  std::string err;
  std::chrono::milliseconds took{};
  long peakKiB = 0;
};

// Runs the command in a child process of its own, so that its peak memory is its own.
ChildRun RunInChild(const std::vector<std::string>& args, std::chrono::seconds limit) {
  testing::TempFolder folder;
  CliEnvironment environment;
  environment.net = TestLimits();
  environment.queryPollInterval = 100ms;
  const auto started = std::chrono::steady_clock::now();
  const pid_t child = fork();
  if (child == 0) {
    std::ostringstream out;
    std::ostringstream err;
    const int status = RunCli(args, environment, out, err);
    testing::WriteFileBytes(folder / "out", out.str());
    testing::WriteFileBytes(folder / "err", err.str());
    _exit(status);
  }
  ChildRun run;
  const int exited = static_cast<int>(syscall(SYS_pidfd_open, child, 0));
  pollfd done{exited, POLLIN, 0};
  const bool inTime = poll(&done, 1, static_cast<int>(std::chrono::milliseconds(limit).count())) == 1;
  close(exited);
  if (!inTime) kill(child, SIGKILL);
  int status = 0;
  rusage usage{};
  wait4(child, &status, 0, &usage);
  run.took = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - started);
  run.peakKiB = usage.ru_maxrss;
  if (inTime && WIFEXITED(status)) run.status = WEXITSTATUS(status);
  run.out = testing::ReadFileBytes(folder / "out");
  run.err = testing::ReadFileBytes(folder / "err");
  return run;
}

std::unique_ptr<standin::SandboxProcess> StartSandbox(std::vector<std::string> arguments) {
  standin::SandboxOptions options;
  options.python = GAVELSCOPE_SANDBOX_PYTHON;
  options.script = GAVELSCOPE_SANDBOX_SCRIPT;
  options.arguments = std::move(arguments);
  std::string error;
  auto sandbox = standin::SandboxProcess::Start(options, error);
  EXPECT_TRUE(sandbox) << error;
  return sandbox;
}

std::vector<std::string> Mapped(const standin::SandboxProcess& sandbox, std::vector<std::string> command) {
  std::vector<std::string> args;
  for (const std::string& mapping : sandbox.connectTo()) args.insert(args.end(), {"--connect-to", mapping});
  args.insert(args.end(), command.begin(), command.end());
  return args;
}

struct HostileCase {
  const char* name;
  std::vector<std::string> modes;
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
  std::vector<std::string> sandboxArguments;
  for (const std::string& mode : c.modes) sandboxArguments.insert(sandboxArguments.end(), {"--hostile", mode});
  const auto sandbox = StartSandbox(sandboxArguments);
  ASSERT_TRUE(sandbox);
  const ChildRun run = RunInChild(Mapped(*sandbox, c.command), c.bound + 20s);
  EXPECT_EQ(run.status, kExitOk) << run.err;
  EXPECT_LT(run.took, c.bound) << "took " << run.took.count() << " ms";
  EXPECT_LT(run.peakKiB, kMaxPeakKiB);
  EXPECT_TRUE(run.out.starts_with(c.outputStartsWith)) << run.out.substr(0, 200);
  RecordProperty("took_ms", static_cast<int>(run.took.count()));
  RecordProperty("peak_kib", static_cast<int>(run.peakKiB));
}

INSTANTIATE_TEST_SUITE_P(
    Cli, HostileServers,
    ::testing::Values(
        // A body that never ends stops at the page limit; what arrived is scanned.
        HostileCase{"EndlessHomePage", {"endless-home"}, {"auctions", "--site", "usa"}, 15s, "\t\t\tTodays Auctions"},
        // One byte in 0.9 s is below the low-speed limit.
        HostileCase{"DrippingHomePage", {"drip-home"}, {"categories", "--site", "uk"}, 8s, ""},
        HostileCase{"EndlessLine", {"endless-line"}, {"keywords", "--site", "usa"}, 10s, kTop100Heading},
        HostileCase{"EndlessCategoryLines", {"endless-cat"}, {"keywords", "--site", "uk"}, 15s, kTop100Heading},
        HostileCase{"EndlessKeywordLines", {"endless-keyword"}, {"keywords", "--site", "usa"}, 15s, kTop100Heading},
        // Files over the download limit are given up at once, not tried thirty times.
        HostileCase{"HugeHistory", {"huge-history"}, {"history", "--site", "usa"}, 10s, kEmptyHistory},
        HostileCase{"EndlessHistory", {"endless-history"}, {"history", "--site", "uk"}, 10s, kEmptyHistory},
        // Every attempt waits for a connection that never comes: the retry budget ends them all.
        HostileCase{
            "HistoryServerNeverConnectsBack", {"silent-history"}, {"history", "--site", "usa"}, 8s, kEmptyHistory}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(HostileFiles, AQueryFileOfMillionsOfReferencesIsRefusedQuickly) {
  // A query of one empty-named category, counted eight million times and referred to as often.
  query::CMySettings settings;
  settings.SetCategories({""});
  std::string bytes = query::SaveQueryBytes(settings);
  const std::int32_t count = 8'000'000;
  const std::size_t countAt = 2 + 2 + 2 + std::string_view(query::CMySettings::kClassName).size();
  bytes.replace(countAt, sizeof count, reinterpret_cast<const char*>(&count), sizeof count);
  // Object 4: after the settings' class and object and the category's class.
  for (int i = 1; i < count; ++i) bytes += std::string("\x04\x00", 2);
  testing::TempFolder folder;
  testing::WriteFileBytes(folder / "refs.sbqry", bytes);
  const ChildRun run = RunInChild({"query-show", (folder / "refs.sbqry").string()}, 10s);
  EXPECT_EQ(run.status, kExitFailure);
  EXPECT_EQ(run.err, "Cannot Load File : " + (folder / "refs.sbqry").string() + "\n");
  EXPECT_LT(run.took, 5s);
  EXPECT_LT(run.peakKiB, kMaxPeakKiB);
}

}  // namespace
}  // namespace gavelscope::cli
