// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <filesystem>
#include <functional>
#include <iosfwd>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "app/RunController.h"
#include "base/UserMessages.h"
#include "insights/ListTable.h"
#include "insights/Statistics.h"
#include "sites/SiteProfile.h"

namespace gavelscope::cli {

inline constexpr int kExitOk = 0;
inline constexpr int kExitFailure = 1;
inline constexpr int kExitUsage = 2;

// What a command runs with: the started run controller (null for a command on files alone), where
// the user is told things, and the stop that Ctrl-C requests.
struct CommandContext {
  app::CRunController* controller = nullptr;
  base::IUserMessages& messages;
  std::ostream& out;
  std::ostream& err;
  std::stop_token stop;
};

// One command of gavelscope-cli: its arguments, and what it does with them.
class Command {
 public:
  virtual ~Command() = default;
  virtual std::string_view Name() const = 0;
  // Takes args[i] (and its values) when it is one of the command's own arguments: true when it
  // was, with `error` set when it was malformed.
  virtual bool TakeArgument(const std::vector<std::string>& args, std::size_t& i, std::string& error) = 0;
  // What is missing or contradictory once every argument is taken; empty when the command can run.
  virtual std::string Check() const = 0;
  // Work done before any network, such as reading a query file; a failure is reported and ends the
  // command.
  virtual int Prepare(std::ostream& /*err*/) { return kExitOk; }
  // Whether the command needs the start-up (probe and run controller) or works on files alone.
  virtual bool NeedsRun() const { return true; }
  virtual int Run(CommandContext& context) = 0;
};

enum class OutputFormat { Text, Csv, Json };

// How a list command writes its list: --format text|csv|json, and --stats for the item lists.
class ListOutput {
 public:
  explicit ListOutput(bool statistics) : m_statistics(statistics) {}
  // Takes --format (and --stats where the list has statistics) at args[i].
  bool TakeArgument(const std::vector<std::string>& args, std::size_t& i, std::string& error);
  bool formatGiven() const { return m_formatGiven; }
  bool stats() const { return m_stats; }
  // The list in the chosen format: its own text export, or its table as CSV or JSON. Each is
  // built only when chosen.
  std::string Render(const std::function<std::string()>& text, const std::function<insights::ListTable()>& table) const;
  std::string RenderStatistics(const insights::ListStatistics& statistics) const;

 private:
  const bool m_statistics;
  OutputFormat m_format = OutputFormat::Text;
  bool m_formatGiven = false;
  bool m_stats = false;
};

// A command over one site's view: --site usa|uk, and --export FILE and --format for those that
// export (--stats too for those whose list has statistics).
class SiteCommand : public Command {
 public:
  bool TakeArgument(const std::vector<std::string>& args, std::size_t& i, std::string& error) override;
  std::string Check() const override;

 protected:
  explicit SiteCommand(bool exports, bool statistics = false) : m_output(statistics), m_exports(exports) {}
  // The export goes to standard output, or to the file (with "List Has Been Successfully Exported."
  // after it); "-" is standard output.
  int WriteExport(const std::string& text, CommandContext& context) const;

  sites::Site m_site = sites::Site::USA;
  std::optional<std::filesystem::path> m_export;
  ListOutput m_output;

 private:
  bool m_exports;
  bool m_siteGiven = false;
};

// Takes --NAME VALUE or --NAME=VALUE at args[i]: true when args[i] is that option, with `value` set,
// or `error` set when the value is missing.
bool TakeValue(const std::vector<std::string>& args, std::size_t& i, std::string_view name, std::string& value,
               std::string& error, bool& taken);
// --export FILE (or - for standard output) at args[i].
bool TakeExport(const std::vector<std::string>& args, std::size_t& i, std::optional<std::filesystem::path>& file,
                std::string& error);
int WriteExport(const std::string& text, const std::optional<std::filesystem::path>& file, CommandContext& context);

// Every command, in the order the usage lists them.
std::vector<std::unique_ptr<Command>> AllCommands();
std::unique_ptr<Command> MakeCategoriesCommand();
std::unique_ptr<Command> MakeKeywordsCommand();
std::unique_ptr<Command> MakeAuctionsCommand();
std::unique_ptr<Command> MakeHistoryCommand();
std::unique_ptr<Command> MakeQueryCommand();
std::unique_ptr<Command> MakeQueryNewCommand();
std::unique_ptr<Command> MakeQueryShowCommand();

}  // namespace gavelscope::cli
