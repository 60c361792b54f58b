// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include <ostream>

#include <CLI/CLI.hpp>

#include "cli/Command.h"
#include "query/QueryFile.h"

namespace gavelscope::cli {

namespace {

// query-show FILE.sbqry: a saved query's fields as the file stores them, then its categories.
class QueryShowCommand : public Command {
 public:
  CLI::App* AddTo(CLI::App& program) override {
    CLI::App* command = program.add_subcommand(
        "query-show", "Prints a query file's settings, one \"field: value\" line each, then its categories.");
    AddQueryFile(*command, m_files);
    return command;
  }

  bool NeedsRun() const override { return false; }

  int Run(CommandContext& context) override {
    std::string description;
    const base::Outcome read = query::DescribeQueryFile(m_files.front(), description);
    if (!read) {
      context.err << read.error << '\n';
      return kExitFailure;
    }
    context.out << description;
    context.out.flush();
    return context.out ? kExitOk : kExitFailure;
  }

 private:
  std::vector<std::string> m_files;
};

}  // namespace

std::unique_ptr<Command> MakeQueryShowCommand() {
  return std::make_unique<QueryShowCommand>();
}

}  // namespace gavelscope::cli
