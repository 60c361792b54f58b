// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace gavelscope::net {

// How every transfer of a session connects. The limits are why a dead or silent server never holds
// a thread for long: the connect time-out covers servers that never accept, the low-speed limit
// servers that accept and then say nothing.
struct NetOptions {
  // curl's HOST:PORT:ADDR:PORT: connections meant for HOST:PORT go to ADDR:PORT, while URLs and Host
  // headers stay as they are.
  std::vector<std::string> connectTo;
  std::chrono::milliseconds connectTimeout{15000};
  long lowSpeedBytesPerSecond = 1;
  std::chrono::seconds lowSpeedTime{30};
};

// A plain outcome that crosses threads: success, or the reason it failed.
struct NetResult {
  bool ok = false;
  std::string error;

  explicit operator bool() const { return ok; }
};

}  // namespace gavelscope::net
