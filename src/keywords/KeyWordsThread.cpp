// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "keywords/KeyWordsThread.h"

#include "base/Pause.h"
#include "keywords/CategoryList.h"
#include "net/Session.h"
#include "net/TextFeed.h"

namespace gavelscope::keywords {

CKeyWordsThread::CKeyWordsThread(sites::Site site, const sites::Profile& profile, net::NetOptions options,
                                 Targets targets)
    : m_site(site),
      m_listUrl(profile.vendor.webServer + profile.site(site).categoryListPath),
      m_options(std::move(options)),
      m_targets(targets) {}

void CKeyWordsThread::Run(std::stop_token stop) {
  Load(stop);
  m_targets.events.OnThreadFinished();
}

void CKeyWordsThread::Load(std::stop_token stop) {
  const auto session = net::Session::Create(m_options);
  // An unreadable list counts as an empty one: the tree keeps its Top 100 item and nothing else.
  net::FeedOpenResult opened = net::OpenTextFeed(session, m_listUrl, stop);

  CCategoryTree& tree = m_targets.tree;
  tree.SetRedraw(false);
  CategoryLoadState state = BeginCatalogue(tree);
  if (opened.feed) {
    for (std::string line; !stop.stop_requested() && opened.feed->ReadLine(line);) {
      const LineEffect effect = ParseCategoryLine(tree, line, state);
      if (effect.category) m_targets.events.StepProgress();
      if (effect.category || effect.subcategory) base::PauseUnlessStopped(m_linePause, stop);
    }
  }
  opened.feed.reset();
  if (stop.stop_requested()) {
    // Stopped for a refresh or the end of the program: this load is being thrown away, and its
    // end must not clear the refreshing flag of the run that replaces it.
    tree.SetRedraw(true);
    return;
  }
  tree.BuildTop100();
  tree.SetRedraw(true);
  m_targets.keywordList.SetRedraw(true);
  m_targets.events.RedrawWindow();
  m_targets.events.SetRefreshDone(true);
}

}  // namespace gavelscope::keywords
