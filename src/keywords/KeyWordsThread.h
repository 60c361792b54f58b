// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <chrono>
#include <stop_token>
#include <string>

#include "base/RunEvents.h"
#include "keywords/CategoryTree.h"
#include "keywords/KeywordListCtrl.h"
#include "net/NetOptions.h"
#include "sites/SiteProfile.h"

namespace gavelscope::keywords {

// Loads one Site's category list from the vendor's web server into that Site's tree, derives the
// Top 100 list and reports the load as finished. A list that cannot be read leaves the tree with its
// "Top 100 Keywords" item alone; the load still completes.
class CKeyWordsThread {
 public:
  struct Targets {
    CCategoryTree& tree;
    CKeywordListCtrl& keywordList;
    base::IRunEvents& events;
  };

  CKeyWordsThread(sites::Site site, const sites::Profile& profile, net::NetOptions options, Targets targets);

  // The pause after each category and sub-category line, which lets the window keep up.
  void SetLinePause(std::chrono::milliseconds pause) { m_linePause = pause; }

  // The whole job, then the completion report. A stop request ends the reading early.
  void Run(std::stop_token stop);

  sites::Site site() const { return m_site; }
  const std::string& listUrl() const { return m_listUrl; }

 private:
  void Load(std::stop_token stop);

  sites::Site m_site;
  std::string m_listUrl;
  net::NetOptions m_options;
  Targets m_targets;
  std::chrono::milliseconds m_linePause{5};
};

class CKeyWordsThreadUK : public CKeyWordsThread {
 public:
  CKeyWordsThreadUK(const sites::Profile& profile, net::NetOptions options, Targets targets)
      : CKeyWordsThread(sites::Site::UK, profile, std::move(options), targets) {}
};

class CKeyWordsThreadUSA : public CKeyWordsThread {
 public:
  CKeyWordsThreadUSA(const sites::Profile& profile, net::NetOptions options, Targets targets)
      : CKeyWordsThread(sites::Site::USA, profile, std::move(options), targets) {}
};

}  // namespace gavelscope::keywords
