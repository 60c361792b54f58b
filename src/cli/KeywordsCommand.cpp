// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include <ostream>

#include "cli/Command.h"
#include "insights/ListTable.h"

namespace gavelscope::cli {

namespace {

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

// keywords --site usa|uk [--export FILE] [--format F] | --item NAME: the Top 100 export, or one item's
// keywords.
class KeywordsCommand : public SiteCommand {
 public:
  KeywordsCommand() : SiteCommand(/*exports=*/true) {}
  std::string_view Name() const override { return "keywords"; }

  bool TakeArgument(const std::vector<std::string>& args, std::size_t& i, std::string& error) override {
    std::string value;
    bool taken = false;
    if (TakeValue(args, i, "--item", value, error, taken)) m_item = value;
    return taken || SiteCommand::TakeArgument(args, i, error);
  }

  std::string Check() const override {
    if (m_export && m_item) return "--export and --item do not go together";
    if (m_output.formatGiven() && m_item) return "--format and --item do not go together";
    return SiteCommand::Check();
  }

  int Run(CommandContext& context) override {
    const app::Load load = m_site == sites::Site::USA ? app::Load::KeywordsUSA : app::Load::KeywordsUK;
    if (!context.controller->LoadDone(load).Wait(context.stop)) return kExitFailure;
    const keywords::CCategoryTree& tree = context.controller->Tree(m_site);
    if (!m_item) {
      return WriteExport(
          m_output.Render([&] { return tree.ExportText(); }, [&] { return insights::KeywordsTable(tree, m_site); }),
          context);
    }
    const keywords::TreeItem item = FindItem(tree, *m_item);
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

std::unique_ptr<Command> MakeKeywordsCommand() {
  return std::make_unique<KeywordsCommand>();
}

}  // namespace gavelscope::cli
