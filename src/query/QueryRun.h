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

  CInitialiseHotItemQueryThread(IQueryHost& host, sites::Profile profile, net::NetOptions options);
  ~CInitialiseHotItemQueryThread();

  void SetKeywords(std::string keywords) { m_strKeywords = std::move(keywords); }
  void SetPageDepth(std::int32_t depth) { m_nPageDepth = depth; }
  void SetCountry(std::int32_t international) { m_bInternational = international; }
  void SetBidsGreaterThan(std::int32_t n) { m_nBidsGreater = n; }
  void SetBidsLessThan(std::int32_t n) { m_nBidsLess = n; }
  void SetBidsRange(std::int32_t from, std::int32_t to);
  void SetPriceGreaterThan(std::int32_t n) { m_nPriceGreater = n; }
  void SetPriceLessThan(std::int32_t n) { m_nPriceLess = n; }
  void SetPriceRange(std::int32_t from, std::int32_t to);
  void SetDaysGreaterThan(std::int32_t n) { m_nDaysGreater = n; }
  void SetDaysLessThan(std::int32_t n) { m_nDaysLess = n; }
  void SetDaysRange(std::int32_t from, std::int32_t to);
  void SetAscending(std::int32_t ascending) { m_bAscending = ascending; }
  void SetSortByPrice(std::int32_t on) { m_bSortPrice = on; }
  void SetSortByBids(std::int32_t on) { m_bSortBids = on; }
  void SetSortByTitle(std::int32_t on) { m_bSortTitle = on; }
  void SetSortByDateEnded(std::int32_t on) { m_bSortDateEnded = on; }
  // The category links to scan.
  void SetCategories(std::vector<std::string> links) { m_categories = std::move(links); }
  void SetPollInterval(std::chrono::milliseconds interval) { m_pollInterval = interval; }
  // A running process cannot be made to run out of threads on demand; tests hand in a starter that does.
  void SetThreadStarter(ThreadStarter starter) { m_startThread = std::move(starter); }
  // The local copy of the shared history that publishing appends to.
  void SetHistoryFile(std::filesystem::path file) { m_historyFile = std::move(file); }

  std::int32_t international() const { return m_bInternational; }
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
  std::int32_t m_bInternational = 0;
  std::string m_strKeywords;
  std::int32_t m_nPageDepth = 1;
  std::vector<std::string> m_categories;
  std::int32_t m_nBidsGreater = -1, m_nBidsLess = -1, m_nBidsFrom = -1, m_nBidsTo = -1;
  std::int32_t m_nPriceGreater = -1, m_nPriceLess = -1, m_nPriceFrom = -1, m_nPriceTo = -1;
  std::int32_t m_nDaysGreater = -1, m_nDaysLess = -1, m_nDaysFrom = -1, m_nDaysTo = -1;
  std::int32_t m_bAscending = 1;
  std::int32_t m_bSortPrice = 0, m_bSortBids = 0, m_bSortTitle = 0, m_bSortDateEnded = 0;
  std::chrono::milliseconds m_pollInterval{15000};
  std::filesystem::path m_historyFile;
  int m_polls = 0;
};

// Appends the result rows with more than 30 bids to the local history file (which must exist: the
// history load downloaded it) and uploads it again: remove the remote copy, then put the local one in
// ASCII mode, at most 30 attempts a second apart.
net::NetResult PublishHistory(const hotitems::CItemListCtrl& results, const std::filesystem::path& localFile,
                              const sites::Profile& profile, const net::NetOptions& options,
                              std::chrono::milliseconds retryPause, std::stop_token stop);

}  // namespace gavelscope::query
