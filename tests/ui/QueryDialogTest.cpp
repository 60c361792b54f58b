// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "ui/QueryDialog.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QProcess>
#include <QPushButton>
#include <QRadioButton>

#include <string>
#include <vector>

#include "app/HeadlessMainView.h"
#include "app/MainCommands.h"
#include "query/QueryFile.h"
#include "support/RecordingBrowser.h"
#include "support/RecordingMessages.h"
#include "support/TempFolder.h"

namespace gavelscope::ui {
namespace {

using query::CMySettings;
using sites::Site;

// The Sites' categories are filled in by hand. The UK Site stays unknown unless a test needs it, and
// a query run waits for both Sites before it scans: a started run never reaches the network.
class QueryDialogTest : public ::testing::Test {
 protected:
  QueryDialogTest()
      : m_controller(Config(), m_view, m_messages, m_browser), m_commands(m_controller, m_view, m_messages, m_browser) {
    sites::SiteCategories& usa = m_controller.Categories(Site::USA);
    usa.arrCategoryNames = {"Antiques", "Art", "Toys & Hobbies"};
    usa.arrCategoryLinks = {"/antiques", "/art", "/toys"};
    usa.ready.Set();
  }

  app::ControllerConfig Config() {
    app::ControllerConfig config;
    config.profile = sites::CompiledProfile();
    config.cacheFolder = m_folder.path();
    return config;
  }

  void MakeUKKnown() {
    sites::SiteCategories& uk = m_controller.Categories(Site::UK);
    uk.arrCategoryNames = {"Coins", "Stamps", "Toys"};
    uk.arrCategoryLinks = {"/coins", "/stamps", "/toys"};
    uk.ready.Set();
  }

  // The dialog as the window opens it, with every query it hands on remembered.
  std::unique_ptr<CQueryDialog> Dialog() {
    const auto names = [this](Site site) {
      const sites::SiteCategories& categories = m_controller.Categories(site);
      return categories.ready.IsSet() ? categories.arrCategoryNames : std::vector<std::string>();
    };
    const auto start = [this](const query::QuerySpec& query) {
      m_started.push_back(query);
      return m_commands.StartQuery(query);
    };
    return std::make_unique<CQueryDialog>(m_controller.config().profile, names, start, m_messages);
  }

  static void Select(CQueryDialog& dialog, const QString& name) {
    dialog.categoryList()->findItems(name, Qt::MatchExactly).front()->setSelected(true);
  }

  static std::vector<std::string> Selected(const CQueryDialog& dialog) {
    std::vector<std::string> names;
    for (int row = 0; row < dialog.categoryList()->count(); ++row) {
      const QListWidgetItem* item = dialog.categoryList()->item(row);
      if (item->isSelected()) names.push_back(item->text().toStdString());
    }
    return names;
  }

  std::filesystem::path Save(CQueryDialog& dialog, const std::string& name) {
    m_messages.chosenFile = m_folder / name;
    dialog.button(kSaveQuery)->click();
    return *m_messages.chosenFile;
  }

  // The saved file's fields as it stores them.
  CMySettings Saved(CQueryDialog& dialog) {
    CMySettings settings;
    std::string error;
    EXPECT_TRUE(query::LoadQueryBytes(testing::ReadFileBytes(Save(dialog, "saved.sbqry")), settings, error)) << error;
    return settings;
  }

  testing::TempFolder m_folder;
  app::HeadlessMainView m_view;
  testing::RecordingMessages m_messages;
  testing::RecordingBrowser m_browser;
  app::CRunController m_controller;
  app::CMainCommands m_commands;
  std::vector<query::QuerySpec> m_started;
};

TEST_F(QueryDialogTest, OpensOnGreaterThanFiltersSortedByDateEndedOnTheUSASite) {
  auto owned = Dialog();
  CQueryDialog& dialog = *owned;
  EXPECT_EQ(dialog.windowTitle(), "Gavelscope - Please input a new Hot Item Query for real time search");
  EXPECT_EQ(dialog.size(), QSize(666, 367));
  EXPECT_EQ(dialog.currencyLabel(kCurrencyLess)->text(), "Dollars");
  for (int id : {kBidsGreaterEdit, kDaysGreaterEdit, kPriceGreaterEdit}) EXPECT_TRUE(dialog.edit(id)->isEnabled());
  for (int id : {kBidsLessEdit, kDaysFromEdit, kPriceToEdit}) EXPECT_FALSE(dialog.edit(id)->isEnabled());
  Select(dialog, "Art");

  CMySettings expected;
  expected.SetPageDepth(1);
  expected.SetCountry(1);
  expected.SetBidsGreaterThan(0);
  expected.SetPriceGreaterThan(0);
  expected.SetDaysGreaterThan(0);
  expected.SetSortByDateEnded(1);
  expected.SetCategories({"Art"});
  EXPECT_EQ(Saved(dialog), expected);
  ASSERT_EQ(m_messages.fileChoices.size(), 1u);
  const base::FileChoice& choice = m_messages.fileChoices[0];
  EXPECT_EQ(choice.title + choice.filter + choice.defaultSuffix,
            "Save New Gavelscope Query !Gavelscope Query File (*.sbqry)sbqry");
  EXPECT_TRUE(choice.save);
}

TEST_F(QueryDialogTest, TestRadiosEnableTheirEditsAndAnyRangeBoxesRestoreTheRadioTheyHid) {
  auto owned = Dialog();
  CQueryDialog& dialog = *owned;
  const auto enabled = [&dialog](std::initializer_list<int> ids) {
    std::string marks;
    for (int id : ids) marks += dialog.edit(id)->isEnabled() ? '1' : '0';
    return marks;
  };
  dialog.radio(kBidsRange)->click();
  EXPECT_EQ(enabled({kBidsGreaterEdit, kBidsLessEdit, kBidsFromEdit, kBidsToEdit}), "0011");
  dialog.radio(kBidsRange)->click();  // a checked radio stays checked
  EXPECT_TRUE(dialog.radio(kBidsRange)->isChecked());
  dialog.checkBox(kAnyBids)->click();
  EXPECT_EQ(enabled({kBidsGreaterEdit, kBidsLessEdit, kBidsFromEdit, kBidsToEdit}), "0000");
  dialog.checkBox(kAnyBids)->click();
  EXPECT_TRUE(dialog.radio(kBidsRange)->isChecked());
  EXPECT_EQ(enabled({kBidsGreaterEdit, kBidsLessEdit, kBidsFromEdit, kBidsToEdit}), "0011");

  dialog.edit(kPriceGreaterEdit)->setText("25");
  dialog.checkBox(kAnyPrice)->click();
  dialog.radio(kPriceLess)->click();
  for (int id : {kPriceGreater, kPriceLess, kPriceRange}) EXPECT_FALSE(dialog.radio(id)->isChecked()) << id;
  EXPECT_EQ(enabled({kPriceGreaterEdit, kPriceLessEdit, kPriceFromEdit, kPriceToEdit}), "0000");
  EXPECT_EQ(Saved(dialog).m_bPriceFilter, 0);
  dialog.checkBox(kAnyPrice)->click();
  EXPECT_TRUE(dialog.radio(kPriceGreater)->isChecked());
  EXPECT_FALSE(dialog.radio(kPriceLess)->isChecked());
  EXPECT_EQ(enabled({kPriceGreaterEdit, kPriceLessEdit, kPriceFromEdit, kPriceToEdit}), "1000");
  EXPECT_EQ(Saved(dialog).m_nPriceGreater, 25);
}

TEST_F(QueryDialogTest, EveryCountryClickRefillsTheListAndRelabelsTheCurrency) {
  MakeUKKnown();
  auto owned = Dialog();
  CQueryDialog& dialog = *owned;
  Select(dialog, "Art");
  dialog.radio(kUnitedKingdom)->click();
  EXPECT_EQ(dialog.categoryList()->item(1)->text(), "Stamps");
  EXPECT_TRUE(Selected(dialog).empty());
  EXPECT_EQ(dialog.currencyLabel(kCurrencyGreater)->text(), "Pounds");
  EXPECT_EQ(dialog.currencyLabel(kCurrencyLess)->text(), "Pounds");
  Select(dialog, "Stamps");
  dialog.radio(kUnitedKingdom)->click();
  EXPECT_TRUE(Selected(dialog).empty());
  EXPECT_EQ(Saved(dialog).m_bInternational, 0);
  dialog.radio(kInternational)->click();
  EXPECT_EQ(dialog.categoryList()->item(1)->text(), "Art");
  EXPECT_EQ(dialog.currencyLabel(kCurrencyLess)->text(), "Dollars");
}

TEST_F(QueryDialogTest, LoadingASavedQueryRestoresEveryControl) {
  auto ownedBefore = Dialog();
  CQueryDialog& before = *ownedBefore;
  before.checkBox(kAnyBids)->click();
  before.radio(kDaysRange)->click();
  before.edit(kDaysFromEdit)->setText("1");
  before.edit(kDaysToEdit)->setText("5");
  before.radio(kPriceLess)->click();
  before.edit(kPriceLessEdit)->setText("250");
  before.radio(kSortTitle)->click();
  before.checkBox(kAscending)->click();
  before.edit(kKeywords)->setText("lamp, clock");
  before.edit(kPageDepth)->setText("4");
  Select(before, "Art");
  Select(before, "Toys & Hobbies");
  const std::string bytes = testing::ReadFileBytes(Save(before, "before.sbqry"));

  auto ownedAfter = Dialog();
  CQueryDialog& after = *ownedAfter;
  m_messages.chosenFile = m_folder / "before.sbqry";
  after.button(kLoadQuery)->click();
  EXPECT_EQ(m_messages.fileChoices.back().title, "Choose New Gavelscope Query To Load !");
  EXPECT_FALSE(m_messages.fileChoices.back().save);
  EXPECT_FALSE(after.checkBox(kAscending)->isChecked());
  EXPECT_EQ(after.edit(kDaysToEdit)->text(), "5");
  EXPECT_EQ(Selected(after), (std::vector<std::string>{"Art", "Toys & Hobbies"}));
  // Saving what was loaded gives the same file: every control took its value.
  EXPECT_EQ(testing::ReadFileBytes(Save(after, "after.sbqry")), bytes);

  // No bid filter: the box is checked, and unchecking it offers "Greater than".
  EXPECT_TRUE(after.checkBox(kAnyBids)->isChecked());
  EXPECT_FALSE(after.radio(kBidsGreater)->isChecked());
  after.checkBox(kAnyBids)->click();
  EXPECT_TRUE(after.radio(kBidsGreater)->isChecked());
  EXPECT_TRUE(after.edit(kBidsGreaterEdit)->isEnabled());

  // Names select the first item they begin, whatever the case; the rest keep their selection.
  query::QuerySpec prefixes;
  prefixes.site = Site::USA;
  prefixes.categories = {"toys", "Nothing", "a"};
  after.ApplyQuery(prefixes);
  EXPECT_EQ(Selected(after), (std::vector<std::string>{"Antiques", "Toys & Hobbies"}));

  m_messages.chosenFile = m_folder / "missing.sbqry";
  after.button(kLoadQuery)->click();
  ASSERT_EQ(m_messages.Messages().size(), 1u);
  EXPECT_EQ(m_messages.Messages()[0].text, "Cannot Load File : " + (m_folder / "missing.sbqry").string());
  EXPECT_EQ(m_messages.Messages()[0].title, "Gavelscope Error !");
}

TEST_F(QueryDialogTest, SavesTheSameBytesAsTheCommandLine) {
  MakeUKKnown();
  auto owned = Dialog();
  CQueryDialog& dialog = *owned;
  dialog.radio(kUnitedKingdom)->click();
  Select(dialog, "Stamps");
  Select(dialog, "Toys");
  dialog.edit(kKeywords)->setText("  brass lamp ");
  dialog.edit(kPageDepth)->setText("7");
  dialog.radio(kBidsLess)->click();
  dialog.edit(kBidsLessEdit)->setText("12");
  dialog.radio(kPriceRange)->click();
  dialog.edit(kPriceFromEdit)->setText("5");
  dialog.edit(kPriceToEdit)->setText("80");
  dialog.checkBox(kAnyDays)->click();
  dialog.radio(kSortBids)->click();
  dialog.checkBox(kAscending)->click();
  const std::string saved = testing::ReadFileBytes(Save(dialog, "dialog.sbqry"));

  const std::filesystem::path cliFile = m_folder / "cli.sbqry";
  QProcess cli;
  QStringList arguments = QStringLiteral(
                              "query-new --site uk --page-depth 7 --category Stamps --category Toys "
                              "--bids-less 12 --price-range 5 80 --sort bids --descending")
                              .split(' ');
  arguments << "--keywords"
            << "  brass lamp "
            << "--output" << QString::fromStdString(cliFile.string());
  cli.start(GAVELSCOPE_CLI_PROGRAM, arguments);
  ASSERT_TRUE(cli.waitForFinished(60000));
  ASSERT_EQ(cli.exitCode(), 0) << cli.readAllStandardError().toStdString();
  EXPECT_EQ(saved, testing::ReadFileBytes(cliFile));
}

TEST_F(QueryDialogTest, StartQueryNeedsACategoryAndStartsTheRunEvenWhenAFieldFails) {
  auto owned = Dialog();
  CQueryDialog& dialog = *owned;
  m_controller.QueryResults().AppendRow(std::make_shared<hotitems::CHotItemRecord>());
  dialog.button(kStartQuery)->click();
  ASSERT_EQ(m_messages.Messages().size(), 1u);
  EXPECT_EQ(m_messages.Messages()[0].text, "Please enter at least one category.");
  EXPECT_EQ(m_messages.Messages()[0].title, "Gavelscope");
  EXPECT_EQ(m_controller.QueryResults().RowCount(), 0);
  EXPECT_FALSE(m_controller.IsQueryAlive());
  EXPECT_NE(dialog.result(), QDialog::Accepted);

  // The check reads the whole text; the query reads its leading number. Closing checks again.
  Select(dialog, "Art");
  dialog.edit(kBidsGreaterEdit)->setText("12 bids");
  dialog.button(kStartQuery)->click();
  EXPECT_TRUE(m_controller.IsQueryAlive());
  EXPECT_TRUE(m_controller.IsQueryRunning());
  ASSERT_EQ(m_messages.Messages().size(), 3u);
  EXPECT_EQ(m_messages.Messages()[1].text, "Bid Count \"Greater than\": please enter a whole number from 0 to 500.");
  EXPECT_NE(dialog.result(), QDialog::Accepted);
  EXPECT_EQ(Saved(dialog).m_nBidsGreater, 12);
  EXPECT_EQ(m_messages.Messages().size(), 4u);
  EXPECT_EQ(dialog.edit(kBidsGreaterEdit)->text(), "0");  // the last good value is shown again

  dialog.button(kStartQuery)->click();
  EXPECT_EQ(dialog.result(), QDialog::Accepted);
  EXPECT_EQ(m_messages.Messages().size(), 4u);
}

TEST_F(QueryDialogTest, StartQueryHandsOnWhatTheFieldsHoldAndAFailedFieldKeepsWhatWasTyped) {
  auto owned = Dialog();
  CQueryDialog& dialog = *owned;
  Select(dialog, "Art");
  dialog.radio(kBidsRange)->click();
  dialog.edit(kBidsFromEdit)->setText("-1");
  dialog.edit(kBidsToEdit)->setText("5");
  dialog.radio(kSortPrice)->click();
  dialog.button(kStartQuery)->click();
  ASSERT_EQ(m_started.size(), 1u);
  // A range with a bound of -1 still filters: the run gets the bounds as they stand.
  EXPECT_EQ(m_started[0].bids, query::FilterSpec::Between(-1, 5));
  EXPECT_EQ(m_started[0].days, query::FilterSpec::GreaterThan(0));
  EXPECT_EQ(m_started[0].sort, query::SortColumn::Price);
  EXPECT_EQ(m_started[0].categories, std::vector<std::string>{"Art"});
  EXPECT_EQ(m_started[0].site, Site::USA);

  // A number out of range is kept as typed: what the dialog shows is what it saves.
  dialog.edit(kBidsFromEdit)->setText("900");
  const CMySettings saved = Saved(dialog);
  EXPECT_EQ(dialog.edit(kBidsFromEdit)->text(), "900");
  EXPECT_EQ(saved.m_nBidsFrom, 900);
}

}  // namespace
}  // namespace gavelscope::ui
