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
  return "http://" + std::string(host) + "/_test/text?body=" + Escaped(body);
}

std::string CutUrl(std::string_view host, std::string_view body) {
  return "http://" + std::string(host) + "/_test/cut?body=" + Escaped(body);
}

static int BoundLoopbackSocket(int& port) {
  const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{.sin_family = AF_INET, .sin_port = 0, .sin_addr = {htonl(INADDR_LOOPBACK)}, .sin_zero = {}};
  socklen_t length = sizeof address;
  bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address);
  getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length);
  port = ntohs(address.sin_port);
  return fd;
}

int ClosedLoopbackPort() {
  // Bound, then let go: nothing listens there afterwards.
  int port = 0;
  close(BoundLoopbackSocket(port));
  return port;
}

// Connections complete in the kernel's backlog; nobody ever reads or answers them.
SilentServer::SilentServer() : m_fd(BoundLoopbackSocket(m_port)) {
  listen(m_fd, 64);
}

SilentServer::~SilentServer() {
  close(m_fd);
}

std::string SilentServer::ConnectTo(const std::string& host) const {
  return host + ":80:127.0.0.1:" + std::to_string(m_port);
}

}  // namespace gavelscope::testing
