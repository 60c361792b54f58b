// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "cli/Command.h"

namespace gavelscope::cli {

namespace {

// history --site usa|uk [--export FILE]: the hot item history export, sorted by bids.
class HistoryCommand : public SiteCommand {
 public:
  HistoryCommand() : SiteCommand(/*exports=*/true) {}
  std::string_view Name() const override { return "history"; }

  int Run(CommandContext& context) override {
    if (!context.controller->LoadDone(app::Load::HotItems).Wait(context.stop)) return kExitFailure;
    return WriteExport(context.controller->HotItemList(m_site).ExportText(), context);
  }
};

}  // namespace

std::unique_ptr<Command> MakeHistoryCommand() {
  return std::make_unique<HistoryCommand>();
}

}  // namespace gavelscope::cli
