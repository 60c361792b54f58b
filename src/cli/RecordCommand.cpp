// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include <algorithm>
#include <ostream>

#include <CLI/CLI.hpp>

#include "cli/Command.h"
#include "insights/ListTable.h"
#include "query/QueryFile.h"

namespace gavelscope::cli {

namespace {

struct SavedQuery {
  std::filesystem::path file;
  query::QueryDefinition settings;
};


// record --site usa|uk|both [--query FILE.sbqry]... [--db FILE]: one start-up, then one snapshot of
// each Site into the research store, with the queries' results in their Site's snapshot.
class RecordCommand : public Command {
 public:
  CLI::App* AddTo(CLI::App& program) override {
    CLI::App* command = program.add_subcommand(
        "record",
        "Records a snapshot of each site's auction counts and Top 100 keywords, and of the saved queries' "
        "results, into the research store.");
    AddChoice(
        *command, "--site", {"usa", "uk", "both"},
        [this](std::size_t index) {
          m_sites = index == 0   ? std::vector{sites::Site::USA}
                    : index == 1 ? std::vector{sites::Site::UK}
                                 : std::vector{sites::Site::USA, sites::Site::UK};
        },
        "the site to record, or both")
        ->required();
    command->add_option("--query", m_queryFiles, "a saved query to run and record with its site's snapshot; repeatable")
        ->type_name("FILE.sbqry")
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    m_store.AddTo(*command, /*format=*/false);
    command->footer(
        "The queries run one after another. Each snapshot is recorded whole or not at all; a site whose "
        "auction counts and keywords both failed to load is not recorded.");
    return command;
  }

  // Unreadable query files and an unusable store fail before any network: a long run is not
  // wasted on a recording that cannot be made.
  int Prepare(std::ostream& err) override {
    for (const std::string& name : m_queryFiles) {
      SavedQuery saved{name, {}};
      if (const base::Outcome loaded = query::LoadQueryFile(saved.file, saved.settings); !loaded) {
        err << loaded.error << '\n';
        return kExitFailure;
      }
      if (std::find(m_sites.begin(), m_sites.end(), saved.settings.site) == m_sites.end()) {
        err << "Cannot record " << name << ": it searches the " << insights::SiteName(saved.settings.site)
            << " site, which --site leaves out.\n";
        return kExitFailure;
      }
      m_queries.push_back(std::move(saved));
    }
    base::Outcome opened;
    m_research = store::ResearchStore::Open(m_store.file(), {}, opened);
    if (!m_research) err << opened.error << '\n';
    return m_research ? kExitOk : kExitFailure;
  }

  int Run(CommandContext& context) override {
    app::CRunController& controller = *context.controller;
    std::vector<store::SnapshotData> snapshots;
    for (const sites::Site site : m_sites) {
      for (const app::Load load : {app::KeywordsLoad(site), app::AuctionsLoad(site)}) {
        if (!controller.LoadDone(load).Wait(context.stop)) return kExitFailure;
      }
      snapshots.push_back(
          store::SnapshotOf(site, store::NowUtc(), controller.AuctionList(site).Rows(), controller.Tree(site)));
    }
    for (const SavedQuery& saved : m_queries) {
      if (!controller.Categories(saved.settings.site).ready.Wait(context.stop)) return kExitFailure;
      controller.StartQuery(saved.settings);
      if (!controller.QueryEnded().Wait(context.stop)) return kExitFailure;
      store::SnapshotData& snapshot = *std::find_if(snapshots.begin(), snapshots.end(),
                                                    [&](const auto& taken) { return taken.site == saved.settings.site; });
      snapshot.queries.push_back(
          store::QueryRecordingOf(saved.file.filename().string(), saved.settings, controller.QueryResults().Rows()));
    }
    int status = kExitOk;
    for (const store::SnapshotData& snapshot : snapshots) {
      const std::string site(insights::SiteName(snapshot.site));
      // An empty snapshot would read as every sub-category and keyword gone in the trends.
      if (snapshot.auctions.empty() && snapshot.keywords.empty()) {
        context.err << "Nothing was recorded for " << site << ": its auction counts and keywords did not load.\n";
        status = kExitFailure;
        continue;
      }
      std::int64_t id = 0;
      if (const base::Outcome recorded = m_research->Record(snapshot, id); !recorded) {
        context.err << recorded.error << '\n';
        status = kExitFailure;
        continue;
      }
      context.out << "Recorded " << store::RecordedText(snapshot, id) << '\n';
    }
    context.out.flush();
    return context.out ? status : kExitFailure;
  }

 private:
  std::vector<sites::Site> m_sites;
  std::vector<std::string> m_queryFiles;
  std::vector<SavedQuery> m_queries;
  StoreOptions m_store;
  std::unique_ptr<store::ResearchStore> m_research;
};

}  // namespace

std::unique_ptr<Command> MakeRecordCommand() {
  return std::make_unique<RecordCommand>();
}

}  // namespace gavelscope::cli
