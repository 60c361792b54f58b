// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include <algorithm>
#include <functional>
#include <ostream>

#include <CLI/CLI.hpp>

#include "cli/Command.h"
#include "insights/ListTable.h"

namespace gavelscope::cli {

namespace {

// ASCII letters compared without regard to case, byte by byte, as a query's keyword test compares;
// the names are the sites' Windows-1252 text.
bool EqualNoCase(std::string_view a, std::string_view b) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
  return std::ranges::equal(a, b, [&](char x, char y) { return lower(x) == lower(y); });
}

// The first item in tree order (each category, then its sub-categories) whose text matches.
keywords::TreeItem FindItem(const keywords::CCategoryTree& tree,
                            const std::function<bool(const std::string&)>& matches) {
  for (keywords::TreeItem root : tree.RootItems()) {
    if (matches(tree.GetItemText(root))) return root;
    for (keywords::TreeItem child : tree.ChildItems(root)) {
      if (matches(tree.GetItemText(child))) return child;
    }
  }
  return keywords::kNoItem;
}

// keywords --site usa|uk [--export FILE] [--format F] | --item NAME: the Top 100 export, or one item's
// keywords.
class KeywordsCommand : public SiteCommand {
 public:
  KeywordsCommand() : SiteCommand(/*exports=*/true) {}

  CLI::App* AddTo(CLI::App& program) override {
    CLI::App* command = AddSiteCommand(
        program, "keywords",
        "Prints or writes the site's \"Todays Top 100 Keywords\" export; with --item, the keywords of one "
        "category or sub-category.");
    command
        ->add_option_function<std::string>(
            "--item", [this](const std::string& name) { m_item = name; },
            "print the keywords of the first category or sub-category called NAME (in any case when none "
            "has exactly that name), one a line: keyword, tab, search link")
        ->type_name("NAME")
        ->excludes("--export")
        ->excludes("--format");
    return command;
  }

  int Run(CommandContext& context) override {
    if (!context.controller->LoadDone(app::KeywordsLoad(m_site)).Wait(context.stop)) return kExitFailure;
    const keywords::CCategoryTree& tree = context.controller->Tree(m_site);
    if (!m_item) {
      return WriteExport(
          m_output.Render([&] { return tree.ExportText(); }, [&] { return insights::KeywordsTable(tree, m_site); }),
          context);
    }
    const keywords::TreeItem item = FindNamedItem(tree, *m_item);
    if (item == keywords::kNoItem) {
      context.err << "gavelscope-cli: no category or sub-category called \"" << *m_item << "\"\n";
      return kExitFailure;
    }
    if (const auto array = tree.GetItemData(item)) {
      for (const keywords::KeywordRecordPtr& record : *array) {
        context.out << record->GetKeyword() << '\t' << record->GetSearchLink() << '\n';
      }
    }
    context.out.flush();
    return context.out ? kExitOk : kExitFailure;
  }

 private:
  std::optional<std::string> m_item;
};

}  // namespace

// An item of exactly that name, else the first whose name differs only in case: a name typed in
// another case still finds its item, and names that differ only in case stay reachable.
keywords::TreeItem FindNamedItem(const keywords::CCategoryTree& tree, const std::string& name) {
  const keywords::TreeItem exact = FindItem(tree, [&](const std::string& text) { return text == name; });
  if (exact != keywords::kNoItem) return exact;
  return FindItem(tree, [&](const std::string& text) { return EqualNoCase(text, name); });
}

std::unique_ptr<Command> MakeKeywordsCommand() {
  return std::make_unique<KeywordsCommand>();
}

}  // namespace gavelscope::cli
