// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "ui/QueryDialog.h"

#include <QAbstractButton>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QProcess>
#include <QPushButton>

#include <set>

#include "WindowTestSupport.h"

namespace gavelscope::ui {
namespace {

using query::FilterSpec;
using sites::Site;

// The dialog the window opens, over the Sites' categories filled in by hand. The UK Site stays
// unknown unless a test needs it, and a query run waits for both Sites before it scans: a started
// run never reaches the network.
class QueryDialogTest : public IdleWindowTest {
 protected:
  QueryDialogTest() {
    Know(Site::USA, {"Antiques", "Art", "Toys & Hobbies"});
    m_dialog = Dialog();
  }

  void Know(Site site, std::vector<std::string> names) {
    m_controller.Categories(site).arrCategoryNames = std::move(names);
    m_controller.Categories(site).ready.Set();
  }

  // The dialog as the window opens it, with every query it hands on remembered.
  std::unique_ptr<CQueryDialog> Dialog() {
    const auto start = [this](const query::QueryDefinition& query) {
      m_started.push_back(query);
      return m_window.commands().StartQuery(query);
    };
    return std::make_unique<CQueryDialog>(m_controller.config().profile, KnownCategoryNames(m_controller), start,
                                          m_messages);
  }

  // Each control's objectName is its id.
  static void Click(CQueryDialog& dialog, std::initializer_list<int> ids) {
    for (int id : ids) dialog.findChild<QAbstractButton*>(QString::number(id))->click();
  }
  static void Type(CQueryDialog& dialog, std::initializer_list<std::pair<int, const char*>> texts) {
    for (const auto& [id, text] : texts) dialog.edit(id)->setText(text);
  }
  static void Select(CQueryDialog& dialog, std::initializer_list<QString> names) {
    for (const QString& name : names)
      dialog.categoryList()->findItems(name, Qt::MatchExactly).front()->setSelected(true);
  }
  static std::set<std::string> Selected(const CQueryDialog& dialog) {
    std::set<std::string> names;
    for (const QListWidgetItem* item : dialog.categoryList()->selectedItems()) names.insert(item->text().toStdString());
    return names;
  }
  // '1' for each of the controls that is enabled, '0' for each that is not; '+' for a checked button.
  static std::string States(const CQueryDialog& dialog, std::initializer_list<int> ids) {
    std::string marks;
    for (int id : ids) {
      QWidget* control = dialog.findChild<QWidget*>(QString::number(id));
      const auto* button = qobject_cast<QAbstractButton*>(control);
      marks += button != nullptr && button->isChecked() ? '+' : control->isEnabled() ? '1' : '0';
    }
    return marks;
  }
  // Save Query into `name` in the test's folder; the file's bytes.
  std::string Save(CQueryDialog& dialog, const std::string& name) {
    m_messages.chosenFile = m_folder / name;
    Click(dialog, {kSaveQuery});
    return testing::ReadFileBytes(m_folder / name);
  }

  std::vector<query::QueryDefinition> m_started;
  std::unique_ptr<CQueryDialog> m_dialog;
};

TEST_F(QueryDialogTest, OpensOnGreaterThanFiltersSortedByDateEndedOnTheUSASiteAndEachCountryRefillsTheList) {
  CQueryDialog& dialog = *m_dialog;
  EXPECT_EQ(dialog.windowTitle(), "Gavelscope - Please input a new Hot Item Query for real time search");
  EXPECT_EQ(dialog.size(), QSize(666, 367));
  EXPECT_EQ(States(dialog,
                   {kBidsGreaterEdit, kDaysGreaterEdit, kPriceGreaterEdit, kBidsLessEdit, kDaysFromEdit, kPriceToEdit}),
            "111000");
  Select(dialog, {"Art"});
  const FilterSpec none = FilterSpec::GreaterThan(0);
  EXPECT_EQ(dialog.CollectQuery(),
            (query::QueryDefinition{Site::USA, "", 1, {"Art"}, none, none, none, query::SortColumn::DateEnded, true}));

  // Every click of a country, the selected one too, refills the list and relabels the currency.
  Know(Site::UK, {"Coins", "Stamps", "Toys"});
  const auto labels = [&dialog] {
    return dialog.categoryList()->item(1)->text() + " " + dialog.currencyLabel(kCurrencyGreater)->text() + " " +
           dialog.currencyLabel(kCurrencyLess)->text();
  };
  EXPECT_EQ(labels(), "Art Dollars Dollars");
  for (const QString name : {"Art", "Stamps"}) {
    Select(dialog, {name});
    Click(dialog, {kUnitedKingdom});
    EXPECT_EQ(labels(), "Stamps Pounds Pounds");
    EXPECT_TRUE(Selected(dialog).empty());
  }
  EXPECT_EQ(dialog.CollectQuery().site, Site::UK);
  Click(dialog, {kInternational});
  EXPECT_EQ(labels(), "Art Dollars Dollars");
}

TEST_F(QueryDialogTest, AListOfCategoriesNotKnownYetFillsAsSoonAsTheyAre) {
  Click(*m_dialog, {kUnitedKingdom});
  EXPECT_EQ(m_dialog->categoryList()->count(), 0);
  Know(Site::UK, {"Coins", "Stamps"});
  EXPECT_TRUE(ProcessEventsUntil([this] { return m_dialog->categoryList()->count() == 2; }));
}

TEST_F(QueryDialogTest, NoCaptionIsCutOrCoveredByAnEdit) {
  for (const QAbstractButton* caption : m_dialog->findChildren<QAbstractButton*>()) {
    if (qobject_cast<const QPushButton*>(caption) != nullptr) continue;
    EXPECT_LE(caption->sizeHint().width(), caption->width()) << caption->text().toStdString();
    for (const QLineEdit* edit : m_dialog->findChildren<QLineEdit*>()) {
      EXPECT_FALSE(caption->geometry().intersects(edit->geometry())) << caption->text().toStdString();
    }
  }
}

TEST_F(QueryDialogTest, TestRadiosEnableTheirEditsAndAnyRangeBoxesRestoreTheRadioTheyHid) {
  CQueryDialog& dialog = *m_dialog;
  Click(dialog, {kBidsRange, kBidsRange});  // a checked radio stays checked
  EXPECT_EQ(States(dialog, {kBidsRange, kBidsGreaterEdit, kBidsLessEdit, kBidsFromEdit, kBidsToEdit}), "+0011");
  Click(dialog, {kAnyBids});
  EXPECT_EQ(States(dialog, {kBidsGreaterEdit, kBidsLessEdit, kBidsFromEdit, kBidsToEdit}), "0000");
  Click(dialog, {kAnyBids});
  EXPECT_EQ(States(dialog, {kBidsRange, kBidsGreaterEdit, kBidsLessEdit, kBidsFromEdit, kBidsToEdit}), "+0011");

  Type(dialog, {{kPriceGreaterEdit, "25"}});
  Click(dialog, {kAnyPrice, kPriceLess});
  const std::initializer_list<int> price = {kPriceGreater,  kPriceLess,     kPriceRange, kPriceGreaterEdit,
                                            kPriceLessEdit, kPriceFromEdit, kPriceToEdit};
  EXPECT_EQ(States(dialog, price), "1110000");
  EXPECT_EQ(dialog.CollectQuery().price, FilterSpec());
  Click(dialog, {kAnyPrice});
  EXPECT_EQ(States(dialog, price), "+111000");
  EXPECT_EQ(dialog.CollectQuery().price, FilterSpec::GreaterThan(25));
}

TEST_F(QueryDialogTest, SavesTheBytesTheCommandLineSavesAndLoadsThemBackIntoEveryControl) {
  CQueryDialog& before = *m_dialog;
  Click(before, {kAnyBids, kDaysRange, kPriceLess, kSortTitle, kAscending});
  Type(before, {{kDaysFromEdit, "1"},
                {kDaysToEdit, "5"},
                {kPriceLessEdit, "250"},
                {kKeywords, "  brass lamp "},
                {kPageDepth, "4"}});
  Select(before, {"Art", "Toys & Hobbies"});
  const std::string bytes = Save(before, "before.sbqry");
  const base::FileChoice& choice = m_messages.fileChoices.at(0);
  EXPECT_EQ(choice.title + choice.filter + choice.defaultSuffix + (choice.save ? " to save" : " to open"),
            "Save New Gavelscope Query !Gavelscope Query File (*.sbqry)sbqry to save");
  ASSERT_EQ(QProcess::execute(
                GAVELSCOPE_CLI_PROGRAM,
                {"query-new", "--page-depth", "4", "--category", "Art", "--category", "Toys & Hobbies", "--days-range",
                 "1", "5", "--price-less", "250", "--sort", "title", "--descending", "--keywords", "  brass lamp ",
                 "--output", QString::fromStdString((m_folder / "cli.sbqry").string())}),
            0);
  EXPECT_EQ(bytes, testing::ReadFileBytes(m_folder / "cli.sbqry"));

  const std::unique_ptr<CQueryDialog> owned = Dialog();
  CQueryDialog& after = *owned;
  m_messages.chosenFile = m_folder / "before.sbqry";
  Click(after, {kLoadQuery});
  EXPECT_EQ(m_messages.fileChoices.back().title + (m_messages.fileChoices.back().save ? " to save" : " to open"),
            "Choose New Gavelscope Query To Load ! to open");
  EXPECT_EQ(Selected(after), (std::set<std::string>{"Art", "Toys & Hobbies"}));
  EXPECT_EQ(after.file(), m_folder / "before.sbqry");  // the name its results are recorded under
  // Saving what was loaded gives the same file: every control took its value.
  EXPECT_EQ(Save(after, "after.sbqry"), bytes);
  EXPECT_EQ(after.file(), m_folder / "after.sbqry");
  // No bid filter: unchecking its box offers "Greater than".
  Click(after, {kAnyBids});
  EXPECT_EQ(States(after, {kBidsGreater}), "+");

  // Names select the first item they begin, whatever the case; the rest keep their selection.
  query::QueryDefinition prefixes = after.CollectQuery();
  prefixes.categories = {"toys", "Nothing", "a"};
  after.ApplyQuery(prefixes);
  EXPECT_EQ(Selected(after), (std::set<std::string>{"Antiques", "Toys & Hobbies"}));

  m_messages.chosenFile = m_folder / "missing.sbqry";
  Click(after, {kLoadQuery});
  ASSERT_EQ(m_messages.Messages().size(), 1u);
  EXPECT_EQ(m_messages.Messages()[0].title + " " + m_messages.Messages()[0].text,
            "Gavelscope Error ! Cannot Load File : " + (m_folder / "missing.sbqry").string());
  EXPECT_EQ(after.file(), m_folder / "after.sbqry");
}

TEST_F(QueryDialogTest, StartQueryNeedsACategoryThenStartsWithWhatTheFieldsHoldEvenWhenOneFails) {
  CQueryDialog& dialog = *m_dialog;
  m_controller.QueryResults().AppendRow(std::make_shared<hotitems::CHotItemRecord>());
  Click(dialog, {kStartQuery});
  ASSERT_EQ(m_messages.Messages().size(), 1u);
  EXPECT_EQ(m_messages.Messages()[0].title + " " + m_messages.Messages()[0].text,
            "Gavelscope Please enter at least one category.");
  EXPECT_EQ(m_controller.QueryResults().RowCount(), 0);
  EXPECT_FALSE(m_controller.IsQueryAlive());

  // The check reads the whole text; the query reads its leading number, and a range with a bound
  // of -1 still filters. Closing checks again.
  Select(dialog, {"Art"});
  Click(dialog, {kBidsRange, kSortPrice});
  Type(dialog, {{kBidsFromEdit, "-1 bids"}, {kBidsToEdit, "5"}});
  Click(dialog, {kStartQuery});
  EXPECT_TRUE(m_controller.IsQueryRunning());
  ASSERT_EQ(m_started.size(), 2u);
  EXPECT_EQ(m_started[1].bids, FilterSpec::Between(-1, 5));
  EXPECT_EQ(m_started[1].sort, query::SortColumn::Price);
  ASSERT_EQ(m_messages.Messages().size(), 3u);
  EXPECT_EQ(m_messages.Messages()[1].text, "Bid Count \"From\": please enter a whole number from 0 to 500.");
  EXPECT_NE(dialog.result(), QDialog::Accepted);

  // What is no number shows the last good value again; a number out of range is kept as typed, so
  // what the dialog shows is what it saves.
  Save(dialog, "failed.sbqry");
  EXPECT_EQ(dialog.edit(kBidsFromEdit)->text(), "0");
  Type(dialog, {{kBidsFromEdit, "900"}});
  Save(dialog, "failed.sbqry");
  EXPECT_EQ(dialog.CollectQuery().bids.from, 900);
  const std::size_t said = m_messages.Messages().size();
  Type(dialog, {{kBidsFromEdit, "1"}});
  Click(dialog, {kStartQuery});
  EXPECT_EQ(dialog.result(), QDialog::Accepted);
  EXPECT_EQ(m_messages.Messages().size(), said);
}

}  // namespace
}  // namespace gavelscope::ui
