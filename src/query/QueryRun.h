// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

#include "net/NetOptions.h"
#include "query/CategoryScanJob.h"
#include "query/QueryHost.h"
#include "query/QueryDefinition.h"
#include "sites/SiteProfile.h"

namespace gavelscope::query {

// Publishing finished queries into the shared history is built but switched off.
inline constexpr bool kPublishHistory = false;

// One hot item query: waits for both sites' categories, scans every category entry with a job of its
// own, polls the jobs until all have finished, sorts the result list and tells the user. A run whose
// query-running flag was cleared (the user stopped it) still sorts, but says nothing.
//
// A query file may name a category a thousand times, and each job has a thread, a session and its
// connections: at most kMaxQueryJobsAtOnce jobs run at once, and the rest start, in order, as
// running ones end. A job whose thread cannot be made ends at once with no rows.
class CInitialiseHotItemQueryThread {
 public:
  // Makes the thread that runs one job; throws std::system_error when the system has none to give.
  using ThreadStarter = std::function<std::jthread(std::function<void()>)>;

  // `query` carries the links of its categories (CategoryLinks), not their names.
  CInitialiseHotItemQueryThread(IQueryHost& host, sites::Profile profile, net::NetOptions options, QueryDefinition query);
  ~CInitialiseHotItemQueryThread();

  void SetPollInterval(std::chrono::milliseconds interval) { m_pollInterval = interval; }
  // Instead of looking at the jobs every poll interval, the run ends as soon as the last job has
  // ended: a script waiting on the command line has no reason to wait for the next look.
  void SetEndWithLastJob(bool end) { m_endWithLastJob = end; }
  // A running process cannot be made to run out of threads on demand; tests hand in a starter that does.
  void SetThreadStarter(ThreadStarter starter) { m_startThread = std::move(starter); }
  // The local copy of the shared history that publishing appends to.
  void SetHistoryFile(std::filesystem::path file) { m_historyFile = std::move(file); }

  const QueryDefinition& query() const { return m_query; }
  const std::vector<std::unique_ptr<CLoadEachCategoryHotItemsQueryThread>>& jobs() const { return m_arrJobs; }
  // How many polls found a job still running; tells tests the run waited for the slowest.
  int PollsMade() const { return m_polls; }
  // The most jobs that held a session at the same time during the run.
  int MostJobsAtOnce() const;

  // The whole run.
  void RunQuery(std::stop_token stop);

 private:
  // False when the run was stopped before a job could start.
  bool WaitForJobSlot(const std::stop_token& stop);
  void StartJob(std::size_t index, std::stop_token stop);
  void JobEnded(std::size_t index);

  IQueryHost& m_host;
  const sites::Profile m_profile;
  const net::NetOptions m_options;
  std::vector<std::unique_ptr<CLoadEachCategoryHotItemsQueryThread>> m_arrJobs;
  // Guards the counts below, which the jobs' threads change as they end.
  mutable std::mutex m_slotMutex;
  std::condition_variable_any m_slotFreed;
  int m_jobsRunning = 0;
  int m_mostJobsAtOnce = 0;
  // Jobs whose threads have ended but are not joined yet: an ended thread keeps its stack until then.
  std::vector<std::size_t> m_jobsEnded;
  ThreadStarter m_startThread;
  // One per job, by index; empty until the job starts and again once joined.
  std::vector<std::jthread> m_jobThreads;
  QueryDefinition m_query;
  std::chrono::milliseconds m_pollInterval{15000};
  std::filesystem::path m_historyFile;
  int m_polls = 0;
  bool m_endWithLastJob = false;
};

// Appends the result rows with more than 30 bids to the local history file (which must exist: the
// history load downloaded it) and uploads it again: remove the remote copy, then put the local one in
// ASCII mode, at most 30 attempts a second apart.
net::NetResult PublishHistory(const hotitems::CItemListCtrl& results, const std::filesystem::path& localFile,
                              const sites::Profile& profile, const net::NetOptions& options,
                              std::chrono::milliseconds retryPause, std::stop_token stop);

}  // namespace gavelscope::query
