// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "app/ProgramSetup.h"

#include <algorithm>
#include <ostream>

#include <CLI/CLI.hpp>

#include "app/Startup.h"
#include "hotitems/ItemCompare.h"

namespace gavelscope::app {

namespace {

constexpr std::size_t kHelpWidth = 80;
constexpr std::size_t kWidestNameColumn = 36;

// curl's form: three colons at least (an IPv6 address brings more).
bool IsConnectToMapping(std::string_view mapping) {
  return std::count(mapping.begin(), mapping.end(), ':') >= 3;
}

// The words of `text`; a line break in it is a word of its own.
std::vector<std::string> Words(std::string_view text) {
  std::vector<std::string> words;
  std::size_t at = 0;
  while ((at = text.find_first_not_of(' ', at)) != std::string_view::npos) {
    const std::size_t end = text[at] == '\n' ? at + 1 : std::min(text.find_first_of(" \n", at), text.size());
    words.emplace_back(text.substr(at, end - at));
    at = end;
  }
  return words;
}

// `words` laid out from `column` on in lines of at most `width` columns (a longer word stands
// alone), every line after the first indented by `indent`; a word "\n" ends its line.
std::string Lay(const std::vector<std::string>& words, std::size_t column, std::size_t indent, std::size_t width) {
  std::string out;
  bool lineStart = true;
  for (const std::string& word : words) {
    if (word == "\n" || (!lineStart && column + 1 + word.size() > width)) {
      out += '\n' + std::string(indent, ' ');
      column = indent;
      lineStart = true;
      if (word == "\n") continue;
    }
    if (!lineStart) {
      out += ' ';
      ++column;
    }
    out += word;
    column += word.size();
    lineStart = false;
  }
  return out;
}

std::string Wrap(std::string_view text, std::size_t column = 0, std::size_t indent = 0) {
  return Lay(Words(text), column, indent, kHelpWidth);
}

// "-h, --help", "--site usa|uk", "--bids-range A B": how the help names an option.
std::string OptionName(const CLI::Option& option) {
  std::string name;
  for (const std::string& shortName : option.get_snames()) name += "-" + shortName + ", ";
  for (const std::string& longName : option.get_lnames()) name += "--" + longName + ", ";
  name.resize(name.size() - 2);
  if (!option.get_type_name().empty()) name += " " + option.get_type_name();
  return name;
}

// An option that gathers every time it is given, rather than keeping the last.
bool Repeatable(const CLI::Option& option) {
  return option.get_multi_option_policy() == CLI::MultiOptionPolicy::TakeAll;
}

// Name-and-description rows, the descriptions lined up after the widest name (up to a limit; a
// wider name has its description on the next line).
std::string Rows(const std::vector<std::pair<std::string, std::string>>& rows) {
  std::size_t column = 0;
  for (const auto& row : rows) column = std::max(column, row.first.size() + 4);
  column = std::min(column, kWidestNameColumn);
  std::string out;
  for (const auto& [name, description] : rows) {
    std::string line = "  " + name;
    if (line.size() + 2 > column) {
      line += '\n';
      line.append(column, ' ');
    } else {
      line.append(column - line.size(), ' ');
    }
    out += line + Wrap(description, column, column) + '\n';
  }
  return out;
}

// Both programs' help: the usage line built from the options themselves (so it cannot disagree
// with what is parsed), what the program or command does, its options, its commands and notes.
class HelpLayout : public CLI::FormatterBase {
 public:
  std::string make_help(const CLI::App* app, std::string name, CLI::AppFormatMode) const override {
    const auto helpOrVersion = [app](const CLI::Option* option) {
      return option == app->get_help_ptr() || option == app->get_version_ptr();
    };
    const std::vector<const CLI::Option*> positionals =
        app->get_options([](const CLI::Option* option) { return option->get_positional(); });
    const std::vector<const CLI::Option*> options =
        app->get_options([](const CLI::Option* option) { return option->nonpositional(); });
    const std::vector<const CLI::App*> commands = app->get_subcommands([](const CLI::App*) { return true; });

    std::vector<std::string> usage{"Usage:", name};
    for (const CLI::Option* positional : positionals) usage.push_back(positional->get_type_name());
    const auto optional = std::count_if(options.begin(), options.end(), [&](const CLI::Option* option) {
      return !helpOrVersion(option) && !option->get_required();
    });
    // A command of many options lists them below only.
    bool summarised = false;
    for (const CLI::Option* option : options) {
      if (helpOrVersion(option)) continue;
      if (option->get_required()) {
        usage.push_back(OptionName(*option));
      } else if (optional <= 4) {
        usage.push_back("[" + OptionName(*option) + "]" + (Repeatable(*option) ? "..." : ""));
      } else if (!summarised) {
        usage.push_back("[OPTIONS]");
        summarised = true;
      }
    }
    if (!commands.empty()) usage.emplace_back("COMMAND [OPTIONS]");
    std::string out = Lay(usage, 0, name.size() + 8, kHelpWidth) + "\n\n" + Wrap(app->get_description()) + '\n';

    std::vector<std::pair<std::string, std::string>> rows;
    for (const CLI::Option* positional : positionals)
      rows.emplace_back(positional->get_type_name(), positional->get_description());
    for (const CLI::Option* option : options) rows.emplace_back(OptionName(*option), option->get_description());
    out += std::string(commands.empty() ? "\nOptions:\n" : "\nOptions, before or after the command:\n") + Rows(rows);
    if (!commands.empty()) {
      rows.clear();
      for (const CLI::App* command : commands) rows.emplace_back(command->get_name(), command->get_description());
      out += "\nCommands:\n" + Rows(rows);
    }
    if (const CLI::App* program = app->get_parent()) {
      std::string shared;
      for (const CLI::Option* option : program->get_options()) {
        if (option->nonpositional() && option != program->get_help_ptr() && option != program->get_version_ptr()) {
          shared += (shared.empty() ? "" : ", ") + OptionName(*option);
        }
      }
      out += "\n" +
             Wrap("The program's own options (" + shared + ") go before or after the command; see '" +
                  program->get_name() + " --help'.") +
             '\n';
    }
    // A command takes its program's notes with its other settings; they are the program's help's.
    const bool ownFooter = app->get_parent() == nullptr || app->get_footer() != app->get_parent()->get_footer();
    if (!app->get_footer().empty() && ownFooter) out += "\n" + Wrap(app->get_footer()) + '\n';
    return out;
  }
};

// The options a usage error leaves over: unknown options, and words no argument takes.
std::string Leftover(const std::string& word, bool commandGiven) {
  if (word.size() > 1 && word.starts_with("-")) return "unknown option: " + word.substr(0, word.find('='));
  return (commandGiven ? "unexpected argument: " : "unknown command: ") + word;
}

// What is wrong, in the program's words where CLI11's would leave the reader guessing.
std::string WhatIsWrong(const CLI::ParseError& error, CLI::App& commandLine) {
  const std::string what = error.what();
  // "--output: 1 required FILE missing" and "--bids-range: At least 2 required but received 1":
  // the option was given too few values.
  if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) {
    const std::string name = what.substr(0, what.find(':'));
    const std::vector<CLI::App*> commands = commandLine.get_subcommands();
    const CLI::Option* option = nullptr;
    if (!commands.empty()) option = commands.front()->get_option_no_throw(name);
    if (option == nullptr) option = commandLine.get_option_no_throw(name);
    if (option != nullptr && option->get_type_size() != 0) {
      const int values = option->get_items_expected_min();
      return name + ": needs " + (values > 1 ? std::to_string(values) + " values" : "a value") + " (" +
             option->get_type_name() + ")";
    }
  }
  return what;
}

// Whether --help was read before parsing stopped, for the program or its command.
bool HelpAsked(CLI::App& commandLine) {
  std::vector<CLI::App*> parts = commandLine.get_subcommands();
  parts.push_back(&commandLine);
  return std::any_of(parts.begin(), parts.end(), [](CLI::App* part) {
    return part->get_help_ptr() != nullptr && part->get_help_ptr()->count() > 0;
  });
}

}  // namespace

void AddSharedOptions(CLI::App& commandLine, const std::string& version, SharedOptions& options) {
  commandLine.formatter(std::make_shared<HelpLayout>());
  // A command's options are read by the command, the rest by the program, wherever they stand.
  commandLine.fallthrough();
  // Leftover words are named in the program's own words once everything else is read.
  commandLine.allow_extras();
  commandLine.option_defaults()->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
  commandLine.set_help_flag("-h,--help", "show this text");
  commandLine.set_version_flag("--version", version, "show the version");
  commandLine
      .add_option("--connect-to", options.connectTo,
                  "send connections meant for HOST:PORT to ADDR:PORT (URLs and Host headers stay as they are); "
                  "repeatable")
      ->type_name("HOST:PORT:ADDR:PORT")
      ->expected(1)
      ->allow_extra_args(false)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
      ->check(CLI::Validator(
          [](std::string& mapping) {
            return IsConnectToMapping(mapping) ? std::string() : "\"" + mapping + "\" is not HOST:PORT:ADDR:PORT";
          },
          ""));
  commandLine.add_flag("--sandbox", options.sandbox, "start the bundled stand-in sites and use them");
  commandLine.parse_complete_callback([&commandLine] {
    const std::vector<std::string> leftovers = commandLine.remaining(true);
    const bool hasCommands = !commandLine.get_subcommands([](const CLI::App*) { return true; }).empty();
    const bool commandGiven = !commandLine.get_subcommands().empty();
    if (!leftovers.empty()) throw CLI::ValidationError(Leftover(leftovers.front(), commandGiven || !hasCommands));
    if (hasCommands && !commandGiven) throw CLI::ValidationError("no command given");
  });
}

std::optional<int> ParseCommandLine(CLI::App& commandLine, const std::vector<std::string>& args, std::ostream& out,
                                    std::ostream& err) {
  try {
    // CLI11 reads its words from the back.
    commandLine.parse(std::vector<std::string>(args.rbegin(), args.rend()));
    return std::nullopt;
  } catch (const CLI::CallForHelp&) {
    out << commandLine.help();
  } catch (const CLI::CallForVersion& version) {
    out << version.what() << '\n';
  } catch (const CLI::ParseError& error) {
    // CLI11 checks values before it looks for --help; asking for help is never a usage error.
    if (HelpAsked(commandLine)) {
      out << commandLine.help();
      out.flush();
      return 0;
    }
    const std::string& program = commandLine.get_name();
    const std::vector<CLI::App*> commands = commandLine.get_subcommands();
    const bool hasCommands = !commandLine.get_subcommands([](const CLI::App*) { return true; }).empty();
    err << program << ": " << WhatIsWrong(error, commandLine) << "\nRun '" << program;
    if (!commands.empty()) {
      err << ' ' << commands.front()->get_name() << " --help'";
    } else {
      err << " --help'" << (hasCommands ? " (or '" + program + " COMMAND --help')" : "");
    }
    err << " for more information.\n";
    return 2;
  }
  out.flush();
  return 0;
}

std::filesystem::path SandboxScriptFor(const std::filesystem::path& program) {
  const std::filesystem::path folder = program.parent_path();
  for (const std::filesystem::path& candidate :
       {folder / ".." / "share" / "gavelscope" / "sandbox" / "sandbox.py", folder / "sandbox" / "sandbox.py",
        folder / ".." / "sandbox" / "sandbox.py"}) {
    std::error_code missing;
    if (std::filesystem::is_regular_file(candidate, missing)) return candidate.lexically_normal();
  }
  return {};
}

bool CProgramSetup::Start(const SharedOptions& options, const standin::SandboxOptions& sandbox, net::NetOptions net,
                          std::string& error) {
  m_config.profile = sites::CompiledProfile();
  m_config.net = std::move(net);
  m_config.net.connectTo = options.connectTo;
  m_config.dateOrder = hotitems::DateOrderFromLocale();
  if (!options.sandbox) return true;
  if (sandbox.script.empty()) {
    error = "no sandbox was installed with this program";
    return false;
  }
  m_sandbox = standin::SandboxProcess::Start(sandbox, error);
  if (!m_sandbox) return false;
  m_config.net.connectTo.insert(m_config.net.connectTo.end(), m_sandbox->connectTo().begin(),
                                m_sandbox->connectTo().end());
  return true;
}

ControllerConfig CProgramSetup::Config(std::filesystem::path cacheFolder) const {
  ControllerConfig config = m_config;
  config.cacheFolder = std::move(cacheFolder);
  return config;
}

base::Outcome CProgramSetup::ProbeConnectivity(std::stop_token stop) const {
  return app::ProbeConnectivity(m_config.profile, m_config.net, std::move(stop));
}

}  // namespace gavelscope::app
