// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "app/RunController.h"

#include <cctype>
#include <cstdlib>
#include <system_error>

#include "auctions/AuctionThread.h"
#include "hotitems/LoadHotItemsThread.h"
#include "keywords/KeyWordsThread.h"
#include "sites/CategoryAnchors.h"
#include "sites/SiteAddresses.h"

namespace gavelscope::app {

namespace {

// The files the system downloads into the per-user folder, removed when the program ends.
constexpr const char* kFilesRemovedAtEnd[] = {"HotItemList.txt", "GavelscopeBanners.txt"};

bool ContainsUK(std::string text) {
  for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return text.find("UK") != std::string::npos;
}

// The edit's text read as a decimal number: leading blanks and a sign allowed, anything else ends it.
int LeadingInteger(const std::string& text) {
  return std::atoi(text.c_str());
}

}  // namespace

CRunController::CRunController(ControllerConfig config, IMainView& view, base::IUserMessages& messages,
                               base::IBrowser& browser)
    : m_config(std::move(config)),
      m_view(view),
      m_messages(messages),
      m_browser(browser),
      m_session(m_config.net),
      m_listKeywordsUK(browser, messages),
      m_listKeywordsUSA(browser, messages),
      m_treeUK(0, m_listKeywordsUK, browser, messages),
      m_treeUSA(1, m_listKeywordsUSA, browser, messages),
      m_listAuctionsUSA(browser, messages),
      m_listAuctionsUK(browser, messages),
      m_listHotItemsUSA(hotitems::ItemListVariant::HistoryUSA, browser, messages, *this, m_config.dateOrder),
      m_listHotItemsUK(hotitems::ItemListVariant::HistoryUK, browser, messages, *this, m_config.dateOrder),
      m_listQueryResults(hotitems::ItemListVariant::QueryResults, browser, messages, *this, m_config.dateOrder) {}

CRunController::~CRunController() {
  Shutdown();
}

void CRunController::Start() {
  m_view.SetStopButtonBitmap(kBitmapQueryIdle);
  SetPagesSearchedText("0");
  m_view.ShowView(ViewId::PagesSearched, false);
  m_view.ShowView(ViewId::StopQueryButton, false);
  m_bSiteUSA = true;
  m_bQueryRunning = false;
  m_bRefreshing = true;

  // The count and the wait cursor start before the workers: a worker may finish before the rest of
  // the start-up has run, and its completion must count towards this run.
  {
    std::lock_guard lock(m_countMutex);
    m_nFinishedLoads = 0;
  }
  m_view.BeginWaitCursor();

  // UK first, then USA; each worker sets its Site's event by looking at its own address.
  const std::string ukRoot = m_config.profile.uk.listingRoot;
  const std::string usaRoot = m_config.profile.usa.listingRoot;
  for (const auto& site : {std::pair{&m_categoriesUK, ukRoot}, {&m_categoriesUSA, usaRoot}}) {
    sites::SiteCategories* target = site.first;
    const bool started = m_threads.Start(
        [this, target, root = site.second](std::stop_token stop) { LoadSiteCategories(*target, root, stop); });
    // Without its thread the Site has no categories, as when its home page cannot be read.
    if (!started && !m_bShutDown) {
      OnThreadFinished();
      target->ready.Set();
    }
  }

  StartAnalysis();

  m_view.ShowView(ViewId::TreeUK, false);
  m_view.ShowView(ViewId::TreeUSA, true);
  m_view.ShowView(ViewId::KeywordsUK, false);
  m_view.ShowView(ViewId::KeywordsUSA, true);
}

void CRunController::ShowWelcome() {
  m_messages.Show(base::UserMessage{std::string(base::text::kWelcomeText) + m_config.profile.vendor.supportEmail,
                                    base::text::kWelcomeTitle, base::MessageButtons::Ok, true});
}

void CRunController::StartAnalysis() {
  m_view.ShowWindow();
  m_view.SetProgressRange(0, kProgressMax);
  m_view.SetProgressStep(1);
  m_view.SetProgressPos(0);
  m_view.SetProgressBackColour(kColourWhite);
  m_view.SetProgressBarColour(kColourLoading);
  for (ViewId hidden : {ViewId::AuctionsUSA, ViewId::AuctionsUK, ViewId::HotItemsUSA, ViewId::HotItemsUK,
                        ViewId::QueryResults, ViewId::PagesSearched, ViewId::StopQueryButton}) {
    m_view.ShowView(hidden, false);
  }
  m_view.RepaintNow();
  StartAnalysisThreads();
}

void CRunController::StartAnalysisThreads() {
  // In this order: keywords UK, keywords USA, auctions USA, auctions UK, hot item history. Each
  // counts one finished load when it ends.
  if (m_bShutDown) return;
  for (base::ReadinessEvent& done : m_loadsDone) done.Reset();
  m_keyWordsThreadUK = StartLoad(Load::KeywordsUK, keywords::CKeyWordsThreadUK(m_config.profile, m_config.net,
                                                                               {m_treeUK, m_listKeywordsUK, *this}));
  m_keyWordsThreadUSA =
      StartLoad(Load::KeywordsUSA,
                keywords::CKeyWordsThreadUSA(m_config.profile, m_config.net, {m_treeUSA, m_listKeywordsUSA, *this}));
  m_auctionThreadUSA = StartLoad(
      Load::AuctionsUSA, auctions::CAuctionThreadUSA(m_config.profile, m_categoriesUSA, m_listAuctionsUSA, *this));
  m_auctionThreadUK = StartLoad(Load::AuctionsUK,
                                auctions::CAuctionThreadUK(m_config.profile, m_categoriesUK, m_listAuctionsUK, *this));
  hotitems::CLoadHotItemsThread history(m_config.profile, m_config.net, m_config.cacheFolder,
                                        {m_listHotItemsUSA, m_listHotItemsUK, *this});
  history.SetRetryPause(m_config.historyRetryPause);
  m_loadHotItemsThread = StartLoad(Load::HotItems, std::move(history));
}

template <typename Job>
std::jthread CRunController::StartLoad(Load load, Job job) {
  try {
    return std::jthread([this, load, job = std::move(job)](std::stop_token stop) mutable {
      job.Run(stop);
      LoadDone(load).Set();
    });
  } catch (const std::system_error&) {
    // A load whose thread cannot be created (the process is at its thread limit) failed like one
    // whose server never answered: its list stays empty and it still counts, so the run ends.
    if (load == Load::KeywordsUK || load == Load::KeywordsUSA) SetRefreshDone(true);
    OnThreadFinished();
    LoadDone(load).Set();
    return {};
  }
}

void CRunController::StopAnalysisThreads() {
  const std::initializer_list<std::jthread*> threads{&m_keyWordsThreadUK, &m_keyWordsThreadUSA, &m_auctionThreadUSA,
                                                     &m_auctionThreadUK, &m_loadHotItemsThread};
  for (std::jthread* thread : threads) thread->request_stop();
  for (std::jthread* thread : threads) {
    if (thread->joinable()) thread->join();
  }
}

void CRunController::LoadSiteCategories(sites::SiteCategories& target, const std::string& baseUrl,
                                        std::stop_token stop) {
  ExtractCategoryLinks(target, baseUrl, stop);
  // The event that is set depends on the address alone, as it always has.
  sites::SiteCategories& ready = ContainsUK(baseUrl) ? m_categoriesUK : m_categoriesUSA;
  ready.ready.Set();
}

void CRunController::ExtractCategoryLinks(sites::SiteCategories& target, const std::string& url, std::stop_token stop) {
  target.strHomePage = GetPageText(url, std::move(stop));
  sites::ParseCategoryAnchors(target.strHomePage, target.arrCategoryNames, target.arrCategoryLinks);
  OnThreadFinished();
}

std::string CRunController::GetPageText(std::string_view url, std::stop_token stop) {
  // Item links come from pages and from the shared history file: one that leaves the sites'
  // domains is treated as a page that could not be read.
  if (!sites::IsSiteAddress(url, m_config.profile)) return {};
  return m_session.GetPageText(url, std::move(stop));
}

void CRunController::OnThreadFinished() {
  bool allDone = false;
  {
    std::lock_guard lock(m_countMutex);
    allDone = ++m_nFinishedLoads == kLoadsPerRun;
  }
  if (allDone) {
    m_view.SetProgressBarColour(kColourLoaded);
    m_view.EndWaitCursor();
  }
}

int CRunController::FinishedLoads() const {
  std::lock_guard lock(m_countMutex);
  return m_nFinishedLoads;
}

void CRunController::SetRefreshDone(bool done) {
  m_bRefreshing = !done;
}

bool CRunController::RefreshDisplay() {
  if (m_bRefreshing.exchange(true)) {
    m_messages.Show(
        base::UserMessage{base::text::kAlreadyRefreshing, base::text::kMessageTitle, base::MessageButtons::Ok, true});
    return false;
  }
  // The previous run's threads end first: their completions belong to the run they started in.
  StopAnalysisThreads();
  m_view.SetProgressBarColour(kColourLoading);
  // The keyword and auction views start again empty; the history and query lists stay as they are.
  m_treeUK.FreeCatalogue();
  m_treeUSA.FreeCatalogue();
  m_listKeywordsUK.Clear();
  m_listKeywordsUSA.Clear();
  m_listAuctionsUSA.Clear();
  m_listAuctionsUK.Clear();
  m_view.SetProgressRange(0, kProgressMax);
  m_view.SetProgressStep(1);
  {
    std::lock_guard lock(m_countMutex);
    m_nFinishedLoads = 0;
  }
  m_view.BeginWaitCursor();
  // Categories are discovered once per process; the controller counts the two start-up workers itself.
  OnThreadFinished();
  OnThreadFinished();
  StartAnalysisThreads();
  return true;
}

void CRunController::SetQueryRunning(bool running) {
  m_bQueryRunning = running;
  m_view.SetStopButtonBitmap(running ? kBitmapQueryRunning : kBitmapQueryIdle);
}

std::unique_ptr<query::CInitialiseHotItemQueryThread> CRunController::NewQueryRun(query::QueryDefinition query) {
  // The names are written once, before the Site's event is set, and read only after it.
  const sites::SiteCategories& site = Categories(query.site);
  if (site.ready.IsSet()) query.categories = query::CategoryLinks(query.categories, site);
  auto run =
      std::make_unique<query::CInitialiseHotItemQueryThread>(*this, m_config.profile, m_config.net, std::move(query));
  run->SetPollInterval(m_config.queryPollInterval);
  run->SetEndWithLastJob(m_config.queryEndsWithLastJob);
  run->SetHistoryFile(m_config.cacheFolder / m_config.profile.vendor.historyFileName);
  return run;
}

void CRunController::StartQuery(std::unique_ptr<query::CInitialiseHotItemQueryThread> run) {
  if (m_bShutDown) return;
  // A run still alive was stopped by the user; it ends at once on its stop request.
  m_queryThread = {};
  m_listQueryResults.Clear();
  m_queryEnded.Reset();
  m_queryAlive = true;
  SetQueryRunning(true);
  try {
    m_queryThread = std::jthread([this, run = std::move(run)](std::stop_token stop) {
      run->RunQuery(stop);
      m_queryAlive = false;
      m_queryEnded.Set();
    });
  } catch (const std::system_error&) {
    // No thread for the run: it ends at once with no rows, as a run whose pages all failed.
    SetQueryRunning(false);
    m_queryAlive = false;
    m_queryEnded.Set();
  }
}

void CRunController::IncrementPagesSearched() {
  std::lock_guard lock(m_pagesMutex);
  m_strPagesSearched = std::to_string(static_cast<long long>(LeadingInteger(m_strPagesSearched)) + 1);
  m_view.SetEditText(ViewId::PagesSearched, m_strPagesSearched);
}

void CRunController::SetPagesSearchedText(const std::string& text) {
  std::lock_guard lock(m_pagesMutex);
  m_strPagesSearched = text;
  m_view.SetEditText(ViewId::PagesSearched, m_strPagesSearched);
}

void CRunController::StepProgress() {
  m_view.StepProgress();
}

void CRunController::RedrawWindow() {
  m_view.RepaintNow();
}

void CRunController::Shutdown() {
  if (m_bShutDown.exchange(true)) return;
  StopAnalysisThreads();
  m_queryThread = {};
  m_threads.StopAndJoinAll();
  m_listHotItemsUSA.Shutdown();
  m_listHotItemsUK.Shutdown();
  m_listQueryResults.Shutdown();
  if (m_config.cacheFolder.empty()) return;
  for (const char* name : kFilesRemovedAtEnd) {
    std::error_code ignored;
    std::filesystem::remove(m_config.cacheFolder / name, ignored);
  }
}

}  // namespace gavelscope::app
