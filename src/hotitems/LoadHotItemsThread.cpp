// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "hotitems/LoadHotItemsThread.h"

#include <fstream>

#include "app/Pause.h"
#include "hotitems/HotItemRecord.h"
#include "net/FtpClient.h"

namespace gavelscope::hotitems {

namespace {

constexpr int kBidsColumn = 3;

}  // namespace

CLoadHotItemsThread::CLoadHotItemsThread(const net::Profile& profile, net::NetOptions options,
                                         std::filesystem::path folder, Targets targets)
    : m_account(profile.vendor.ftp),
      m_fileName(profile.vendor.historyFileName),
      m_options(std::move(options)),
      m_localFile(std::move(folder) / profile.vendor.historyFileName),
      m_targets(targets) {}

void CLoadHotItemsThread::Run(std::stop_token stop) {
  for (CItemListCtrl* list : {&m_targets.listUSA, &m_targets.listUK}) {
    list->ClearRecords();
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
  net::FtpClient ftp(m_options, m_account);
  if (!ftp.Connect(stop)) return false;
  for (int attempt = 1; attempt <= kMaxAttempts; ++attempt) {
    if (ftp.GetFile(m_fileName, m_localFile, stop)) return true;
    if (attempt == kMaxAttempts || !app::PauseUnlessStopped(m_retryPause, stop)) break;
  }
  return false;
}

void CLoadHotItemsThread::Fill(std::stop_token stop) {
  std::ifstream file(m_localFile, std::ios::binary);
  int rowCounter = 0;
  // A read that fails ends the reading; the rows read so far stay.
  for (std::string line; !stop.stop_requested() && std::getline(file, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    AddHistoryLine(line, rowCounter++, m_targets.listUSA, m_targets.listUK);
  }
}

CItemListCtrl::RecordPtr AddHistoryLine(std::string_view line, int rowCounter, CItemListCtrl& listUSA, CItemListCtrl& listUK) {
  auto record = std::make_shared<CHotItemRecord>(ParseHistoryLine(line));
  CItemListCtrl& list = IsSiteUK(*record) ? listUK : listUSA;
  const int row = list.InsertItem(rowCounter, record->GetEnding());
  list.SetItemText(row, 1, record->GetTitle());
  list.SetItemText(row, 2, record->GetPrice());
  list.SetItemText(row, 3, record->GetBids());
  record->SetRow(row);
  list.SetItemData(row, record);
  return record;
}

}  // namespace gavelscope::hotitems
