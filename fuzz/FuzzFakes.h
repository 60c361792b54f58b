// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <stop_token>
#include <string>
#include <string_view>

#include "app/Browser.h"
#include "app/PageSource.h"
#include "app/UserMessages.h"

namespace gavelscope::fuzz {

// The headless controls want a browser, a message sink and a page source; a fuzz run must neither
// open anything nor wait for anyone, so these do nothing and answer at once.
class NullBrowser : public app::IBrowser {
 public:
  void OpenUrlInBrowser(std::string_view) override {}
};

class NullMessages : public app::IUserMessages {
 public:
  app::MessageReply Show(const app::UserMessage&) override { return app::MessageReply::Ok; }
};

class NullPages : public app::IPageSource {
 public:
  std::string GetPageText(std::string_view, std::stop_token) override { return {}; }
};

}  // namespace gavelscope::fuzz
