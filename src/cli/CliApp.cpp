// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "cli/CliApp.h"

#include <stdlib.h>

#include <algorithm>
#include <filesystem>
#include <ostream>
#include <system_error>

#include <CLI/CLI.hpp>

#include "app/BrowserLauncher.h"
#include "app/HeadlessMainView.h"
#include "app/ProgramSetup.h"
#include "app/UserFolders.h"

namespace gavelscope::cli {

namespace {

constexpr const char* kDescription =
    "Runs the Gavelscope start-up without a window and prints what one view would show.";
constexpr const char* kNotes =
    "'gavelscope-cli COMMAND --help' describes a command and its options.\n"
    "Exit status: 0 success; 1 a failure, reported on standard error; 2 a usage error; 130 or 143 when "
    "stopped by Ctrl-C or SIGTERM, as cleanly as at the end of a command.";

constexpr const char* kVersion = "gavelscope-cli 2.0";

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

}  // namespace

int RunCli(const std::vector<std::string>& args, const CliEnvironment& environment, std::ostream& out,
           std::ostream& err) {
  app::SharedOptions shared;
  CLI::App commandLine(kDescription, "gavelscope-cli");
  app::AddSharedOptions(commandLine, kVersion, shared);
  std::vector<std::unique_ptr<Command>> commands = AllCommands();
  std::vector<CLI::App*> parts;
  for (const std::unique_ptr<Command>& command : commands) parts.push_back(command->AddTo(commandLine));
  commandLine.footer(kNotes);
  if (const std::optional<int> ended = app::ParseCommandLine(commandLine, args, out, err)) return *ended;
  Command& command = *commands[static_cast<std::size_t>(
      std::find(parts.begin(), parts.end(), commandLine.get_subcommands().front()) - parts.begin())];
  StderrMessages messages(err);
  if (!command.NeedsRun()) {
    CommandContext context{nullptr, messages, out, err, environment.stop};
    return command.Run(context);
  }
  if (const int prepared = command.Prepare(err); prepared != kExitOk) return prepared;

  app::CProgramSetup setup;
  if (std::string error; !setup.Start(shared, environment.sandbox, environment.net, error)) {
    err << "gavelscope-cli: cannot start the sandbox: " << error << '\n';
    return kExitFailure;
  }
  const std::stop_token stop = environment.stop;
  if (!setup.ProbeConnectivity(stop)) {
    if (stop.stop_requested()) return kExitFailure;
    messages.Show(base::UserMessage{base::text::kNoInternet, base::text::kApplicationName, base::MessageButtons::Ok,
                                    true, base::MessageKind::Error});
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
