// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <stop_token>
#include <string>
#include <string_view>

#include "base/Browser.h"
#include "base/PageSource.h"
#include "base/UserMessages.h"

namespace gavelscope::fuzz {

// The headless controls want a browser, a message sink and a page source; a fuzz run must neither
// open anything nor wait for anyone, so these do nothing and answer at once.
class NullBrowser : public base::IBrowser {
 public:
  void OpenUrlInBrowser(std::string_view) override {}
};

class NullMessages : public base::IUserMessages {
 public:
  base::MessageReply Show(const base::UserMessage&) override { return base::MessageReply::Ok; }
};

class NullPages : public base::IPageSource {
 public:
  std::string GetPageText(std::string_view, std::stop_token) override { return {}; }
};

}  // namespace gavelscope::fuzz
