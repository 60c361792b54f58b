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
  static void SetUpTestSuite();
  static void TearDownTestSuite();

 protected:
  void SetUp() override;

  static standin::SandboxProcess& Sandbox();
  // Every compiled-in host mapped to the sandbox, with limits short enough for tests.
  static net::NetOptions SandboxNetOptions();

 private:
  static std::unique_ptr<standin::SandboxProcess> s_sandbox;
  static std::string s_startError;
};

// An address on `host` whose answer is exactly `body` (any bytes).
std::string TextUrl(std::string_view host, std::string_view body);
// An address on `host` that sends `body` and then breaks the connection mid-answer.
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

  int port() const { return m_port; }
  // A HOST:PORT:ADDR:PORT mapping that sends host:80 here.
  std::string ConnectTo(const std::string& host) const;

 private:
  int m_fd = -1;
  int m_port = 0;
};

}  // namespace gavelscope::testing
