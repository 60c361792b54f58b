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
#include "keywords/CategoryTree.h"
#include "sites/SiteProfile.h"
#include "store/Render.h"
#include "store/ResearchStore.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

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
  // Adds the command to the program's command line: its name, a sentence on what it does, its
  // arguments and options bound to the command's own values, and the checks they need together
  // (which throw CLI::ValidationError). Returns the command's own part of the command line.
  virtual CLI::App* AddTo(CLI::App& program) = 0;
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
  // Adds --format (and --stats where the list has statistics) to a command; returns --format.
  CLI::Option* AddTo(CLI::App& command);
  bool stats() const { return m_stats; }
  // The list in the chosen format: its own text export, or its table as CSV or JSON. Each is
  // built only when chosen.
  std::string Render(const std::function<std::string()>& text, const std::function<insights::ListTable()>& table) const;
  std::string RenderStatistics(const insights::ListStatistics& statistics) const;

 private:
  const bool m_statistics;
  OutputFormat m_format = OutputFormat::Text;
  bool m_stats = false;
};

// A command over one site's view: --site usa|uk, and --export FILE and --format for those that
// export (--stats too for those whose list has statistics).
class SiteCommand : public Command {
 protected:
  explicit SiteCommand(bool exports, bool statistics = false) : m_output(statistics), m_exports(exports) {}
  // Adds the command with its site and output options.
  CLI::App* AddSiteCommand(CLI::App& program, const std::string& name, const std::string& description);
  // The export goes to standard output, or to the file (with "List Has Been Successfully Exported."
  // after it); "-" is standard output.
  int WriteExport(const std::string& text, CommandContext& context) const;

  sites::Site m_site = sites::Site::USA;
  std::optional<std::filesystem::path> m_export;
  ListOutput m_output;

 private:
  bool m_exports;
};

// --db FILE, and --format text|csv|json for the commands that print the store's answers.
class StoreOptions {
 public:
  void AddTo(CLI::App& command, bool format);
  // --db, or the store every program shares.
  std::filesystem::path file() const;
  store::Format format() const { return m_format; }
  // The store as it is: a missing one is a failure, so that reading never leaves an empty file.
  // Null after saying why on `err`.
  std::unique_ptr<store::ResearchStore> OpenExisting(std::ostream& err) const;

 private:
  std::optional<std::filesystem::path> m_file;
  store::Format m_format = store::Format::Text;
};

// --NAME WORD, where WORD is one of `words`: `chosen` gets its index. Any other word is a usage error
// that names them.
CLI::Option* AddChoice(CLI::App& command, const std::string& name, const std::vector<std::string>& words,
                       std::function<void(std::size_t)> chosen, const std::string& description);
// --site usa|uk.
CLI::Option* AddSite(CLI::App& command, sites::Site& site, const std::string& description);
// --export FILE (or - for standard output).
CLI::Option* AddExport(CLI::App& command, std::optional<std::filesystem::path>& file);
// The one query file of a command. Every word no option takes lands here, so that a second one is
// named as such, not as a stray word; once everything is read, anything but one is a usage error.
void AddQueryFile(CLI::App& command, std::vector<std::string>& files);
int WriteExport(const std::string& text, const std::optional<std::filesystem::path>& file, CommandContext& context);
// The item `keywords --item NAME` shows: the first in tree order (each category, then its
// sub-categories) called NAME, or else the first whose name differs from NAME only in the case of
// ASCII letters; kNoItem when there is none.
keywords::TreeItem FindNamedItem(const keywords::CCategoryTree& tree, const std::string& name);

// Every command, in the order the help lists them.
std::vector<std::unique_ptr<Command>> AllCommands();
std::unique_ptr<Command> MakeCategoriesCommand();
std::unique_ptr<Command> MakeKeywordsCommand();
std::unique_ptr<Command> MakeAuctionsCommand();
std::unique_ptr<Command> MakeHistoryCommand();
std::unique_ptr<Command> MakeQueryCommand();
std::unique_ptr<Command> MakeQueryNewCommand();
std::unique_ptr<Command> MakeQueryShowCommand();
std::unique_ptr<Command> MakeRecordCommand();
std::unique_ptr<Command> MakeSnapshotsCommand();
std::unique_ptr<Command> MakeTrendsCommand();
std::unique_ptr<Command> MakeForgetCommand();

}  // namespace gavelscope::cli
