// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include <ostream>

#include <CLI/CLI.hpp>

#include "cli/Command.h"

namespace gavelscope::cli {

namespace {

// categories --site usa|uk: the site's top-level categories, name, tab, link.
class CategoriesCommand : public SiteCommand {
 public:
  CategoriesCommand() : SiteCommand(/*exports=*/false) {}
  CLI::App* AddTo(CLI::App& program) override {
    return AddSiteCommand(program, "categories",
                          "Prints each top-level category of the site: its name, a tab and its link.");
  }

  int Run(CommandContext& context) override {
    const sites::SiteCategories& categories = context.controller->Categories(m_site);
    if (!categories.ready.Wait(context.stop)) return kExitFailure;
    for (std::size_t i = 0; i < categories.arrCategoryNames.size(); ++i) {
      context.out << categories.arrCategoryNames[i] << '\t' << categories.arrCategoryLinks[i] << '\n';
    }
    context.out.flush();
    return context.out ? kExitOk : kExitFailure;
  }
};

}  // namespace

std::unique_ptr<Command> MakeCategoriesCommand() {
  return std::make_unique<CategoriesCommand>();
}

}  // namespace gavelscope::cli
