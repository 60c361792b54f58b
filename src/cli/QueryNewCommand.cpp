// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include <charconv>
#include <ostream>

#include "cli/Command.h"
#include "net/NetOptions.h"
#include "query/QueryFile.h"

namespace gavelscope::cli {

namespace {

// The choices of query-new, the command-line face of the query dialog: the query (on the USA site
// unless told otherwise, as the dialog opens) and the file to save it in.
struct QueryChoices {
  query::QuerySpec query = [] {
    query::QuerySpec spec;
    spec.site = sites::Site::USA;
    return spec;
  }();
  std::filesystem::path output;
};

bool ReadInt(const std::string& text, std::int32_t& value) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() && end == text.data() + text.size();
}

// --NAME-greater N, --NAME-less N, --NAME-range A B
bool ParseFilter(const std::vector<std::string>& args, std::size_t& i, const std::string& name,
                 query::FilterSpec& filter, std::string& error) {
  using Test = query::FilterSpec::Test;
  const std::string& arg = args[i];
  Test test = Test::Any;
  if (arg == "--" + name + "-greater") test = Test::Greater;
  if (arg == "--" + name + "-less") test = Test::Less;
  if (arg == "--" + name + "-range") test = Test::Range;
  if (test == Test::Any) return false;
  const std::size_t values = test == Test::Range ? 2 : 1;
  if (filter.test != Test::Any) {
    error = "only one " + name + " test may be given";
    return false;
  }
  std::int32_t a = 0;
  std::int32_t b = 0;
  if (i + values >= args.size() || !ReadInt(args[i + 1], a) || (values == 2 && !ReadInt(args[i + 2], b))) {
    error = arg + " needs " + (values == 2 ? "two whole numbers" : "a whole number");
    return false;
  }
  // -1 is how a query file says "not set": a bound of -1 could not be saved.
  if (a == -1 || (values == 2 && b == -1)) {
    error = arg + " cannot take -1";
    return false;
  }
  filter = test == Test::Greater ? query::FilterSpec::GreaterThan(a)
           : test == Test::Less  ? query::FilterSpec::LessThan(a)
                                 : query::FilterSpec::Between(a, b);
  i += values;
  return true;
}

// Takes the query-new option at args[i] (and its values): true when it was one, with `error` set when
// it was malformed.
bool TakeQueryOption(const std::vector<std::string>& args, std::size_t& i, QueryChoices& choices, std::string& error) {
  const std::string& arg = args[i];
  const bool hasValue = i + 1 < args.size();
  if (arg == "--site" && hasValue && (args[i + 1] == "usa" || args[i + 1] == "uk")) {
    choices.query.site = args[++i] == "usa" ? sites::Site::USA : sites::Site::UK;
    return true;
  }
  if (arg == "--keywords" && hasValue) {
    choices.query.keywords = args[++i];
    return true;
  }
  if (arg == "--page-depth" && hasValue) {
    if (!ReadInt(args[i + 1], choices.query.pageDepth) || choices.query.pageDepth < 1 ||
        choices.query.pageDepth > 10000) {
      error = "--page-depth is a whole number from 1 to 10000";
      return true;
    }
    ++i;
    return true;
  }
  if (arg == "--category" && hasValue) {
    // A file the program itself would refuse to load is not written.
    if (choices.query.categories.size() >= static_cast<std::size_t>(net::limits::kMaxQueryCategories)) {
      error = "a query holds at most " + std::to_string(net::limits::kMaxQueryCategories) + " categories";
      return true;
    }
    choices.query.categories.push_back(args[++i]);
    return true;
  }
  if (arg == "--sort" && hasValue) {
    const std::string& value = args[++i];
    if (value == "date")
      choices.query.sort = query::SortColumn::DateEnded;
    else if (value == "title")
      choices.query.sort = query::SortColumn::Title;
    else if (value == "price")
      choices.query.sort = query::SortColumn::Price;
    else if (value == "bids")
      choices.query.sort = query::SortColumn::Bids;
    else {
      error = "--sort is date, title, price or bids";
      return true;
    }
    return true;
  }
  if (arg == "--descending") {
    choices.query.ascending = false;
    return true;
  }
  if (arg == "--output" && hasValue) {
    choices.output = args[++i];
    if (choices.output.empty()) {
      error = "--output needs a file name";
      return true;
    }
    return true;
  }
  for (auto [name, filter] :
       {std::pair{"bids", &choices.query.bids}, {"price", &choices.query.price}, {"days", &choices.query.days}}) {
    if (ParseFilter(args, i, name, *filter, error)) return true;
    if (!error.empty()) return false;
  }
  error = "unknown option: " + arg;
  return true;
}

// query-new [options] --output FILE.sbqry: saves the query the dialog would save for the same choices.
class QueryNewCommand : public Command {
 public:
  std::string_view Name() const override { return "query-new"; }
  bool TakeArgument(const std::vector<std::string>& args, std::size_t& i, std::string& error) override {
    return TakeQueryOption(args, i, m_choices, error);
  }
  std::string Check() const override {
    return m_choices.output.empty() ? "query-new needs --output FILE.sbqry" : std::string();
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
