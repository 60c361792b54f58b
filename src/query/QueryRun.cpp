// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "query/QueryRun.h"

#include <algorithm>
#include <ctime>
#include <fstream>
#include <system_error>

#include "base/Pause.h"
#include "hotitems/HotItemRecord.h"
#include "net/FtpClient.h"

namespace gavelscope::query {

namespace {

constexpr const char* kSearchComplete = "All data has been extracted from Ebay and is now ready for analysis";
constexpr const char* kSearchCompleteTitle = "Search Complete";
constexpr int kPublishAttempts = 30;

}  // namespace

CInitialiseHotItemQueryThread::CInitialiseHotItemQueryThread(IQueryHost& host, sites::Profile profile,
                                                             net::NetOptions options, QueryDefinition query)
    : m_host(host),
      m_profile(std::move(profile)),
      m_options(std::move(options)),
      m_startThread([](std::function<void()> body) { return std::jthread(std::move(body)); }),
      m_query(std::move(query)) {}

CInitialiseHotItemQueryThread::~CInitialiseHotItemQueryThread() {
  for (std::jthread& thread : m_jobThreads) thread.request_stop();
  m_jobThreads.clear();
}

int CInitialiseHotItemQueryThread::MostJobsAtOnce() const {
  std::lock_guard lock(m_slotMutex);
  return m_mostJobsAtOnce;
}

void CInitialiseHotItemQueryThread::RunQuery(std::stop_token stop) {
  // The jobs read both sites' home pages and category data, whichever site the query is for.
  if (!m_host.SiteData(sites::Site::UK).ready.Wait(stop) || !m_host.SiteData(sites::Site::USA).ready.Wait(stop)) return;

  for (const std::string& link : m_query.categories) {
    m_arrJobs.push_back(
        std::make_unique<CLoadEachCategoryHotItemsQueryThread>(m_host, m_profile, m_options, m_query, link));
  }
  m_jobThreads.resize(m_arrJobs.size());
  for (std::size_t index = 0; index < m_arrJobs.size(); ++index) {
    if (!WaitForJobSlot(stop)) break;
    // A job started after the user's stop would end at its first look at the flag; no thread for it.
    if (m_host.IsQueryRunning()) {
      StartJob(index, stop);
    } else {
      m_arrJobs[index]->Abandon();
    }
  }

  if (m_endWithLastJob) {
    std::unique_lock lock(m_slotMutex);
    m_slotFreed.wait(lock, stop, [this] { return m_jobsRunning == 0; });
  }
  // An empty category list has no job to wait for: such a run ends at its first look.
  while (!m_endWithLastJob) {
    if (!base::PauseUnlessStopped(m_pollInterval, stop)) break;
    bool allFinished = true;
    for (const auto& job : m_arrJobs) {
      if (!job->IsFinished()) {
        allFinished = false;
        break;
      }
    }
    if (allFinished) break;
    ++m_polls;
  }
  for (std::jthread& thread : m_jobThreads) {
    if (thread.joinable()) thread.join();
  }

  // The list's columns: time left, title, price, bids.
  if (m_query.sort != SortColumn::None) {
    m_host.QueryResults().SortItems(static_cast<int>(m_query.sort) - 1, m_query.ascending);
  }

  if (!stop.stop_requested() && m_host.IsQueryRunning()) {
    m_host.SetQueryRunning(false);
    if constexpr (kPublishHistory) {
      PublishHistory(m_host.QueryResults(), m_historyFile, m_profile, m_options, std::chrono::seconds(1), stop);
    }
    m_host.Messages().Show(base::UserMessage{kSearchComplete, kSearchCompleteTitle, base::MessageButtons::Ok, true});
  }
}

bool CInitialiseHotItemQueryThread::WaitForJobSlot(const std::stop_token& stop) {
  std::vector<std::size_t> ended;
  {
    std::unique_lock lock(m_slotMutex);
    if (!m_slotFreed.wait(lock, stop, [this] { return m_jobsRunning < net::limits::kMaxQueryJobsAtOnce; })) {
      return false;
    }
    ended.swap(m_jobsEnded);
  }
  for (std::size_t index : ended) m_jobThreads[index].join();
  return true;
}

void CInitialiseHotItemQueryThread::StartJob(std::size_t index, std::stop_token stop) {
  CLoadEachCategoryHotItemsQueryThread* job = m_arrJobs[index].get();
  {
    std::lock_guard lock(m_slotMutex);
    ++m_jobsRunning;
    m_mostJobsAtOnce = std::max(m_mostJobsAtOnce, m_jobsRunning);
  }
  try {
    // The jobs stop with the run (at shutdown); the user's stop reaches them through the flag.
    m_jobThreads[index] = m_startThread([this, job, index, stop] {
      job->RunScan(stop);
      JobEnded(index);
    });
  } catch (const std::system_error&) {
    // Out of threads is no reason to lose the whole query: this entry is given up like a category
    // whose pages could not be read, and the rest go on.
    job->Abandon();
    std::lock_guard lock(m_slotMutex);
    --m_jobsRunning;
  }
}

void CInitialiseHotItemQueryThread::JobEnded(std::size_t index) {
  std::lock_guard lock(m_slotMutex);
  --m_jobsRunning;
  m_jobsEnded.push_back(index);
  m_slotFreed.notify_all();
}

net::NetResult PublishHistory(const hotitems::CItemListCtrl& results, const std::filesystem::path& localFile,
                              const sites::Profile& profile, const net::NetOptions& options,
                              std::chrono::milliseconds retryPause, std::stop_token stop) {
  if (!std::filesystem::exists(localFile)) return {false, "No local history file: " + localFile.string()};
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  const hotitems::CalendarDate date{local.tm_mday, local.tm_mon + 1, local.tm_year + 1900};
  {
    std::ofstream out(localFile, std::ios::binary | std::ios::app);
    for (const hotitems::CItemListCtrl::RecordPtr& record : results.Rows()) {
      if (record && hotitems::IsHistoryWorthy(*record)) out << hotitems::FormatHistoryLine(*record, date);
    }
    if (!out) return {false, "Cannot write " + localFile.string()};
  }
  net::FtpClient ftp(options, profile.vendor.ftp);
  net::NetResult last{false, "not tried"};
  for (int attempt = 1; attempt <= kPublishAttempts; ++attempt) {
    last = ftp.Remove(profile.vendor.historyFileName, stop);
    if (last) {
      last = ftp.PutFile(localFile, profile.vendor.historyFileName, stop);
      if (last) return last;
    }
    if (attempt == kPublishAttempts || !base::PauseUnlessStopped(retryPause, stop)) break;
  }
  return last;
}

}  // namespace gavelscope::query
