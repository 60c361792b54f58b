// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "hotitems/LoadHotItemsThread.h"

#include <chrono>

#include "base/Files.h"
#include "base/Pause.h"
#include "hotitems/HotItemRecord.h"
#include "net/FtpClient.h"

namespace gavelscope::hotitems {

namespace {

constexpr int kBidsColumn = 3;

}  // namespace

CLoadHotItemsThread::CLoadHotItemsThread(const sites::Profile& profile, net::NetOptions options,
                                         std::filesystem::path folder, Targets targets)
    : m_account(profile.vendor.ftp),
      m_fileName(profile.vendor.historyFileName),
      m_options(std::move(options)),
      m_localFile(std::move(folder) / profile.vendor.historyFileName),
      m_targets(targets) {}

void CLoadHotItemsThread::Run(std::stop_token stop) {
  for (CItemListCtrl* list : {&m_targets.listUSA, &m_targets.listUK}) {
    list->Clear();
    list->SetRedraw(false);
  }
  if (Download(stop)) Fill(stop);
  for (CItemListCtrl* list : {&m_targets.listUSA, &m_targets.listUK}) {
    list->SortItems(kBidsColumn, true);
    list->SetRedraw(true);
  }
  m_targets.events.OnThreadFinished();
}

bool CLoadHotItemsThread::Download(std::stop_token stop) {
  // Connecting, every attempt and every pause share one budget, whatever the server does.
  const auto deadline = std::chrono::steady_clock::now() + m_options.retryBudget;
  net::FtpClient ftp(m_options, m_account);
  if (!ftp.Connect(stop, deadline)) return false;
  for (int attempt = 1; attempt <= kMaxAttempts; ++attempt) {
    const net::NetResult got = ftp.GetFile(m_fileName, m_localFile, stop, deadline);
    if (got) return true;
    // A file over the size limit would be just as large the next time.
    if (got.overLimit || attempt == kMaxAttempts) break;
    if (std::chrono::steady_clock::now() + m_retryPause >= deadline) break;
    if (!base::PauseUnlessStopped(m_retryPause, stop)) break;
  }
  return false;
}

void CLoadHotItemsThread::Fill(std::stop_token stop) {
  std::size_t rows = 0;
  // A line too long, or a read that fails, ends the reading; the rows read so far stay.
  base::ReadLines(m_localFile, m_options.maxLineBytes, [&](std::string_view line) {
    if (stop.stop_requested() || rows++ >= net::limits::kMaxHistoryRows) return false;
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    AddHistoryLine(line, m_targets.listUSA, m_targets.listUK);
    return true;
  });
}

CItemListCtrl::RecordPtr AddHistoryLine(std::string_view line, CItemListCtrl& listUSA, CItemListCtrl& listUK) {
  auto record = std::make_shared<CHotItemRecord>(ParseHistoryLine(line));
  CItemListCtrl& list = IsSiteUK(*record) ? listUK : listUSA;
  // The loader is the lists' only writer while it fills them: the row is the list's end.
  record->SetRow(static_cast<std::int32_t>(list.RowCount()));
  list.AppendRow(record);
  return record;
}

}  // namespace gavelscope::hotitems
