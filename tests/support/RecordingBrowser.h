// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <string>

#include "base/Browser.h"
#include "support/Recorder.h"

namespace gavelscope::testing {

// Remembers the pages it was asked to open instead of opening them.
class RecordingBrowser : public base::IBrowser {
 public:
  void OpenUrlInBrowser(std::string_view url) override { m_opened.Add(std::string(url)); }
  bool WaitForCount(std::size_t count) const { return m_opened.WaitForCount(count); }
  std::vector<std::string> Opened() const { return m_opened.All(); }

 private:
  Recorder<std::string> m_opened;
};

}  // namespace gavelscope::testing
