// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "support/SandboxFixture.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>

namespace gavelscope::testing {

std::unique_ptr<standin::SandboxProcess> SandboxTest::s_sandbox;
std::string SandboxTest::s_startError;

void SandboxTest::SetUpTestSuite() {
  standin::SandboxOptions options;
  options.python = GAVELSCOPE_SANDBOX_PYTHON;
  options.script = GAVELSCOPE_SANDBOX_SCRIPT;
  s_sandbox = standin::SandboxProcess::Start(options, s_startError);
}

void SandboxTest::TearDownTestSuite() {
  s_sandbox.reset();
}

void SandboxTest::SetUp() {
  ASSERT_TRUE(s_sandbox) << "sandbox did not start: " << s_startError;
}

standin::SandboxProcess& SandboxTest::Sandbox() {
  return *s_sandbox;
}

net::NetOptions SandboxTest::SandboxNetOptions() {
  net::NetOptions options;
  options.connectTo = s_sandbox->connectTo();
  options.connectTimeout = std::chrono::milliseconds(5000);
  options.lowSpeedTime = std::chrono::seconds(20);
  return options;
}

namespace {

std::string TestUrl(std::string_view host, std::string_view path, std::string_view body) {
  std::string url = "http://" + std::string(host) + std::string(path) + "?body=";
  for (unsigned char c : body) {
    char escaped[4];
    std::snprintf(escaped, sizeof escaped, "%%%02X", c);
    url += escaped;
  }
  return url;
}

}  // namespace

std::string TextUrl(std::string_view host, std::string_view body) {
  return TestUrl(host, "/_test/text", body);
}

std::string CutUrl(std::string_view host, std::string_view body) {
  return TestUrl(host, "/_test/cut", body);
}

int ClosedLoopbackPort() {
  // Bind to a free port, then let it go: nothing listens there afterwards.
  const int fd = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address);
  getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length);
  close(fd);
  return ntohs(address.sin_port);
}

SilentServer::SilentServer() {
  // Connections complete in the kernel's backlog; nobody ever reads or answers them.
  m_fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  bind(m_fd, reinterpret_cast<sockaddr*>(&address), sizeof address);
  listen(m_fd, 64);
  getsockname(m_fd, reinterpret_cast<sockaddr*>(&address), &length);
  m_port = ntohs(address.sin_port);
}

SilentServer::~SilentServer() {
  close(m_fd);
}

std::string SilentServer::ConnectTo(const std::string& host) const {
  return host + ":80:127.0.0.1:" + std::to_string(m_port);
}

}  // namespace gavelscope::testing
