// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <stdlib.h>

#include <filesystem>
#include <string>
#include <string_view>

#include "base/Browser.h"
#include "base/PageSource.h"
#include "base/RunEvents.h"
#include "base/UserMessages.h"

namespace gavelscope::bench {

// Everything the core tells a user or asks of a window, answered and dropped.
struct Quiet : base::IBrowser, base::IUserMessages, base::IPageSource, base::IRunEvents {
  void OpenUrlInBrowser(std::string_view) override {}
  base::MessageReply Show(const base::UserMessage&) override { return base::MessageReply::Ok; }
  std::string GetPageText(std::string_view, std::stop_token) override { return {}; }
  void StepProgress() override {}
  void SetRefreshDone(bool) override {}
  void RedrawWindow() override {}
  void OnThreadFinished() override {}
};

// A private working folder, removed at the end.
struct TempFolder {
  TempFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "gavelscope-bench-XXXXXX").string();
    if (mkdtemp(pattern.data()) != nullptr) path = pattern;
  }
  ~TempFolder() {
    std::error_code ignored;
    if (!path.empty()) std::filesystem::remove_all(path, ignored);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;
  std::filesystem::path path;
};

}  // namespace gavelscope::bench
