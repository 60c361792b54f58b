// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include <ostream>

#include <CLI/CLI.hpp>

#include "cli/Command.h"
#include "insights/ListTable.h"
#include "insights/Statistics.h"
#include "query/QueryFile.h"

namespace gavelscope::cli {

namespace {

// query FILE.sbqry [--export FILE] [--format F] [--stats]: runs a saved query and prints or writes
// its results, or their statistics.
class QueryCommand : public Command {
 public:
  CLI::App* AddTo(CLI::App& program) override {
    CLI::App* command = program.add_subcommand(
        "query",
        "Runs a saved query over its site's categories and prints or writes the sorted results, or their "
        "statistics.");
    AddQueryFile(*command, m_files);
    AddExport(*command, m_export);
    m_output.AddTo(*command);
    command->footer(
        "The command ends as soon as the query's last scan job has finished; the window looks at its jobs "
        "every 15 seconds instead.");
    return command;
  }

  // A file that cannot be read fails before any network.
  int Prepare(std::ostream& err) override {
    m_file = m_files.front();
    const base::Outcome loaded = query::LoadQueryFile(m_file, m_query);
    if (!loaded) err << loaded.error << '\n';
    return loaded ? kExitOk : kExitFailure;
  }

  int Run(CommandContext& context) override {
    app::CRunController& controller = *context.controller;
    // The names become links once the site's categories are known, as when the dialog starts a query.
    if (!controller.Categories(m_query.site).ready.Wait(context.stop)) return kExitFailure;
    controller.StartQuery(m_query);
    if (!controller.QueryEnded().Wait(context.stop)) return kExitFailure;
    const hotitems::CItemListCtrl& results = controller.QueryResults();
    if (m_output.stats()) {
      const auto figures = insights::QueryFigures(results.Rows(), m_query.site);
      return WriteExport(m_output.RenderStatistics(insights::Summarise(figures)), m_export, context);
    }
    return WriteExport(
        m_output.Render([&] { return results.ExportText(); },
                        [&] { return insights::QueryTable(results.Rows(), m_query.site, m_file.filename().string()); }),
        m_export, context);
  }

 private:
  std::vector<std::string> m_files;
  std::filesystem::path m_file;
  std::optional<std::filesystem::path> m_export;
  query::QueryDefinition m_query;
  ListOutput m_output{/*statistics=*/true};
};

}  // namespace

std::unique_ptr<Command> MakeQueryCommand() {
  return std::make_unique<QueryCommand>();
}

}  // namespace gavelscope::cli
