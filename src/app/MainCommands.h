// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <array>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "app/MainView.h"
#include "app/RunController.h"
#include "net/NetOptions.h"
#include "query/QueryDefinition.h"
#include "sites/SiteProfile.h"

namespace gavelscope::app {

enum class Tab { Keywords, Auctions, HotItems, Query };

// The views a tab shows for a site; every other named list, tree, the pages counter and the stop
// button are hidden.
std::vector<ViewId> ViewsShown(Tab tab, sites::Site site);

// What the main window's buttons, tabs, flags and keys do, without the window: the window turns
// clicks into these calls and asks the user the questions they return to it.
class CMainCommands {
 public:
  CMainCommands(CRunController& controller, IMainView& view, base::IUserMessages& messages, base::IBrowser& browser);

  Tab tab() const { return m_tab; }
  sites::Site site() const { return m_site; }

  // Shows the tab's views. The query tab then asks the window to confirm a new query.
  void SelectTab(Tab tab);
  // A click on a site's flag; false (nothing changes) when that site is already selected.
  bool SelectSite(sites::Site site);
  // Hands a word to the find-next of the visible list; an empty word is refused with a message.
  void SearchView(std::string_view word);
  // Enter never closes the window: it searches when the search edit has the focus.
  void EnterPressed(bool searchFocused, std::string_view word);
  bool skipDestroyOnce() const { return m_bSkipDestroyOnce; }
  // "Export Todays Keywords List" and so on, for the file dialog.
  std::string ExportTitle() const;
  // Asks for a text file and writes the visible list's export into it.
  void Export();
  // Writes the visible list's export into `file`; a file that cannot be written is reported and
  // keeps what it had.
  base::Outcome ExportView(const std::filesystem::path& file);
  // What Start Query in the query dialog does: empties the result list and, when the query names a
  // category, starts it; false (and the user told) when it names none.
  bool StartQuery(const query::QueryDefinition& query);
  void StopQuery();
  void OpenHomePage();
  void OpenMyEbay();

 private:
  // Where a tab's search goes and what its export writes.
  struct TabLists {
    base::ISearchableList* search = nullptr;
    base::IExportableList* exported = nullptr;
  };

  void ShowViews();
  TabLists VisibleLists() const;

  CRunController& m_controller;
  IMainView& m_view;
  base::IUserMessages& m_messages;
  base::IBrowser& m_browser;
  Tab m_tab = Tab::Keywords;
  sites::Site m_site = sites::Site::USA;
  bool m_bSkipDestroyOnce = false;
  std::array<std::array<TabLists, 2>, 4> m_lists{};
};

}  // namespace gavelscope::app
