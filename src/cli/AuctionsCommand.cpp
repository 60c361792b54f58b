// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "cli/Command.h"

namespace gavelscope::cli {

namespace {

// auctions --site usa|uk [--export FILE]: the auction counts export, largest first.
class AuctionsCommand : public SiteCommand {
 public:
  AuctionsCommand() : SiteCommand(/*exports=*/true) {}
  std::string_view Name() const override { return "auctions"; }

  int Run(CommandContext& context) override {
    const app::Load load = m_site == sites::Site::USA ? app::Load::AuctionsUSA : app::Load::AuctionsUK;
    if (!context.controller->LoadDone(load).Wait(context.stop)) return kExitFailure;
    return WriteExport(context.controller->AuctionList(m_site).ExportText(), context);
  }
};

}  // namespace

std::unique_ptr<Command> MakeAuctionsCommand() {
  return std::make_unique<AuctionsCommand>();
}

}  // namespace gavelscope::cli
