// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "cli/CliApp.h"

#include <stdlib.h>

#include <ostream>
#include <set>
#include <system_error>

#include "app/BrowserLauncher.h"
#include "app/HeadlessMainView.h"
#include "app/RunController.h"
#include "app/Startup.h"
#include "app/UserFolders.h"
#include "base/ListControl.h"
#include "base/UserMessages.h"
#include "query/QueryFile.h"

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
    "  keywords --site usa|uk [--export FILE | --item NAME]\n"
    "                                    the site's Top 100 keywords export, to stdout or FILE;\n"
    "                                    with --item, the keywords of the first category or\n"
    "                                    sub-category called NAME: keyword, tab, search link\n"
    "  auctions --site usa|uk [--export FILE]\n"
    "                                    the site's auction counts export, largest first,\n"
    "                                    to stdout or FILE\n"
    "  history --site usa|uk [--export FILE]\n"
    "                                    the site's hot item history export, sorted by bids,\n"
    "                                    to stdout or FILE\n"
    "  query FILE.sbqry [--export FILE]  runs a saved query and prints or writes its results\n"
    "  query-new [--site usa|uk] [--keywords TEXT] [--page-depth N] [--category NAME]...\n"
    "            [--bids-greater N | --bids-less N | --bids-range A B] (also --price-*, --days-*)\n"
    "            [--sort date|title|price|bids] [--descending] --output FILE.sbqry\n"
    "                                    saves a query as the query dialog would\n"
    "  query-show FILE.sbqry             prints a saved query, one field per line\n"
    "\n"
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

bool TakeValue(const std::vector<std::string>& args, std::size_t& i, const std::string& name, std::string& value,
               std::string& error) {
  const std::string& arg = args[i];
  if (arg.starts_with(name + "=")) {
    value = arg.substr(name.size() + 1);
    return true;
  }
  if (i + 1 >= args.size()) {
    error = name + " needs a value";
    return false;
  }
  value = args[++i];
  return true;
}

bool IsOption(const std::string& arg, const std::string& name) {
  return arg == name || arg.starts_with(name + "=");
}

bool ValidConnectTo(const std::string& mapping) {
  int colons = 0;
  for (char c : mapping) colons += c == ':' ? 1 : 0;
  return colons >= 3;
}

int PrintCategories(app::CRunController& controller, sites::Site site, std::stop_token stop, std::ostream& out) {
  sites::SiteCategories& categories = controller.Categories(site);
  if (!categories.ready.Wait(stop)) return kExitFailure;
  for (std::size_t i = 0; i < categories.arrCategoryNames.size(); ++i) {
    out << categories.arrCategoryNames[i] << '\t' << categories.arrCategoryLinks[i] << '\n';
  }
  out.flush();
  return out ? kExitOk : kExitFailure;
}

// The first item in tree order (each category, then its sub-categories) with the given text.
keywords::TreeItem FindItem(const keywords::CCategoryTree& tree, const std::string& text) {
  for (keywords::TreeItem root : tree.RootItems()) {
    if (tree.GetItemText(root) == text) return root;
    for (keywords::TreeItem child : tree.ChildItems(root)) {
      if (tree.GetItemText(child) == text) return child;
    }
  }
  return keywords::kNoItem;
}

// The export goes to stdout, or to the file, after which the user is told it is done.
int WriteExport(const std::string& text, const std::optional<std::filesystem::path>& file,
                base::IUserMessages& messages, std::ostream& out, std::ostream& err) {
  if (file && *file != "-") {
    const net::NetResult written = base::ExportToFile(*file, text, messages);
    if (!written) err << "Cannot write " << file->string() << ": " << written.error << '\n';
    return written ? kExitOk : kExitFailure;
  }
  out << text;
  out.flush();
  return out ? kExitOk : kExitFailure;
}

int PrintAuctions(app::CRunController& controller, const CliRequest& request, std::stop_token stop,
                  base::IUserMessages& messages, std::ostream& out, std::ostream& err) {
  const app::Load load = request.site == sites::Site::USA ? app::Load::AuctionsUSA : app::Load::AuctionsUK;
  if (!controller.LoadDone(load).Wait(stop)) return kExitFailure;
  return WriteExport(controller.AuctionList(request.site).ExportText(), request.exportFile, messages, out, err);
}

int PrintHistory(app::CRunController& controller, const CliRequest& request, std::stop_token stop,
                 base::IUserMessages& messages, std::ostream& out, std::ostream& err) {
  if (!controller.LoadDone(app::Load::HotItems).Wait(stop)) return kExitFailure;
  return WriteExport(controller.HotItemList(request.site).ExportText(), request.exportFile, messages, out, err);
}

int RunQuery(app::CRunController& controller, const query::QuerySpec& query, const CliRequest& request,
             std::stop_token stop, base::IUserMessages& messages, std::ostream& out, std::ostream& err) {
  // The names become links once the site's categories are known, as when the dialog starts a query.
  if (!controller.Categories(query.site).ready.Wait(stop)) return kExitFailure;
  controller.StartQuery(query);
  if (!controller.QueryEnded().Wait(stop)) return kExitFailure;
  return WriteExport(controller.QueryResults().ExportText(), request.exportFile, messages, out, err);
}

int PrintKeywords(app::CRunController& controller, const CliRequest& request, std::stop_token stop,
                  base::IUserMessages& messages, std::ostream& out, std::ostream& err) {
  const app::Load load = request.site == sites::Site::USA ? app::Load::KeywordsUSA : app::Load::KeywordsUK;
  if (!controller.LoadDone(load).Wait(stop)) return kExitFailure;
  keywords::CCategoryTree& tree = controller.Tree(request.site);
  if (request.item) {
    const keywords::TreeItem item = FindItem(tree, *request.item);
    if (item == keywords::kNoItem) {
      err << "gavelscope-cli: no category or sub-category called \"" << *request.item << "\"\n";
      return kExitFailure;
    }
    if (const auto array = tree.GetItemData(item)) {
      for (const keywords::KeywordRecordPtr& record : *array) {
        out << record->GetKeyword() << '\t' << record->GetSearchLink() << '\n';
      }
    }
    out.flush();
    return out ? kExitOk : kExitFailure;
  }
  return WriteExport(tree.ExportText(), request.exportFile, messages, out, err);
}

}  // namespace

std::optional<CliRequest> ParseCommandLine(const std::vector<std::string>& args, std::string& error) {
  static const std::set<std::string> kCommands{"categories", "keywords",  "auctions",  "history",
                                               "query",      "query-new", "query-show"};
  CliRequest request;
  bool siteGiven = false;
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& arg = args[i];
    const bool global = request.command.empty();
    std::string value;
    if (arg == "--help" || arg == "-h") {
      request.help = true;
    } else if (arg == "--version") {
      request.version = true;
    } else if (global && arg == "--sandbox") {
      request.sandbox = true;
    } else if (global && IsOption(arg, "--connect-to")) {
      if (!TakeValue(args, i, "--connect-to", value, error)) return std::nullopt;
      if (!ValidConnectTo(value)) {
        error = "--connect-to needs HOST:PORT:ADDR:PORT, not \"" + value + "\"";
        return std::nullopt;
      }
      request.connectTo.push_back(value);
    } else if (global && kCommands.contains(arg)) {
      request.command = arg;
    } else if (request.command == "query-new") {
      if (!ParseQueryOption(args, i, request.choices, error)) return std::nullopt;
    } else if ((request.command == "query" || request.command == "query-show") && !request.queryFile &&
               !arg.starts_with("-")) {
      request.queryFile = arg;
    } else if (!global && IsOption(arg, "--site")) {
      if (!TakeValue(args, i, "--site", value, error)) return std::nullopt;
      if (value != "usa" && value != "uk") {
        error = "--site is usa or uk, not \"" + value + "\"";
        return std::nullopt;
      }
      request.site = value == "usa" ? sites::Site::USA : sites::Site::UK;
      siteGiven = true;
    } else if (request.command != "categories" && request.command != "query-show" && IsOption(arg, "--export")) {
      if (!TakeValue(args, i, "--export", value, error)) return std::nullopt;
      if (value.empty()) {
        error = "--export needs a file name, or - for standard output";
        return std::nullopt;
      }
      request.exportFile = value;
    } else if (request.command == "keywords" && IsOption(arg, "--item")) {
      if (!TakeValue(args, i, "--item", value, error)) return std::nullopt;
      request.item = value;
    } else {
      error = (global && !arg.starts_with("-") ? "unknown command: " : "unknown option: ") + arg;
      return std::nullopt;
    }
  }
  if (request.help || request.version) return request;
  if (request.command.empty()) {
    error = "no command given";
    return std::nullopt;
  }
  const bool queryCommand = request.command.starts_with("query");
  if (!queryCommand && !siteGiven) {
    error = request.command + " needs --site usa|uk";
    return std::nullopt;
  }
  if ((request.command == "query" || request.command == "query-show") && !request.queryFile) {
    error = request.command + " needs a query file";
    return std::nullopt;
  }
  if (request.command == "query-new" && request.choices.output.empty()) {
    error = "query-new needs --output FILE.sbqry";
    return std::nullopt;
  }
  if (request.exportFile && request.item) {
    error = "--export and --item do not go together";
    return std::nullopt;
  }
  return request;
}

int RunCli(const std::vector<std::string>& args, const CliEnvironment& environment, std::ostream& out,
           std::ostream& err) {
  std::string error;
  const std::optional<CliRequest> request = ParseCommandLine(args, error);
  if (!request) {
    err << "gavelscope-cli: " << error << "\n\n" << kUsage;
    return kExitUsage;
  }
  if (request->help) {
    out << kUsage;
    return kExitOk;
  }
  if (request->version) {
    out << kVersion;
    return kExitOk;
  }

  if (request->command == "query-new") {
    const base::Outcome saved = query::SaveQueryFile(request->choices.output, request->choices.query);
    if (!saved) err << "Cannot Save To File : " << request->choices.output.string() << ": " << saved.error << '\n';
    return saved ? kExitOk : kExitFailure;
  }
  if (request->command == "query-show") {
    std::string description;
    const base::Outcome read = query::DescribeQueryFile(*request->queryFile, description);
    if (!read) {
      err << read.error << '\n';
      return kExitFailure;
    }
    out << description;
    out.flush();
    return out ? kExitOk : kExitFailure;
  }
  query::QuerySpec query;
  if (request->queryFile) {
    const base::Outcome loaded = query::LoadQueryFile(*request->queryFile, query);
    if (!loaded) {
      err << loaded.error << '\n';
      return kExitFailure;
    }
  }

  app::ControllerConfig config;
  config.profile = sites::CompiledProfile();
  config.net = environment.net;
  // Mappings given on the command line come first, so they win over the sandbox's.
  config.net.connectTo = request->connectTo;
  std::unique_ptr<standin::SandboxProcess> sandbox;
  if (request->sandbox) {
    sandbox = standin::SandboxProcess::Start(environment.sandbox, error);
    if (!sandbox) {
      err << "gavelscope-cli: cannot start the sandbox: " << error << '\n';
      return kExitFailure;
    }
    config.net.connectTo.insert(config.net.connectTo.end(), sandbox->connectTo().begin(), sandbox->connectTo().end());
  }

  StderrMessages messages(err);
  const std::stop_token stop = environment.stop;
  if (!app::ProbeConnectivity(config.profile, config.net, stop)) {
    if (stop.stop_requested()) return kExitFailure;
    messages.Show(base::UserMessage{base::text::kNoInternet, base::text::kApplicationName});
    return kExitFailure;
  }

  RunFolder folder;
  config.cacheFolder = folder.path();
  config.dateOrder = hotitems::DateOrderFromLocale();
  config.queryPollInterval = environment.queryPollInterval;
  app::HeadlessMainView view;
  app::CBrowserLauncher browser(messages);
  app::CRunController controller(config, view, messages, browser);
  controller.Start();
  int status = kExitFailure;
  if (request->command == "keywords") {
    status = PrintKeywords(controller, *request, stop, messages, out, err);
  } else if (request->command == "auctions") {
    status = PrintAuctions(controller, *request, stop, messages, out, err);
  } else if (request->command == "history") {
    status = PrintHistory(controller, *request, stop, messages, out, err);
  } else if (request->command == "query") {
    status = RunQuery(controller, query, *request, stop, messages, out, err);
  } else {
    status = PrintCategories(controller, request->site, stop, out);
  }
  controller.Shutdown();
  return status;
}

}  // namespace gavelscope::cli
