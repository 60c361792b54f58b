// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include <ostream>

#include "cli/Command.h"
#include "query/QueryFile.h"

namespace gavelscope::cli {

namespace {

// query FILE.sbqry [--export FILE]: runs a saved query and prints or writes its results.
class QueryCommand : public Command {
 public:
  std::string_view Name() const override { return "query"; }

  bool TakeArgument(const std::vector<std::string>& args, std::size_t& i, std::string& error) override {
    if (!m_file && !args[i].starts_with("-")) {
      m_file = args[i];
      return true;
    }
    return TakeExport(args, i, m_export, error);
  }

  std::string Check() const override { return m_file ? std::string() : "query needs a query file"; }

  // A file that cannot be read fails before any network.
  int Prepare(std::ostream& err) override {
    const base::Outcome loaded = query::LoadQueryFile(*m_file, m_query);
    if (!loaded) err << loaded.error << '\n';
    return loaded ? kExitOk : kExitFailure;
  }

  int Run(CommandContext& context) override {
    app::CRunController& controller = *context.controller;
    // The names become links once the site's categories are known, as when the dialog starts a query.
    if (!controller.Categories(m_query.site).ready.Wait(context.stop)) return kExitFailure;
    controller.StartQuery(m_query);
    if (!controller.QueryEnded().Wait(context.stop)) return kExitFailure;
    return WriteExport(controller.QueryResults().ExportText(), m_export, context);
  }

 private:
  std::optional<std::filesystem::path> m_file;
  std::optional<std::filesystem::path> m_export;
  query::QuerySpec m_query;
};

}  // namespace

std::unique_ptr<Command> MakeQueryCommand() {
  return std::make_unique<QueryCommand>();
}

}  // namespace gavelscope::cli
