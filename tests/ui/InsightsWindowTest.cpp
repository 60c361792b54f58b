// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "ui/InsightsWindow.h"

#include <QApplication>
#include <QBarSeries>
#include <QBarSet>
#include <QChart>
#include <QClipboard>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QDir>
#include <QFileInfo>
#include <QHorizontalBarSeries>
#include <QLocale>
#include <QMenu>
#include <QPushButton>
#include <QScatterSeries>
#include <QTableWidget>
#include <QTest>
#include <QTimer>

#include <map>
#include <thread>

#include "WindowTestSupport.h"
#include "insights/Statistics.h"
#include "support/SandboxFixture.h"
#include "ui/AnimatedPicture.h"

namespace gavelscope::ui {
namespace {

using sites::Site;
using Record = hotitems::CItemListCtrl::RecordPtr;

Record Item(const std::string& price, const std::string& bids) {
  auto record = std::make_shared<hotitems::CHotItemRecord>();
  record->SetTitle("Lot");
  record->SetPrice(price);
  record->SetBids(bids);
  return record;
}

const std::string kPound = "\xA3";  // as Windows-1252 page text has it

// Priced and unpriced rows, with and without bids, in both currencies.
std::vector<Record> Rows(int n) {
  const std::string kPrices[] = {"$1.00",    "$12.50", kPound + "7.25",     "$1,234.56",    "GBP 12.50",
                                 "AU $3.00", "$99.99", kPound + "1,020.00", kPound + "0.99"};
  static const char* const kBids[] = {"-", "3", "41", "7", "0", "12"};
  std::vector<Record> rows;
  for (int i = 0; i < n; ++i) rows.push_back(Item(kPrices[i % 9], kBids[i % 6]));
  return rows;
}

insights::ListStatistics Summarised(const std::vector<Record>& rows, std::optional<Site> site) {
  std::vector<insights::ItemFigures> figures;
  for (const Record& row : rows)
    figures.push_back(insights::FiguresOf(*row, site.value_or(insights::HistorySiteOf(*row))));
  return insights::Summarise(figures);
}

// The unrounded figures the table holds, by their names.
std::map<QString, double> Numbers(const CInsightsWindow& window) {
  std::map<QString, double> numbers;
  const QTableWidget& table = *window.numbers();
  for (int row = 0; row < table.rowCount(); ++row)
    numbers[table.item(row, 0)->text()] = table.item(row, 1)->data(Qt::UserRole).toDouble();
  return numbers;
}

void ExpectShown(const CInsightsWindow& window, const insights::ListStatistics& expected) {
  std::map<QString, double> numbers = Numbers(window);
  EXPECT_EQ(numbers["Rows"], expected.count);
  EXPECT_EQ(numbers["Rows with bids"], expected.withBids);
  EXPECT_DOUBLE_EQ(numbers["Bids median"], expected.bids.median);
  EXPECT_DOUBLE_EQ(numbers["Bids mean"], expected.bids.mean);
  EXPECT_EQ(numbers["Bids highest"], expected.bids.max);
  for (const auto& [currency, price] : expected.currencies) {
    const QString code = QString::fromLatin1(insights::CurrencyCode(currency).data(), 3);
    const std::pair<const char*, double> figures[] = {{" lowest", price.min},    {" lower quartile", price.q1},
                                                      {" median", price.median}, {" upper quartile", price.q3},
                                                      {" highest", price.max},   {" mean", price.mean}};
    for (const auto& [name, value] : figures) EXPECT_DOUBLE_EQ(numbers[code + name], value) << name;
  }
  // The first currency's charts: ten buckets of rows, and a point for each priced row.
  const insights::PriceSummary& first = expected.currencies.begin()->second;
  QBarSet* bars = static_cast<QBarSeries*>(window.chart(InsightsChart::Histogram)->series().front())->barSets().front();
  ASSERT_EQ(bars->count(), insights::kHistogramBuckets);
  for (int i = 0; i < bars->count(); ++i) EXPECT_EQ(bars->at(i), first.histogram[static_cast<std::size_t>(i)].count);
  // A mark per priced row, up to the most the scatter draws.
  const int marks = static_cast<QScatterSeries*>(window.chart(InsightsChart::Scatter)->series().front())->count();
  if (first.count <= CInsightsWindow::kScatterMarks) {
    EXPECT_EQ(marks, first.count);
  }
  EXPECT_LE(marks, CInsightsWindow::kScatterMarks);
}

class InsightsWindowTest : public IdleWindowTest {
 protected:
  CInsightsWindow& Open() {
    QTest::keyClick(&m_window, Qt::Key_F2);
    EXPECT_NE(m_window.insights(), nullptr);
    CInsightsWindow& insights = *m_window.insights();
    EXPECT_TRUE(ProcessEventsUntil([&] { return insights.IsCurrent(); }));
    return insights;
  }
  bool ShowsRows(const QString& caption) {
    return ProcessEventsUntil(
        [&] { return m_window.insights()->IsCurrent() && m_window.insights()->caption() == caption; });
  }
};

TEST_F(InsightsWindowTest, F2AndTheFaceMenuOpenOneWindowOfItsOwnWithTheQuerysFigures) {
  const std::vector<Record> rows = Rows(40);
  m_controller.QueryResults().Assign(rows);
  m_window.ViewFromTray(app::Tab::Query);
  CInsightsWindow& insights = Open();
  EXPECT_TRUE(insights.isVisible() && insights.isWindow() && insights.parent() == nullptr);
  ASSERT_TRUE(ShowsRows(QStringLiteral("Hot Item Query \u2014 USA \u2014 40 rows")));
  ExpectShown(insights, Summarised(rows, Site::USA));

  // The bare face's menu keeps About first and raises the same window.
  insights.close();
  QStringList entries;
  QTimer::singleShot(0, [&] {
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    for (QAction* action : menu->actions()) entries.append(action->text());
    menu->actions().back()->trigger();
    menu->close();
  });
  QContextMenuEvent click(QContextMenuEvent::Mouse, QPoint(600, 20), m_window.mapToGlobal(QPoint(600, 20)));
  QApplication::sendEvent(&m_window, &click);
  EXPECT_EQ(entries, QStringList({"&About Gavelscope...", "&Insights...\tF2"}));
  EXPECT_EQ(m_window.insights(), &insights);
  EXPECT_TRUE(insights.isVisible());
}

TEST_F(InsightsWindowTest, TheViewFollowsRowsAsTheyArriveAndTheTabAndSite) {
  m_window.ViewFromTray(app::Tab::Query);
  CInsightsWindow& insights = Open();
  query::QueryDefinition query;  // a UK query: its rows are read by the UK Site's rules
  query.site = Site::UK;
  m_window.StartQuery(query);
  const std::vector<Record> rows = Rows(700);
  // Added one by one from another thread, as the query's jobs add them.
  std::thread job([&] {
    for (const Record& row : rows) m_controller.QueryResults().AppendRow(row);
  });
  job.join();
  ASSERT_TRUE(ShowsRows(QStringLiteral("Hot Item Query \u2014 UK \u2014 700 rows")));
  ExpectShown(insights, Summarised(rows, Site::UK));

  // The UK history: each row priced by its own Site, and the currency switched by the selector.
  m_controller.HotItemList(Site::UK).Assign(Rows(30));
  QTest::mouseClick(&m_window, Qt::LeftButton, {}, m_window.flag(Site::UK)->geometry().center());
  QTest::mouseClick(&m_window, Qt::LeftButton, {}, FaceRegionRect(FaceRegion::TabHotItems).center());
  ASSERT_TRUE(ShowsRows(QStringLiteral("Hot Item History \u2014 UK \u2014 30 rows")));
  const insights::ListStatistics history = Summarised(Rows(30), std::nullopt);
  ASSERT_EQ(history.currencies.size(), 2U);
  ExpectShown(insights, history);
  auto* currency = insights.findChild<QComboBox*>();
  ASSERT_TRUE(currency != nullptr && currency->isVisible());
  currency->setCurrentIndex(1);
  ASSERT_TRUE(ProcessEventsUntil([&] { return insights.IsCurrent(); }));
  const auto* scatter = static_cast<QScatterSeries*>(insights.chart(InsightsChart::Scatter)->series().front());
  EXPECT_EQ(scatter->count(), history.currencies.rbegin()->second.count);

  // Beyond kScatterMarks priced rows, rows that share a spot of the plot share its mark.
  std::vector<Record> many;
  for (int i = 0; i < 6000; ++i) {
    many.push_back(Item(kPound + std::to_string(1 + i % 997) + ".00", std::to_string(i % 50)));
  }
  m_controller.HotItemList(Site::UK).Assign(many);
  ASSERT_TRUE(ShowsRows(QStringLiteral("Hot Item History \u2014 UK \u2014 6,000 rows")));
  ExpectShown(insights, Summarised(many, std::nullopt));
  EXPECT_GT(scatter->count(), 100);
}

TEST_F(InsightsWindowTest, TheAuctionTabsChartTheLargestTwentySubcategories) {
  auctions::CAuctionListCtrl& list = m_controller.AuctionList(Site::USA);
  for (int i = 0; i < 30; ++i) {
    // Repeated names ("Other" under many categories) each keep a bar of their own.
    list.AppendRow(
        {i % 2 ? "Other" : "Pottery " + std::to_string(i), i == 5 ? "n/a" : std::to_string(i * 100), nullptr});
  }
  CInsightsWindow& insights = Open();
  ASSERT_TRUE(ShowsRows(QStringLiteral("Todays Auctions \u2014 USA \u2014 30 sub-categories")));
  QBarSet* bars =
      static_cast<QHorizontalBarSeries*>(insights.chart(InsightsChart::Auctions)->series().front())->barSets().front();
  ASSERT_EQ(bars->count(), CInsightsWindow::kLargestSubcategories);
  EXPECT_EQ(bars->at(19), 2900);  // the largest stands at the top
  EXPECT_EQ(bars->at(0), 1000);
  EXPECT_EQ(Numbers(insights)["Auctions"], 100 * (29 * 30 / 2 - 5));
}

TEST_F(InsightsWindowTest, ChartsSaveAsPicturesAndNumbersCopyAsTabSeparatedLines) {
  m_controller.HotItemList(Site::USA).Assign(Rows(14));
  m_window.ViewFromTray(app::Tab::HotItems);
  CInsightsWindow& insights = Open();
  for (InsightsChart chart : {InsightsChart::Histogram, InsightsChart::Scatter}) {
    const std::filesystem::path file = m_folder / ("chart" + std::to_string(static_cast<int>(chart)) + ".png");
    ASSERT_TRUE(insights.SaveChart(chart, QString::fromStdString(file.string())));
    const QImage picture(QString::fromStdString(file.string()));
    EXPECT_FALSE(picture.isNull() || picture.size().isEmpty());
  }
  // The button asks where, through the window's file chooser; a file that cannot be written says so.
  m_messages.chosenFile = m_folder / "missing-folder" / "chart.png";
  QTest::mouseClick(insights.findChildren<QPushButton*>().front(), Qt::LeftButton);
  ASSERT_EQ(m_messages.Messages().size(), 1U);
  EXPECT_EQ(m_messages.Messages()[0].text, "Cannot write " + m_messages.chosenFile->string());

  QTableWidget& table = *insights.numbers();
  table.setRangeSelected(QTableWidgetSelectionRange(0, 0, 1, 1), true);
  QTest::keyClick(&table, Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QApplication::clipboard()->text(), "Rows\t14\nRows with bids\t" + table.item(1, 1)->text());
}

// Real listing pages' price and bid texts, through a query of the window on the sandbox; the picture
// of the window it leaves in the build tree is the README's.
class InsightsOnSandboxTest : public testing::SandboxTest {
 protected:
  testing::TempFolder m_folder;
  testing::RecordingMessages m_messages;
  testing::RecordingBrowser m_browser;
};

TEST_F(InsightsOnSandboxTest, AQuerysResultsAreDescribedByTheirScrapedPricesAndBids) {
  CMainDialog window({.profile = sites::CompiledProfile(),
                      .net = SandboxNetOptions(),
                      .cacheFolder = m_folder.path(),
                      .queryPollInterval = std::chrono::milliseconds(200)},
                     &m_messages, &m_browser);
  window.show();
  window.Start(false);
  query::QueryDefinition query;
  query.site = Site::USA;
  query.pageDepth = 3;
  query.categories = {"Antiques", "Books", "Collectibles"};
  ASSERT_TRUE(window.StartQuery(query));
  const auto said = [&](const std::string& title) {
    return std::ranges::any_of(m_messages.Messages(), [&](const base::UserMessage& m) { return m.title == title; });
  };
  ASSERT_TRUE(ProcessEventsUntil([&] { return said("Search Complete"); }));
  window.ViewFromTray(app::Tab::Query);
  QTest::keyClick(&window, Qt::Key_F2);
  CInsightsWindow& insights = *window.insights();
  const std::vector<Record> rows = window.controller().QueryResults().Rows();
  ASSERT_GT(rows.size(), 20U);
  const QString caption =
      "Hot Item Query \u2014 USA \u2014 " + QLocale(QLocale::English).toString(qlonglong(rows.size())) + " rows";
  ASSERT_TRUE(ProcessEventsUntil([&] { return insights.IsCurrent(); }));
  ASSERT_EQ(insights.caption(), caption);
  ExpectShown(insights, Summarised(rows, Site::USA));

  const QString picture = QStringLiteral(GAVELSCOPE_INSIGHTS_PICTURE);
  ASSERT_TRUE(QDir().mkpath(QFileInfo(picture).path()));
  ASSERT_TRUE(insights.grab().save(picture, "PNG"));
}

}  // namespace
}  // namespace gavelscope::ui
