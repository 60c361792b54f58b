// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include <CLI/CLI.hpp>

#include "cli/Command.h"
#include "insights/ListTable.h"
#include "insights/Statistics.h"

namespace gavelscope::cli {

namespace {

// history --site usa|uk [--export FILE] [--format F] [--stats]: the hot item history export, sorted by
// bids, or the statistics of its prices and bids.
class HistoryCommand : public SiteCommand {
 public:
  HistoryCommand() : SiteCommand(/*exports=*/true, /*statistics=*/true) {}
  CLI::App* AddTo(CLI::App& program) override {
    return AddSiteCommand(program, "history",
                          "Prints or writes the site's hot item history export, sorted by bids, or its statistics.");
  }

  int Run(CommandContext& context) override {
    if (!context.controller->LoadDone(app::Load::HotItems).Wait(context.stop)) return kExitFailure;
    const hotitems::CItemListCtrl& list = context.controller->HotItemList(m_site);
    if (m_output.stats()) {
      return WriteExport(m_output.RenderStatistics(insights::Summarise(insights::HistoryFigures(list.Rows()))),
                         context);
    }
    return WriteExport(
        m_output.Render([&] { return list.ExportText(); }, [&] { return insights::HistoryTable(list.Rows(), m_site); }),
        context);
  }
};

}  // namespace

std::unique_ptr<Command> MakeHistoryCommand() {
  return std::make_unique<HistoryCommand>();
}

}  // namespace gavelscope::cli
