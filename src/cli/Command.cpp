// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "cli/Command.h"

#include <ostream>

#include "base/ListControl.h"
#include "insights/Formats.h"

namespace gavelscope::cli {

bool TakeValue(const std::vector<std::string>& args, std::size_t& i, std::string_view name, std::string& value,
               std::string& error, bool& taken) {
  const std::string& arg = args[i];
  const std::string prefix = std::string(name) + "=";
  taken = arg == name || arg.starts_with(prefix);
  if (!taken) return false;
  if (arg.starts_with(prefix)) {
    value = arg.substr(prefix.size());
    return true;
  }
  if (i + 1 >= args.size()) {
    error = std::string(name) + " needs a value";
    return false;
  }
  value = args[++i];
  return true;
}

bool TakeExport(const std::vector<std::string>& args, std::size_t& i, std::optional<std::filesystem::path>& file,
                std::string& error) {
  std::string value;
  bool taken = false;
  if (!TakeValue(args, i, "--export", value, error, taken)) return taken;
  if (value.empty()) {
    error = "--export needs a file name, or - for standard output";
    return true;
  }
  file = value;
  return true;
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

bool ListOutput::TakeArgument(const std::vector<std::string>& args, std::size_t& i, std::string& error) {
  if (m_statistics && args[i] == "--stats") {
    m_stats = true;
    return true;
  }
  std::string value;
  bool taken = false;
  if (!TakeValue(args, i, "--format", value, error, taken)) return taken;
  if (value == "text") {
    m_format = OutputFormat::Text;
  } else if (value == "csv") {
    m_format = OutputFormat::Csv;
  } else if (value == "json") {
    m_format = OutputFormat::Json;
  } else {
    error = "--format is text, csv or json, not \"" + value + "\"";
  }
  m_formatGiven = true;
  return true;
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

bool SiteCommand::TakeArgument(const std::vector<std::string>& args, std::size_t& i, std::string& error) {
  std::string value;
  bool taken = false;
  if (TakeValue(args, i, "--site", value, error, taken)) {
    if (value != "usa" && value != "uk") {
      error = "--site is usa or uk, not \"" + value + "\"";
      return true;
    }
    m_site = value == "usa" ? sites::Site::USA : sites::Site::UK;
    m_siteGiven = true;
    return true;
  }
  if (taken) return true;
  return m_exports && (TakeExport(args, i, m_export, error) || m_output.TakeArgument(args, i, error));
}

std::string SiteCommand::Check() const {
  return m_siteGiven ? std::string() : std::string(Name()) + " needs --site usa|uk";
}

int SiteCommand::WriteExport(const std::string& text, CommandContext& context) const {
  return cli::WriteExport(text, m_export, context);
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
  return commands;
}

}  // namespace gavelscope::cli
