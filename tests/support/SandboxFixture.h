// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>

#include "net/NetOptions.h"
#include "standin/SandboxProcess.h"

namespace gavelscope::testing {

// Tests against the real stand-in servers on loopback: one sandbox per test suite.
class SandboxTest : public ::testing::Test {
 public:
  static void SetUpTestSuite() {
    s_sandbox =
        standin::SandboxProcess::Start({GAVELSCOPE_SANDBOX_PYTHON, GAVELSCOPE_SANDBOX_SCRIPT, {}}, s_startError);
  }
  static void TearDownTestSuite() { s_sandbox.reset(); }

 protected:
  void SetUp() override { ASSERT_TRUE(s_sandbox) << "sandbox did not start: " << s_startError; }

  static standin::SandboxProcess& Sandbox() { return *s_sandbox; }
  // Every compiled-in host mapped to the sandbox, with limits short enough for tests.
  static net::NetOptions SandboxNetOptions();

 private:
  inline static std::unique_ptr<standin::SandboxProcess> s_sandbox;
  inline static std::string s_startError;
};

// Every byte percent-encoded, for a query parameter of a test address.
std::string Escaped(std::string_view bytes);
// Addresses on `host` whose answer is exactly `body` (any bytes), whole (TextUrl) or broken off
// right after it (CutUrl).
std::string TextUrl(std::string_view host, std::string_view body);
std::string CutUrl(std::string_view host, std::string_view body);
// A loopback port with nothing listening on it.
int ClosedLoopbackPort();

// A loopback server that takes connections and never answers.
class SilentServer {
 public:
  SilentServer();
  ~SilentServer();
  SilentServer(const SilentServer&) = delete;
  SilentServer& operator=(const SilentServer&) = delete;

  // A HOST:PORT:ADDR:PORT mapping that sends host:80 here.
  std::string ConnectTo(const std::string& host) const;

 private:
  int m_port = 0;  // before m_fd, whose set-up fills it in
  int m_fd = -1;
};

}  // namespace gavelscope::testing
