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
#include <QLineSeries>
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
#include "store/ResearchStore.h"
#include "support/SandboxFixture.h"
#include "support/SiteRun.h"
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
  const auto buttons = insights.findChildren<QPushButton*>();
  QTest::mouseClick(*std::ranges::find_if(buttons, [](QPushButton* b) { return b->isVisible(); }), Qt::LeftButton);
  ASSERT_EQ(m_messages.Messages().size(), 1U);
  EXPECT_EQ(m_messages.Messages()[0].text, "Cannot write " + m_messages.chosenFile->string());

  QTableWidget& table = *insights.numbers();
  table.setRangeSelected(QTableWidgetSelectionRange(0, 0, 1, 1), true);
  QTest::keyClick(&table, Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QApplication::clipboard()->text(), "Rows\t14\nRows with bids\t" + table.item(1, 1)->text());
}

// The store's figures worked out by hand: the lines of the sub-categories that grew, the keyword
// movers, and Record now keeping the lists the window has loaded and nothing else.
TEST_F(InsightsWindowTest, TheTrendsPageDrawsGrowthAndMoversAndRecordsTheLoadedLists) {
  CInsightsWindow& insights = Open();
  insights.ShowTrends(true);
  CTrendsPage& trends = *insights.trends();
  const std::filesystem::path file = m_folder / "research.sqlite";
  ASSERT_TRUE(ProcessEventsUntil([&] { return trends.IsSettled(); }));
  EXPECT_TRUE(trends.status().startsWith("There is no research store at")) << trends.status().toStdString();
  EXPECT_FALSE(std::filesystem::exists(file));  // reading never makes one

  {
    base::Outcome opened;
    auto research = store::ResearchStore::Open(file, {}, opened);
    ASSERT_TRUE(research) << opened.error;
    const auto count = [](const char* name, long n) { return store::AuctionCount{name, "l/" + std::string(name), "", n}; };
    const std::vector<store::SnapshotData> days{
        {Site::USA, store::ParseTime("2026-03-01").value(), {count("A", 10), count("B", 5), count("C", 50)},
         {"lego", "nokia", "vhs"}, {}},
        {Site::USA, store::ParseTime("2026-03-02").value(), {count("A", 20), count("C", 40)}, {"lego"}, {}},
        {Site::USA, store::ParseTime("2026-03-03").value(), {count("A", 40), count("B", 30), count("C", 30)},
         {"nokia", "lego", "dvd"}, {}}};
    std::vector<std::int64_t> ids;
    ASSERT_TRUE(research->Record(days, ids));
  }
  trends.Follow(Site::USA);
  ASSERT_TRUE(ProcessEventsUntil([&] { return trends.IsSettled(); }));
  const QList<QAbstractSeries*> lines = insights.chart(InsightsChart::Trends)->series();
  ASSERT_EQ(lines.size(), 2);  // C shrank
  const auto* a = static_cast<QLineSeries*>(lines[0]);
  const auto* b = static_cast<QLineSeries*>(lines[1]);
  EXPECT_EQ(a->name(), "A");
  EXPECT_EQ(a->points(), QList<QPointF>({{1772323200e3, 10}, {1772409600e3, 20}, {1772496000e3, 40}}));
  EXPECT_EQ(b->points(), QList<QPointF>({{1772323200e3, 5}, {1772496000e3, 30}}));  // not listed on day 2
  QStringList movers;
  const QTableWidget& table = *trends.movers();
  for (int row = 0; row < table.rowCount(); ++row) {
    QStringList cells;
    for (int column = 0; column < 4; ++column) cells.append(table.item(row, column)->text());
    movers.append(cells.join(u'|'));
  }
  // The last two snapshots with keywords: day 2's one against day 3's three.
  EXPECT_EQ(movers, QStringList({"nokia|\u2014|1|new", "dvd|\u2014|3|new", "lego|1|2|\u25BC 1"}));

  // Only the USA has loaded: its list is recorded as it stands, the UK not at all.
  m_controller.AuctionList(Site::USA).AppendRow({"D", "1,234", nullptr});
  m_controller.LoadDone(app::Load::KeywordsUSA).Set();
  m_controller.LoadDone(app::Load::AuctionsUSA).Set();
  QTest::mouseClick(trends.recordButton(), Qt::LeftButton);
  EXPECT_FALSE(trends.recordButton()->isEnabled());
  ASSERT_TRUE(ProcessEventsUntil([&] { return trends.IsSettled(); }));
  EXPECT_TRUE(trends.recordButton()->isEnabled());
  EXPECT_TRUE(trends.status().startsWith(
      "Recorded snapshot 4: usa, 1 auction count, 0 keywords. uk was not recorded: it has not finished loading. "
      "4 snapshots of USA."))
      << trends.status().toStdString();
  base::Outcome opened;
  auto research = store::ResearchStore::Open(file, {}, opened);
  std::vector<store::SnapshotInfo> snapshots;
  ASSERT_TRUE(research && research->Snapshots(std::nullopt, snapshots));
  ASSERT_EQ(snapshots.size(), 4U);
  EXPECT_EQ(std::tie(snapshots[3].site, snapshots[3].auctions, snapshots[3].keywords),
            std::tuple(Site::USA, 1, 0));
  research.reset();

  // A store the user made read-only keeps its snapshots and says why nothing was recorded.
  std::filesystem::permissions(file, std::filesystem::perms::owner_read | std::filesystem::perms::group_read);
  trends.RecordNow();
  ASSERT_TRUE(ProcessEventsUntil([&] { return trends.IsSettled(); }));
  EXPECT_TRUE(trends.status().startsWith("Cannot record a snapshot into " + QString::fromStdString(file.string())))
      << trends.status().toStdString();
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
  // Two other states of the stand-in sites, recorded a day and two days ago, before the window's.
  const std::filesystem::path file = m_folder / "research.sqlite";
  {
    base::Outcome opened;
    auto research = store::ResearchStore::Open(file, {}, opened);
    ASSERT_TRUE(research) << opened.error;
    for (const int daysAgo : {2, 1}) {
      std::string error;
      const auto other = standin::SandboxProcess::Start(
          {GAVELSCOPE_SANDBOX_PYTHON, GAVELSCOPE_SANDBOX_SCRIPT, {"--day", std::to_string(daysAgo)}}, error);
      ASSERT_TRUE(other) << error;
      net::NetOptions net = SandboxNetOptions();
      net.connectTo = other->connectTo();
      testing::SiteRun run({.profile = sites::CompiledProfile(), .net = net, .cacheFolder = m_folder / "other"});
      const std::vector<store::SnapshotData> day{
          run.Snapshot(Site::USA, store::NowUtc() - std::chrono::days(daysAgo)),
          run.Snapshot(Site::UK, store::NowUtc() - std::chrono::days(daysAgo))};
      std::vector<std::int64_t> ids;
      ASSERT_TRUE(research->Record(day, ids));
    }
  }
  CMainDialog window({.profile = sites::CompiledProfile(),
                      .net = SandboxNetOptions(),
                      .cacheFolder = m_folder.path(),
                      .queryPollInterval = std::chrono::milliseconds(200)},
                     &m_messages, &m_browser);
  window.SetResearchStore(file);
  window.show();
  window.Start(false);
  query::QueryDefinition query;
  query.site = Site::USA;
  query.pageDepth = 3;
  query.categories = {"Antiques", "Books", "Collectibles"};
  ASSERT_TRUE(window.StartQuery(query, "antiques.sbqry"));
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

  // Record now keeps both Sites' lists and the query's results as the window holds them; the USA's
  // lines end at the window's counts.
  insights.ShowTrends(true);
  CTrendsPage& trends = *insights.trends();
  ASSERT_TRUE(ProcessEventsUntil([&] {
    return std::ranges::all_of(std::array{app::Load::KeywordsUSA, app::Load::KeywordsUK, app::Load::AuctionsUSA,
                                          app::Load::AuctionsUK},
                               [&](app::Load load) { return window.controller().LoadDone(load).IsSet(); });
  }));
  trends.RecordNow();
  ASSERT_TRUE(ProcessEventsUntil([&] { return trends.IsSettled(); }));
  EXPECT_TRUE(trends.status().startsWith("Recorded snapshot 5: usa, 330 auction counts, ")) << trends.status().toStdString();
  base::Outcome opened;
  auto research = store::ResearchStore::Open(file, {}, opened);
  ASSERT_TRUE(research) << opened.error;
  store::QueryTrend recorded;
  ASSERT_TRUE(research->TrendsQuery("antiques.sbqry", recorded));
  ASSERT_EQ(recorded.points.size(), 1U);
  EXPECT_EQ(recorded.points[0].rows, static_cast<std::int64_t>(rows.size()));
  std::map<std::string, std::optional<long>> now;  // by link
  for (const store::AuctionCount& row : store::AuctionCountsOf(window.controller().AuctionList(Site::USA).Rows())) {
    now[row.link] = row.count;
  }
  store::AuctionHistory history;
  ASSERT_TRUE(research->GrowthHistory(Site::USA, CTrendsPage::kLines, history));
  const QList<QAbstractSeries*> lines = insights.chart(InsightsChart::Trends)->series();
  ASSERT_EQ(lines.size(), CTrendsPage::kLines);
  for (int i = 0; i < CTrendsPage::kLines; ++i) {
    const store::AuctionSeries& grown = history.series[static_cast<std::size_t>(i)];
    ASSERT_EQ(grown.counts.size(), 3U);
    EXPECT_EQ(grown.counts.back(), now.at(grown.link));
    EXPECT_EQ(static_cast<QLineSeries*>(lines[i])->points().back().y(), double(grown.counts.back().value_or(-1)));
  }
  const QString trendsPicture = QStringLiteral(GAVELSCOPE_TRENDS_PICTURE);
  ASSERT_TRUE(insights.grab().save(trendsPicture, "PNG"));
}

}  // namespace
}  // namespace gavelscope::ui
