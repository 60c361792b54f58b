// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "app/MainCommands.h"

#include <algorithm>

#include "base/TextHelpers.h"

namespace gavelscope::app {

namespace {

using sites::Site;

constexpr ViewId kSwitchedViews[] = {ViewId::TreeUK,        ViewId::TreeUSA,        ViewId::KeywordsUK,
                                     ViewId::KeywordsUSA,   ViewId::AuctionsUK,     ViewId::AuctionsUSA,
                                     ViewId::HotItemsUK,    ViewId::HotItemsUSA,    ViewId::QueryResults,
                                     ViewId::PagesSearched, ViewId::StopQueryButton};

}  // namespace

std::vector<ViewId> ViewsShown(Tab tab, Site site) {
  const bool usa = site == Site::USA;
  switch (tab) {
    case Tab::Keywords:
      return {usa ? ViewId::TreeUSA : ViewId::TreeUK, usa ? ViewId::KeywordsUSA : ViewId::KeywordsUK};
    case Tab::Auctions:
      return {usa ? ViewId::AuctionsUSA : ViewId::AuctionsUK};
    case Tab::HotItems:
      return {usa ? ViewId::HotItemsUSA : ViewId::HotItemsUK};
    case Tab::Query:
      return {ViewId::QueryResults, ViewId::PagesSearched, ViewId::StopQueryButton};
  }
  return {};
}

CMainCommands::CMainCommands(CRunController& controller, IMainView& view, base::IUserMessages& messages,
                             base::IBrowser& browser)
    : m_controller(controller), m_view(view), m_messages(messages), m_browser(browser) {
  // The keywords tab searches the keyword list and exports the tree's Top 100; the other tabs do
  // both on their one list.
  for (const Site site : {Site::USA, Site::UK}) {
    const auto at = static_cast<std::size_t>(site == Site::USA ? 0 : 1);
    m_lists[static_cast<std::size_t>(Tab::Keywords)][at] = {&controller.KeywordList(site), &controller.Tree(site)};
    m_lists[static_cast<std::size_t>(Tab::Auctions)][at] = {&controller.AuctionList(site),
                                                            &controller.AuctionList(site)};
    m_lists[static_cast<std::size_t>(Tab::HotItems)][at] = {&controller.HotItemList(site),
                                                            &controller.HotItemList(site)};
    m_lists[static_cast<std::size_t>(Tab::Query)][at] = {&controller.QueryResults(), &controller.QueryResults()};
  }
}

CMainCommands::TabLists CMainCommands::VisibleLists() const {
  return m_lists[static_cast<std::size_t>(m_tab)][m_site == Site::USA ? 0 : 1];
}

void CMainCommands::ShowViews() {
  const std::vector<ViewId> shown = ViewsShown(m_tab, m_site);
  for (ViewId view : kSwitchedViews) {
    m_view.ShowView(view, std::find(shown.begin(), shown.end(), view) != shown.end());
  }
}

void CMainCommands::SelectTab(Tab tab) {
  m_tab = tab;
  ShowViews();
}

bool CMainCommands::SelectSite(Site site) {
  if (site == m_site) return false;
  m_site = site;
  // The query tab has one list for both sites.
  if (m_tab != Tab::Query) ShowViews();
  return true;
}

void CMainCommands::SearchView(std::string_view word) {
  if (word.empty()) {
    m_messages.Show(base::UserMessage{"Please Input A Search Word !", base::text::kMessageTitle, base::MessageButtons::Ok, true,
                                      base::MessageKind::Warning});
    return;
  }
  VisibleLists().search->FindNext(word);
}

void CMainCommands::EnterPressed(bool searchFocused, std::string_view word) {
  m_bSkipDestroyOnce = true;
  if (searchFocused) SearchView(word);
}

std::string CMainCommands::ExportTitle() const {
  static constexpr const char* kKinds[] = {"Keywords", "Auctions", "Hot Items", "Hot Items Query Results"};
  return std::string("Export Todays ") + kKinds[static_cast<int>(m_tab)] + " List";
}

void CMainCommands::Export() {
  const std::optional<std::filesystem::path> file =
      m_messages.ChooseFile(base::FileChoice{ExportTitle(), "Text File (*.txt)", "txt", true});
  if (file) ExportView(*file);
}

base::Outcome CMainCommands::ExportView(const std::filesystem::path& file) {
  const base::Outcome written = VisibleLists().exported->Export(file);
  if (!written) {
    m_messages.Show(
        base::UserMessage{"Cannot create the file " + file.string() + "\n" + written.error, base::text::kMessageTitle,
                          base::MessageButtons::Ok, true, base::MessageKind::Error});
  }
  return written;
}

bool CMainCommands::StartQuery(const query::QueryDefinition& query) {
  // The list is emptied even for a query that cannot start: the dialog asks again, on an empty list.
  m_controller.QueryResults().Clear();
  if (query.categories.empty()) {
    m_messages.Show(base::UserMessage{"Please enter at least one category.", base::text::kMessageTitle,
                                      base::MessageButtons::Ok, true, base::MessageKind::Warning});
    return false;
  }
  m_controller.StartQuery(query);
  return true;
}

void CMainCommands::StopQuery() {
  if (!m_controller.IsQueryRunning()) {
    m_messages.Show(base::UserMessage{"There is no hot item query process to stop", "Gavelscope Error",
                                      base::MessageButtons::Ok, true, base::MessageKind::Error});
    return;
  }
  // Clearing the flag is the stop: the run and its jobs end when they next look at it.
  m_controller.SetQueryRunning(false);
  m_messages.Show(base::UserMessage{"Gavelscope query analysis has been manually stopped", "Search Aborted"});
}

void CMainCommands::OpenHomePage() {
  m_browser.OpenUrlInBrowser(m_controller.config().profile.vendor.webServer);
}

void CMainCommands::OpenMyEbay() {
  std::string url = m_controller.config().profile.signInPage;
  if (m_site == Site::UK) base::ReplaceAll(url, ".com", ".co.uk");
  m_browser.OpenUrlInBrowser(url);
}

}  // namespace gavelscope::app
