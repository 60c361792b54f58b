// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include <array>
#include <charconv>
#include <ostream>
#include <tuple>

#include <CLI/CLI.hpp>

#include "cli/Command.h"
#include "net/NetOptions.h"
#include "query/QueryFile.h"

namespace gavelscope::cli {

namespace {

// The choices of query-new, the command-line face of the query dialog: the query (on the USA site
// unless told otherwise, as the dialog opens) and the file to save it in.
struct QueryChoices {
  query::QueryDefinition query = [] {
    query::QueryDefinition definition;
    definition.site = sites::Site::USA;
    return definition;
  }();
  std::filesystem::path output;
};

bool ReadInt(const std::string& text, std::int32_t& value) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() && end == text.data() + text.size();
}

// A whole number for a filter bound. -1 is how a query file says "not set", so a bound of -1 could
// not be saved.
CLI::Validator FilterBound() {
  return CLI::Validator(
      [](std::string& text) {
        std::int32_t value = 0;
        if (!ReadInt(text, value)) return "\"" + text + "\" is not a whole number";
        return value == -1 ? std::string("cannot take -1") : std::string();
      },
      "");
}

// --NAME-greater N, --NAME-less N, --NAME-range A B for the items' `what`: at most one of them,
// given once. Each is taken as it is read, so that a second one is caught whatever its name.
void AddFilter(CLI::App& command, const std::string& name, const std::string& what, query::FilterSpec& filter) {
  using Test = query::FilterSpec::Test;
  for (const auto& [suffix, kind, bounds] : {std::tuple{"-greater", Test::Greater, "above N"},
                                             {"-less", Test::Less, "below N"},
                                             {"-range", Test::Range, "from A to B"}}) {
    const Test test = kind;
    const int values = test == Test::Range ? 2 : 1;
    command
        .add_option_function<std::vector<std::int32_t>>(
            "--" + name + suffix,
            [&filter, name, test, values](const std::vector<std::int32_t>& given) {
              if (static_cast<int>(given.size()) != values) {
                throw CLI::ValidationError("--" + name + "-range: needs 2 values (A B)");
              }
              if (filter.test != Test::Any) throw CLI::ValidationError("only one " + name + " test may be given");
              filter = test == Test::Greater ? query::FilterSpec::GreaterThan(given[0])
                       : test == Test::Less  ? query::FilterSpec::LessThan(given[0])
                                             : query::FilterSpec::Between(given[0], given[1]);
            },
            "keep the items whose " + what + " is " + bounds)
        ->expected(values)
        ->allow_extra_args(false)
        ->trigger_on_parse()
        ->type_name(values == 2 ? "A B" : "N")
        ->check(FilterBound());
  }
}

// query-new [options] --output FILE.sbqry: saves the query the dialog would save for the same choices.
class QueryNewCommand : public Command {
 public:
  CLI::App* AddTo(CLI::App& program) override {
    CLI::App* command =
        program.add_subcommand("query-new", "Saves the query file the query dialog would save for the same choices.");
    query::QueryDefinition& definition = m_choices.query;
    AddSite(*command, definition.site, "the site to search; usa unless told otherwise");
    command
        ->add_option("--keywords", definition.keywords,
                     "words or phrases separated by commas: an item is kept when its title holds any of them, "
                     "in any case")
        ->type_name("TEXT");
    command->add_option("--page-depth", definition.pageDepth, "the listing pages to scan per category (default 1)")
        ->type_name("N")
        ->check(CLI::Validator(
            [](std::string& text) {
              std::int32_t depth = 0;
              return ReadInt(text, depth) && depth >= 1 && depth <= 10000
                         ? std::string()
                         : "\"" + text + "\" is not a whole number from 1 to 10000";
            },
            ""));
    command
        ->add_option_function<std::vector<std::string>>(
            "--category",
            [&definition](const std::vector<std::string>& names) {
              // A file the program itself would refuse to load is not written.
              if (names.size() > static_cast<std::size_t>(net::limits::kMaxQueryCategories)) {
                throw CLI::ValidationError("a query holds at most " + std::to_string(net::limits::kMaxQueryCategories) +
                                           " categories");
              }
              definition.categories = names;
            },
            "a category to search, named as the site's home page shows it; repeatable")
        ->type_name("NAME")
        ->expected(1)
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    AddFilter(*command, "bids", "count of bids", definition.bids);
    AddFilter(*command, "price", "price (in whole units of the site's currency)", definition.price);
    AddFilter(*command, "days", "number of days left", definition.days);
    AddChoice(
        *command, "--sort", {"date", "title", "price", "bids"},
        [&definition](std::size_t index) {
          definition.sort = std::array{query::SortColumn::DateEnded, query::SortColumn::Title, query::SortColumn::Price,
                                 query::SortColumn::Bids}
                          .at(index);
        },
        "the column the result list is sorted by");
    command->add_flag_callback(
        "--descending", [&definition] { definition.ascending = false; }, "sort in descending order");
    command
        ->add_option_function<std::string>(
            "--output", [this](const std::string& file) { m_choices.output = file; }, "the query file to write")
        ->type_name("FILE.sbqry")
        ->required()
        ->check(CLI::Validator(
            [](std::string& file) { return file.empty() ? std::string("needs a file name") : std::string(); }, ""));
    command->footer("Each of bids, price and days takes at most one test.");
    return command;
  }

  bool NeedsRun() const override { return false; }

  int Run(CommandContext& context) override {
    const base::Outcome saved = query::SaveQueryFile(m_choices.output, m_choices.query);
    if (!saved) context.err << "Cannot Save To File : " << m_choices.output.string() << ": " << saved.error << '\n';
    return saved ? kExitOk : kExitFailure;
  }

 private:
  QueryChoices m_choices;
};

}  // namespace

std::unique_ptr<Command> MakeQueryNewCommand() {
  return std::make_unique<QueryNewCommand>();
}

}  // namespace gavelscope::cli
