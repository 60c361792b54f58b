// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "cli/Command.h"

#include <algorithm>
#include <array>
#include <ostream>

#include <CLI/CLI.hpp>

#include "base/ListControl.h"
#include "insights/Formats.h"

namespace gavelscope::cli {

CLI::Option* AddChoice(CLI::App& command, const std::string& name, const std::vector<std::string>& words,
                       std::function<void(std::size_t)> chosen, const std::string& description) {
  std::string choices;
  for (const std::string& word : words) choices += (choices.empty() ? "" : "|") + word;
  return command
      .add_option_function<std::string>(
          name,
          [words, chosen = std::move(chosen)](const std::string& word) {
            chosen(static_cast<std::size_t>(std::find(words.begin(), words.end(), word) - words.begin()));
          },
          description)
      ->type_name(choices)
      ->check(CLI::Validator(
          [words, choices](std::string& word) {
            return std::find(words.begin(), words.end(), word) != words.end() ? std::string()
                                                                              : "\"" + word + "\" is not " + choices;
          },
          ""));
}

CLI::Option* AddSite(CLI::App& command, sites::Site& site, const std::string& description) {
  return AddChoice(
      command, "--site", {"usa", "uk"},
      [&site](std::size_t index) { site = index == 0 ? sites::Site::USA : sites::Site::UK; }, description);
}

CLI::Option* AddExport(CLI::App& command, std::optional<std::filesystem::path>& file) {
  return command
      .add_option_function<std::string>(
          "--export", [&file](const std::string& name) { file = name; },
          "write to FILE instead of standard output, and say so on standard error; - is standard output")
      ->type_name("FILE")
      ->check(CLI::Validator(
          [](std::string& name) {
            return name.empty() ? std::string("needs a file name, or - for standard output") : std::string();
          },
          ""));
}

void AddQueryFile(CLI::App& command, std::vector<std::string>& files) {
  command.add_option("file", files, "the query file, as the query dialog or query-new saves it")
      ->type_name("FILE.sbqry");
  command.final_callback([&command, &files] {
    if (files.empty()) throw CLI::ValidationError(command.get_name() + " needs a query file");
    if (files.size() > 1) {
      throw CLI::ValidationError(command.get_name() + " takes one query file, not " + std::to_string(files.size()));
    }
  });
}

int WriteExport(const std::string& text, const std::optional<std::filesystem::path>& file, CommandContext& context) {
  if (file && *file != "-") {
    const base::Outcome written = base::ExportToFile(*file, text, context.messages);
    if (!written) context.err << "Cannot write " << file->string() << ": " << written.error << '\n';
    return written ? kExitOk : kExitFailure;
  }
  context.out << text;
  context.out.flush();
  return context.out ? kExitOk : kExitFailure;
}

CLI::Option* ListOutput::AddTo(CLI::App& command) {
  CLI::Option* format = AddChoice(
      command, "--format", {"text", "csv", "json"},
      [this](std::size_t index) {
        m_format = std::array{OutputFormat::Text, OutputFormat::Csv, OutputFormat::Json}.at(index);
      },
      "text, the list's own export (the default), or its rows as named columns in CSV or JSON, in UTF-8");
  if (m_statistics) {
    command.add_flag("--stats", m_stats,
                     "write the list's price and bid statistics instead of its rows, as text, CSV or JSON by --format");
  }
  return format;
}

std::string ListOutput::Render(const std::function<std::string()>& text,
                               const std::function<insights::ListTable()>& table) const {
  switch (m_format) {
    case OutputFormat::Csv:
      return insights::CsvOf(table());
    case OutputFormat::Json:
      return insights::JsonOf(table());
    case OutputFormat::Text:
      break;
  }
  return text();
}

std::string ListOutput::RenderStatistics(const insights::ListStatistics& statistics) const {
  switch (m_format) {
    case OutputFormat::Csv:
      return insights::StatisticsCsv(statistics);
    case OutputFormat::Json:
      return insights::StatisticsJson(statistics);
    case OutputFormat::Text:
      break;
  }
  return insights::StatisticsText(statistics);
}

CLI::App* SiteCommand::AddSiteCommand(CLI::App& program, const std::string& name, const std::string& description) {
  CLI::App* command = program.add_subcommand(name, description);
  AddSite(*command, m_site, "the USA site (dollars) or the UK site (pounds)")->required();
  if (m_exports) {
    AddExport(*command, m_export);
    m_output.AddTo(*command);
  }
  return command;
}

int SiteCommand::WriteExport(const std::string& text, CommandContext& context) const {
  return cli::WriteExport(text, m_export, context);
}

void StoreOptions::AddTo(CLI::App& command, bool format) {
  command.add_option_function<std::string>(
             "--db", [this](const std::string& name) { m_file = name; },
             "the research store to use instead of $XDG_DATA_HOME/gavelscope/research.sqlite")
      ->type_name("FILE")
      ->check(CLI::Validator(
          [](std::string& name) { return name.empty() ? std::string("needs a file name") : std::string(); }, ""));
  if (!format) return;
  AddChoice(
      command, "--format", {"text", "csv", "json"},
      [this](std::size_t index) {
        m_format = std::array{store::Format::Text, store::Format::Csv, store::Format::Json}.at(index);
      },
      "text to read (the default), or a CSV table or one JSON object, in UTF-8");
}

std::filesystem::path StoreOptions::file() const {
  return m_file.value_or(store::DefaultStorePath());
}

std::unique_ptr<store::ResearchStore> StoreOptions::OpenExisting(std::ostream& err) const {
  base::Outcome opened;
  std::unique_ptr<store::ResearchStore> research = store::ResearchStore::Open(file(), {.create = false}, opened);
  if (!research) err << opened.error << '\n';
  return research;
}

std::vector<std::unique_ptr<Command>> AllCommands() {
  std::vector<std::unique_ptr<Command>> commands;
  commands.push_back(MakeCategoriesCommand());
  commands.push_back(MakeKeywordsCommand());
  commands.push_back(MakeAuctionsCommand());
  commands.push_back(MakeHistoryCommand());
  commands.push_back(MakeQueryCommand());
  commands.push_back(MakeQueryNewCommand());
  commands.push_back(MakeQueryShowCommand());
  commands.push_back(MakeRecordCommand());
  commands.push_back(MakeSnapshotsCommand());
  commands.push_back(MakeTrendsCommand());
  commands.push_back(MakeForgetCommand());
  return commands;
}

}  // namespace gavelscope::cli
