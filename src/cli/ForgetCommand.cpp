// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include <ostream>

#include <CLI/CLI.hpp>

#include "cli/Command.h"

namespace gavelscope::cli {

namespace {

// forget --before DATE [--format F] [--db FILE]: removes the older snapshots, and says how many went.
class ForgetCommand : public Command {
 public:
  CLI::App* AddTo(CLI::App& program) override {
    CLI::App* command = program.add_subcommand(
        "forget", "Removes the research store's snapshots taken before a day (UTC), then compacts the file.");
    command
        ->add_option_function<std::string>(
            "--before", [this](const std::string& text) { m_before = *store::ParseTime(text); },
            "the first day (or second, YYYY-MM-DDTHH:MM:SSZ) to keep, in UTC")
        ->type_name("YYYY-MM-DD")
        ->required()
        ->check(CLI::Validator(
            [](std::string& text) {
              return store::ParseTime(text) ? std::string()
                                            : "\"" + text + "\" is not a day YYYY-MM-DD or a time YYYY-MM-DDTHH:MM:SSZ";
            },
            ""));
    m_store.AddTo(*command, /*format=*/true);
    return command;
  }

  bool NeedsRun() const override { return false; }

  int Run(CommandContext& context) override {
    const auto research = m_store.OpenExisting(context.err);
    if (!research) return kExitFailure;
    std::int64_t forgotten = 0;
    if (const base::Outcome forgot = research->Forget(m_before, forgotten); !forgot) {
      context.err << forgot.error << '\n';
      return kExitFailure;
    }
    return WriteExport(Render(forgotten), std::nullopt, context);
  }

 private:
  // Neither the count nor the time needs quoting or escaping in CSV or JSON.
  std::string Render(std::int64_t forgotten) const {
    const std::string count = std::to_string(forgotten);
    const std::string before = store::TimeText(m_before);
    switch (m_store.format()) {
      case store::Format::Csv:
        return "forgotten,before\r\n" + count + "," + before + "\r\n";
      case store::Format::Json:
        return "{\"forgotten\": " + count + ", \"before\": \"" + before + "\"}\n";
      case store::Format::Text:
        break;
    }
    return "Forgot " + count + (forgotten == 1 ? " snapshot" : " snapshots") + " taken before " + before + ".\n";
  }

  std::chrono::sys_seconds m_before{};
  StoreOptions m_store;
};

}  // namespace

std::unique_ptr<Command> MakeForgetCommand() {
  return std::make_unique<ForgetCommand>();
}

}  // namespace gavelscope::cli
