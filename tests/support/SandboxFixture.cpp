// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "support/SandboxFixture.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>

namespace gavelscope::testing {

net::NetOptions SandboxTest::SandboxNetOptions() {
  net::NetOptions options;
  options.connectTo = s_sandbox->connectTo();
  options.connectTimeout = std::chrono::milliseconds(5000);
  options.lowSpeedTime = std::chrono::seconds(20);
  return options;
}

namespace {

std::string TestUrl(std::string_view host, std::string_view path, std::string_view body) {
  return "http://" + std::string(host) + std::string(path) + "?body=" + Escaped(body);
}

// A socket bound to a free loopback port.
int BoundLoopbackSocket(int& port) {
  const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address);
  getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length);
  port = ntohs(address.sin_port);
  return fd;
}

}  // namespace

std::string Escaped(std::string_view bytes) {
  std::string escaped;
  for (unsigned char c : bytes) {
    char code[4];
    std::snprintf(code, sizeof code, "%%%02X", c);
    escaped += code;
  }
  return escaped;
}

std::string TextUrl(std::string_view host, std::string_view body) {
  return TestUrl(host, "/_test/text", body);
}

std::string CutUrl(std::string_view host, std::string_view body) {
  return TestUrl(host, "/_test/cut", body);
}

int ClosedLoopbackPort() {
  // Bound, then let go: nothing listens there afterwards.
  int port = 0;
  close(BoundLoopbackSocket(port));
  return port;
}

SilentServer::SilentServer() : m_fd(BoundLoopbackSocket(m_port)) {
  // Connections complete in the kernel's backlog; nobody ever reads or answers them.
  listen(m_fd, 64);
}

SilentServer::~SilentServer() {
  close(m_fd);
}

std::string SilentServer::ConnectTo(const std::string& host) const {
  return host + ":80:127.0.0.1:" + std::to_string(m_port);
}

}  // namespace gavelscope::testing
