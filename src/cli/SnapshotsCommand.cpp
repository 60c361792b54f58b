// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include <ostream>

#include <CLI/CLI.hpp>

#include "cli/Command.h"

namespace gavelscope::cli {

namespace {

// snapshots [--site usa|uk] [--format F] [--db FILE]: what the research store holds.
class SnapshotsCommand : public Command {
 public:
  CLI::App* AddTo(CLI::App& program) override {
    CLI::App* command = program.add_subcommand(
        "snapshots", "Lists the research store's snapshots, oldest first, with the rows each one holds.");
    AddChoice(
        *command, "--site", {"usa", "uk"},
        [this](std::size_t index) { m_site = index == 0 ? sites::Site::USA : sites::Site::UK; },
        "only the snapshots of the USA site or of the UK site");
    m_store.AddTo(*command, /*format=*/true);
    return command;
  }

  bool NeedsRun() const override { return false; }

  int Run(CommandContext& context) override {
    const auto research = m_store.OpenExisting(context.err);
    if (!research) return kExitFailure;
    std::vector<store::SnapshotInfo> snapshots;
    if (const base::Outcome listed = research->Snapshots(m_site, snapshots); !listed) {
      context.err << listed.error << '\n';
      return kExitFailure;
    }
    return WriteExport(store::Render(snapshots, m_store.format()), std::nullopt, context);
  }

 private:
  std::optional<sites::Site> m_site;
  StoreOptions m_store;
};

}  // namespace

std::unique_ptr<Command> MakeSnapshotsCommand() {
  return std::make_unique<SnapshotsCommand>();
}

}  // namespace gavelscope::cli
