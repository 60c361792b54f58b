// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "cli/CliApp.h"

#include <stdlib.h>

#include <algorithm>
#include <filesystem>
#include <ostream>
#include <system_error>

#include "app/BrowserLauncher.h"
#include "app/HeadlessMainView.h"
#include "app/ProgramSetup.h"
#include "app/UserFolders.h"

namespace gavelscope::cli {

namespace {

constexpr const char* kUsage =
    "Usage: gavelscope-cli [--connect-to HOST:PORT:ADDR:PORT]... [--sandbox] COMMAND [OPTIONS]\n"
    "\n"
    "Runs the Gavelscope start-up without a window and prints what one view would show.\n"
    "\n"
    "Options:\n"
    "  --connect-to HOST:PORT:ADDR:PORT  send connections meant for HOST:PORT to ADDR:PORT\n"
    "                                    (URLs and Host headers stay as they are); repeatable\n"
    "  --sandbox                         start the bundled stand-in sites and use them\n"
    "  --help                            show this text\n"
    "  --version                         show the version\n"
    "\n"
    "Commands:\n"
    "  categories --site usa|uk          the top-level categories of a site: name, tab, link\n"
    "  keywords --site usa|uk [--export FILE] [--format F] | --item NAME\n"
    "                                    the site's Top 100 keywords export, to stdout or FILE;\n"
    "                                    with --item, the keywords of the first category or\n"
    "                                    sub-category called NAME: keyword, tab, search link\n"
    "  auctions --site usa|uk [--export FILE] [--format F]\n"
    "                                    the site's auction counts export, largest first,\n"
    "                                    to stdout or FILE\n"
    "  history --site usa|uk [--export FILE] [--format F] [--stats]\n"
    "                                    the site's hot item history export, sorted by bids,\n"
    "                                    to stdout or FILE\n"
    "  query FILE.sbqry [--export FILE] [--format F] [--stats]\n"
    "                                    runs a saved query and prints or writes its results\n"
    "  query-new [--site usa|uk] [--keywords TEXT] [--page-depth N] [--category NAME]...\n"
    "            [--bids-greater N | --bids-less N | --bids-range A B] (also --price-*, --days-*)\n"
    "            [--sort date|title|price|bids] [--descending] --output FILE.sbqry\n"
    "                                    saves a query as the query dialog would\n"
    "  query-show FILE.sbqry             prints a saved query, one field per line\n"
    "\n"
    "--format text|csv|json: text is the list's own export (the default); csv and json give\n"
    "its rows as named columns in UTF-8. --stats writes the list's price and bid statistics\n"
    "instead of its rows, as text, csv or json by --format.\n"
    "--export - writes to standard output. Ctrl-C or SIGTERM stops a command cleanly\n"
    "(exit 130 or 143).\n";

constexpr const char* kVersion = "gavelscope-cli 2.0\n";

// The CLI tells the user what the window would put in a message box, on stderr.
class StderrMessages : public base::IUserMessages {
 public:
  explicit StderrMessages(std::ostream& err) : m_err(err) {}
  base::MessageReply Show(const base::UserMessage& message) override {
    m_err << message.text << '\n';
    return message.buttons == base::MessageButtons::YesNo ? base::MessageReply::Yes : base::MessageReply::Ok;
  }

 private:
  std::ostream& m_err;
};

// A working folder of this run's own, so that the CLI never removes files a running window uses.
class RunFolder {
 public:
  RunFolder() {
    std::string pattern = (app::CacheFolder() / "cli-XXXXXX").string();
    if (mkdtemp(pattern.data()) != nullptr) m_path = pattern;
  }
  ~RunFolder() {
    std::error_code ignored;
    if (!m_path.empty()) std::filesystem::remove_all(m_path, ignored);
  }
  const std::filesystem::path& path() const { return m_path; }

 private:
  std::filesystem::path m_path;
};

// The command line: global options (--help and --version anywhere; the shared ones before the
// command), the command's name, then its own arguments.
struct Parsed {
  app::SharedOptions shared;
  bool help = false;
  bool version = false;
  std::unique_ptr<Command> command;
};

bool Parse(const std::vector<std::string>& args, Parsed& parsed, std::string& error) {
  std::vector<std::unique_ptr<Command>> commands = AllCommands();
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& arg = args[i];
    if (arg == "--help" || arg == "-h") {
      parsed.help = true;
      continue;
    }
    if (arg == "--version") {
      parsed.version = true;
      continue;
    }
    if (!parsed.command) {
      if (app::TakeSharedOption(args, i, parsed.shared, error)) {
        if (!error.empty()) return false;
        continue;
      }
      const auto named =
          std::find_if(commands.begin(), commands.end(), [&](const auto& c) { return c->Name() == arg; });
      if (named == commands.end()) {
        error = (arg.starts_with("-") ? "unknown option: " : "unknown command: ") + arg;
        return false;
      }
      parsed.command = std::move(*named);
      continue;
    }
    if (!parsed.command->TakeArgument(args, i, error)) error = "unknown option: " + arg;
    if (!error.empty()) return false;
  }
  if (parsed.help || parsed.version) return true;
  if (!parsed.command) {
    error = "no command given";
    return false;
  }
  error = parsed.command->Check();
  return error.empty();
}

}  // namespace

int RunCli(const std::vector<std::string>& args, const CliEnvironment& environment, std::ostream& out,
           std::ostream& err) {
  Parsed parsed;
  std::string error;
  if (!Parse(args, parsed, error)) {
    err << "gavelscope-cli: " << error << "\n\n" << kUsage;
    return kExitUsage;
  }
  if (parsed.help) {
    out << kUsage;
    return kExitOk;
  }
  if (parsed.version) {
    out << kVersion;
    return kExitOk;
  }
  Command& command = *parsed.command;
  StderrMessages messages(err);
  if (!command.NeedsRun()) {
    CommandContext context{nullptr, messages, out, err, environment.stop};
    return command.Run(context);
  }
  if (const int prepared = command.Prepare(err); prepared != kExitOk) return prepared;

  app::CProgramSetup setup;
  if (!setup.Start(parsed.shared, environment.sandbox, environment.net, error)) {
    err << "gavelscope-cli: cannot start the sandbox: " << error << '\n';
    return kExitFailure;
  }
  const std::stop_token stop = environment.stop;
  if (!setup.ProbeConnectivity(stop)) {
    if (stop.stop_requested()) return kExitFailure;
    messages.Show(base::UserMessage{base::text::kNoInternet, base::text::kApplicationName, base::MessageButtons::Ok, true,
                                   base::MessageKind::Error});
    return kExitFailure;
  }
  RunFolder folder;
  app::ControllerConfig config = setup.Config(folder.path());
  config.queryPollInterval = environment.queryPollInterval;
  config.queryEndsWithLastJob = true;
  app::HeadlessMainView view;
  app::CBrowserLauncher browser(messages);
  app::CRunController controller(config, view, messages, browser);
  controller.Start();
  CommandContext context{&controller, messages, out, err, stop};
  const int status = command.Run(context);
  controller.Shutdown();
  return status;
}

}  // namespace gavelscope::cli
