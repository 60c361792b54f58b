// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <memory>
#include <mutex>
#include <stop_token>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "app/MainView.h"
#include "auctions/AuctionListCtrl.h"
#include "base/Browser.h"
#include "base/PageSource.h"
#include "base/ReadinessEvent.h"
#include "base/RunEvents.h"
#include "base/ThreadOwner.h"
#include "base/UserMessages.h"
#include "hotitems/ItemListCtrl.h"
#include "keywords/CategoryTree.h"
#include "keywords/KeywordListCtrl.h"
#include "net/NetOptions.h"
#include "net/PageFetcher.h"
#include "query/QueryHost.h"
#include "query/QueryRun.h"
#include "query/QueryDefinition.h"
#include "sites/SiteCategories.h"
#include "sites/SiteProfile.h"

namespace gavelscope::app {

// The analysis loads of a run, in the order they start.
enum class Load { KeywordsUK, KeywordsUSA, AuctionsUSA, AuctionsUK, HotItems };
inline constexpr std::size_t kLoadKinds = 5;

// The loads that fill a Site's keyword tree and its auction list.
constexpr Load KeywordsLoad(sites::Site site) {
  return site == sites::Site::USA ? Load::KeywordsUSA : Load::KeywordsUK;
}
constexpr Load AuctionsLoad(sites::Site site) {
  return site == sites::Site::USA ? Load::AuctionsUSA : Load::AuctionsUK;
}

struct ControllerConfig {
  sites::Profile profile;
  net::NetOptions net;
  // The per-user folder for the files the system downloads and writes.
  std::filesystem::path cacheFolder;
  // How the user's locale orders day and month, for the date columns.
  hotitems::DateOrder dateOrder = hotitems::DateOrder::DayFirst;
  // How often a query run looks whether its scan jobs have all finished.
  std::chrono::milliseconds queryPollInterval{15000};
  // The command line ends a query with its last job; the window keeps its look every poll interval.
  bool queryEndsWithLastJob = false;
  // The pause between two attempts to download the hot item history.
  std::chrono::milliseconds historyRetryPause{1000};
};

// The run controller of the main window: starts the start-up workers and the analysis threads,
// counts their completions, restarts the analysis on refresh, owns the state they share, and at the
// end stops and joins them all. The window (or the CLI) supplies the view operations.
class CRunController : public base::IRunEvents, public base::IPageSource, public query::IQueryHost {
 public:
  static constexpr int kLoadsPerRun = 7;
  static constexpr int kProgressMax = 60;

  CRunController(ControllerConfig config, IMainView& view, base::IUserMessages& messages, base::IBrowser& browser);
  ~CRunController() override;
  CRunController(const CRunController&) = delete;
  CRunController& operator=(const CRunController&) = delete;

  // The window's start-up: flags, the two category workers, then the analysis.
  void Start();
  // The start-up notice; the window shows it once it has started, the CLI does not.
  void ShowWelcome();
  // Refresh: refused while a run's keyword load is still going, else restarts the analysis.
  bool RefreshDisplay();
  // Stops and joins every thread, then removes the downloaded files. Safe to call twice.
  void Shutdown();

  // For the workers and views.
  std::string GetPageText(std::string_view url, std::stop_token stop) override;
  void OnThreadFinished() override;
  void SetRefreshDone(bool done) override;
  void RedrawWindow() override;
  void SetQueryRunning(bool running) override;
  bool IsQueryRunning() const override { return m_bQueryRunning.load(); }
  void IncrementPagesSearched() override;
  const sites::SiteCategories& SiteData(sites::Site site) override { return Categories(site); }
  hotitems::CItemListCtrl& QueryResults() override { return m_listQueryResults; }
  base::IUserMessages& Messages() override { return m_messages; }

  // A run of `query` configured for this controller, to be handed to StartQuery. Its category names
  // become the Site's links when the Site's categories are known; until then they are looked for on
  // the home page as they are.
  std::unique_ptr<query::CInitialiseHotItemQueryThread> NewQueryRun(query::QueryDefinition query);
  // Empties the result list, marks the query running and starts the run (a run still alive is
  // stopped and joined first).
  void StartQuery(std::unique_ptr<query::CInitialiseHotItemQueryThread> run);
  void StartQuery(query::QueryDefinition query) { StartQuery(NewQueryRun(std::move(query))); }
  // True while a query run is alive, stopped or not.
  bool IsQueryAlive() const { return m_queryAlive.load(); }
  // Set when the last started query run has ended.
  base::ReadinessEvent& QueryEnded() { return m_queryEnded; }
  void SetPagesSearchedText(const std::string& text);
  bool IsSiteUSA() const { return m_bSiteUSA.load(); }
  void StepProgress() override;

  keywords::CCategoryTree& Tree(sites::Site site) { return site == sites::Site::USA ? m_treeUSA : m_treeUK; }
  keywords::CKeywordListCtrl& KeywordList(sites::Site site) {
    return site == sites::Site::USA ? m_listKeywordsUSA : m_listKeywordsUK;
  }
  auctions::CAuctionListCtrl& AuctionList(sites::Site site) {
    return site == sites::Site::USA ? m_listAuctionsUSA : m_listAuctionsUK;
  }
  hotitems::CItemListCtrl& HotItemList(sites::Site site) {
    return site == sites::Site::USA ? m_listHotItemsUSA : m_listHotItemsUK;
  }
  const sites::SiteCategories& Categories(sites::Site site) const {
    return site == sites::Site::USA ? m_categoriesUSA : m_categoriesUK;
  }
  sites::SiteCategories& Categories(sites::Site site) {
    return site == sites::Site::USA ? m_categoriesUSA : m_categoriesUK;
  }
  const ControllerConfig& config() const { return m_config; }
  net::SharedSession& session() { return m_session; }
  int FinishedLoads() const;
  // Set when the given load of the current run has ended; reset by a refresh.
  base::ReadinessEvent& LoadDone(Load load) { return m_loadsDone[static_cast<std::size_t>(load)]; }
  bool IsRefreshing() const { return m_bRefreshing.load(); }

  // The start-up worker of one Site: fetch the listing home page and extract its categories.
  void ExtractCategoryLinks(sites::SiteCategories& target, const std::string& url, std::stop_token stop);

 private:
  void StartAnalysis();
  void StartAnalysisThreads();
  // Runs an analysis job on a new thread and marks its load done when the job returns.
  template <typename Job>
  std::jthread StartLoad(Load load, Job job);
  // Stops and joins the analysis threads of the previous run, so that none of them writes into a
  // view that is being cleared for the next one.
  void StopAnalysisThreads();
  void LoadSiteCategories(sites::SiteCategories& target, const std::string& baseUrl, std::stop_token stop);

  ControllerConfig m_config;
  IMainView& m_view;
  base::IUserMessages& m_messages;
  base::IBrowser& m_browser;
  net::SharedSession m_session;

  // The lists come first: each tree feeds its Site's list.
  keywords::CKeywordListCtrl m_listKeywordsUK;
  keywords::CKeywordListCtrl m_listKeywordsUSA;
  keywords::CCategoryTree m_treeUK;
  keywords::CCategoryTree m_treeUSA;
  auctions::CAuctionListCtrl m_listAuctionsUSA;
  auctions::CAuctionListCtrl m_listAuctionsUK;
  hotitems::CItemListCtrl m_listHotItemsUSA;
  hotitems::CItemListCtrl m_listHotItemsUK;
  hotitems::CItemListCtrl m_listQueryResults;
  std::atomic<bool> m_queryAlive{false};
  base::ReadinessEvent m_queryEnded;

  sites::SiteCategories m_categoriesUK;
  sites::SiteCategories m_categoriesUSA;

  mutable std::mutex m_countMutex;
  int m_nFinishedLoads = 0;
  std::mutex m_pagesMutex;
  std::string m_strPagesSearched = "0";

  std::atomic<bool> m_bQueryRunning{false};
  std::atomic<bool> m_bSiteUSA{true};
  std::atomic<bool> m_bRefreshing{false};
  std::atomic<bool> m_bShutDown{false};
  std::array<base::ReadinessEvent, kLoadKinds> m_loadsDone;

  // Last members: destroyed first, so no worker outlives the state it uses. Assigning a new thread
  // to a slot stops and joins the one before.
  std::jthread m_keyWordsThreadUK;
  std::jthread m_keyWordsThreadUSA;
  std::jthread m_auctionThreadUSA;
  std::jthread m_auctionThreadUK;
  std::jthread m_loadHotItemsThread;
  std::jthread m_queryThread;
  base::ThreadOwner m_threads;
};

}  // namespace gavelscope::app
