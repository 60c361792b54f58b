// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include <ostream>

#include "cli/Command.h"
#include "query/QueryFile.h"

namespace gavelscope::cli {

namespace {

// query-show FILE.sbqry: a saved query's fields as the file stores them, then its categories.
class QueryShowCommand : public Command {
 public:
  std::string_view Name() const override { return "query-show"; }

  bool TakeArgument(const std::vector<std::string>& args, std::size_t& i, std::string&) override {
    if (m_file || args[i].starts_with("-")) return false;
    m_file = args[i];
    return true;
  }

  std::string Check() const override { return m_file ? std::string() : "query-show needs a query file"; }
  bool NeedsRun() const override { return false; }

  int Run(CommandContext& context) override {
    std::string description;
    const base::Outcome read = query::DescribeQueryFile(*m_file, description);
    if (!read) {
      context.err << read.error << '\n';
      return kExitFailure;
    }
    context.out << description;
    context.out.flush();
    return context.out ? kExitOk : kExitFailure;
  }

 private:
  std::optional<std::filesystem::path> m_file;
};

}  // namespace

std::unique_ptr<Command> MakeQueryShowCommand() {
  return std::make_unique<QueryShowCommand>();
}

}  // namespace gavelscope::cli
