// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <string>

#include "base/Browser.h"
#include "support/Recorder.h"

namespace gavelscope::testing {

// Remembers the pages it was asked to open instead of opening them.
class RecordingBrowser : public base::IBrowser, public Recorder<std::string> {
 public:
  void OpenUrlInBrowser(std::string_view url) override { Add(std::string(url)); }
  std::vector<std::string> Opened() const { return All(); }
};

}  // namespace gavelscope::testing
