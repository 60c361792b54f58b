// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include <charconv>
#include <ostream>

#include <CLI/CLI.hpp>

#include "cli/Command.h"

namespace gavelscope::cli {

namespace {

// --NAME N with N a whole number of at least 1: a count of nothing would be a mistake, not a request.
CLI::Option* AddCount(CLI::App& command, const std::string& name, std::optional<std::int64_t>& count,
                      const std::string& description) {
  return command
      .add_option_function<std::string>(
          name, [&count](const std::string& text) { count = std::stoll(text); }, description)
      ->type_name("N")
      ->check(CLI::Validator(
          [](std::string& text) {
            std::int64_t value = 0;
            const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
            return error == std::errc() && end == text.data() + text.size() && value >= 1
                       ? std::string()
                       : "\"" + text + "\" is not a whole number of at least 1";
          },
          ""));
}

// trends auctions|keywords|query ...: what changed between the snapshots of the research store.
// The options belong to `trends` itself, so that they may stand before or after the kind.
class TrendsCommand : public Command {
 public:
  CLI::App* AddTo(CLI::App& program) override {
    CLI::App* command = program.add_subcommand(
        "trends", "Prints what changed between the research store's snapshots of the lists.");
    m_auctions = command->add_subcommand(
        "auctions", "Each sub-category's auction count in the first and the last snapshot, largest growth first.");
    m_keywords = command->add_subcommand(
        "keywords", "The Top 100 keywords that entered, left or moved between the last two snapshots.");
    m_query = command->add_subcommand(
        "query", "Every recording of a query, by its file's name, and the new items of the last one.");
    m_query->add_option("name", m_name, "the query file's name, as it was recorded")->type_name("NAME.sbqry");
    AddSite(*command, m_site, "the site whose snapshots are compared (auctions and keywords)");
    AddCount(*command, "--last", m_last, "compare the first and the last of the site's last N snapshots (auctions)");
    AddCount(*command, "--top", m_top, "print only the K largest changes (auctions)")->type_name("K");
    m_store.AddTo(*command, /*format=*/true);
    command->final_callback([this, command] { Check(*command); });
    return command;
  }

  bool NeedsRun() const override { return false; }

  int Run(CommandContext& context) override {
    const auto research = m_store.OpenExisting(context.err);
    if (!research) return kExitFailure;
    base::Outcome answered;
    std::string text;
    if (m_kind == m_auctions) {
      store::AuctionTrend trend;
      answered = research->TrendsAuctions(m_site, m_last, m_top, trend);
      text = store::Render(trend, m_store.format());
    } else if (m_kind == m_keywords) {
      store::KeywordTrend trend;
      answered = research->TrendsKeywords(m_site, trend);
      text = store::Render(trend, m_store.format());
    } else {
      store::QueryTrend trend;
      answered = research->TrendsQuery(m_name, trend);
      text = store::Render(trend, m_store.format());
    }
    if (!answered) {
      context.err << answered.error << '\n';
      return kExitFailure;
    }
    return WriteExport(text, std::nullopt, context);
  }

 private:
  void Check(CLI::App& command) {
    const std::vector<CLI::App*> kinds = command.get_subcommands();
    if (kinds.empty()) throw CLI::ValidationError("trends needs a kind: auctions, keywords or query");
    m_kind = kinds.front();
    const bool query = m_kind == m_query;
    if (query && m_name.empty()) throw CLI::ValidationError("trends query needs a query file's name");
    const bool site = command.count("--site") > 0;
    if (!query && !site) throw CLI::ValidationError("--site is required");
    if (query && site) throw CLI::ValidationError("--site excludes query: a query's recordings are of its own site");
    for (const char* option : {"--last", "--top"}) {
      if (m_kind != m_auctions && command.count(option) > 0) {
        throw CLI::ValidationError(std::string(option) + " is for trends auctions only");
      }
    }
  }

  CLI::App* m_auctions = nullptr;
  CLI::App* m_keywords = nullptr;
  CLI::App* m_query = nullptr;
  CLI::App* m_kind = nullptr;
  std::string m_name;
  sites::Site m_site = sites::Site::USA;
  std::optional<std::int64_t> m_last;
  std::optional<std::int64_t> m_top;
  StoreOptions m_store;
};

}  // namespace

std::unique_ptr<Command> MakeTrendsCommand() {
  return std::make_unique<TrendsCommand>();
}

}  // namespace gavelscope::cli
