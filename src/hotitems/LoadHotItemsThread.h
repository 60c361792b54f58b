// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <chrono>
#include <filesystem>
#include <stop_token>
#include <string_view>

#include "base/RunEvents.h"
#include "hotitems/ItemListCtrl.h"
#include "net/NetOptions.h"
#include "sites/SiteProfile.h"

namespace gavelscope::hotitems {

// Adds one line of the history file to the end of the list of its site, so each list keeps the
// file's order, and returns its record.
CItemListCtrl::RecordPtr AddHistoryLine(std::string_view line, CItemListCtrl& listUSA, CItemListCtrl& listUK);

// Downloads the shared hot item history from the vendor's FTP server into the per-user folder and
// fills the two history lists from it, each in file order, then sorted by bids. The download is tried
// again every second, at most 30 times and within the session's retry budget altogether; a file over
// the download limit is not tried again. When it never succeeds, or the server cannot be reached at
// all, both lists stay empty and the load still completes. At most kMaxHistoryRows lines are shown.
class CLoadHotItemsThread {
 public:
  static constexpr int kMaxAttempts = 30;

  struct Targets {
    CItemListCtrl& listUSA;
    CItemListCtrl& listUK;
    base::IRunEvents& events;
  };

  CLoadHotItemsThread(const sites::Profile& profile, net::NetOptions options, std::filesystem::path folder,
                      Targets targets);

  void SetRetryPause(std::chrono::milliseconds pause) { m_retryPause = pause; }

  // The whole job, then the completion report.
  void Run(std::stop_token stop);

 private:
  bool Download(std::stop_token stop);
  void Fill(std::stop_token stop);

  net::FtpAccount m_account;
  std::string m_fileName;
  net::NetOptions m_options;
  std::filesystem::path m_localFile;
  Targets m_targets;
  std::chrono::milliseconds m_retryPause{1000};
};

}  // namespace gavelscope::hotitems
