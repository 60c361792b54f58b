// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include <CLI/CLI.hpp>

#include "cli/Command.h"
#include "insights/ListTable.h"

namespace gavelscope::cli {

namespace {

// auctions --site usa|uk [--export FILE] [--format F]: the auction counts export, largest first.
class AuctionsCommand : public SiteCommand {
 public:
  AuctionsCommand() : SiteCommand(/*exports=*/true) {}
  CLI::App* AddTo(CLI::App& program) override {
    return AddSiteCommand(program, "auctions",
                          "Prints or writes the site's \"Todays Auctions\" export, largest count first.");
  }

  int Run(CommandContext& context) override {
    if (!context.controller->LoadDone(app::AuctionsLoad(m_site)).Wait(context.stop)) return kExitFailure;
    const auctions::CAuctionListCtrl& list = context.controller->AuctionList(m_site);
    return WriteExport(m_output.Render([&] { return list.ExportText(); },
                                       [&] { return insights::AuctionsTable(list.Rows(), m_site); }),
                       context);
  }
};

}  // namespace

std::unique_ptr<Command> MakeAuctionsCommand() {
  return std::make_unique<AuctionsCommand>();
}

}  // namespace gavelscope::cli
