// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "ui/InsightsWindow.h"

#include <QApplication>
#include <QBarCategoryAxis>
#include <QBarSeries>
#include <QBarSet>
#include <QChart>
#include <QChartView>
#include <QClipboard>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QGraphicsScene>
#include <QGraphicsView>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QHorizontalBarSeries>
#include <QKeyEvent>
#include <QLabel>
#include <QLocale>
#include <QLogValueAxis>
#include <QMenu>
#include <QPainter>
#include <QPushButton>
#include <QScatterSeries>
#include <QTabWidget>
#include <QTableWidget>
#include <QVBoxLayout>
#include <QValueAxis>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "insights/Statistics.h"
#include "ui/ControlModels.h"
#include "ui/GuiThread.h"

namespace gavelscope::ui {

// One reading of the described list, made on the window's worker and shown on its thread.
struct InsightsDescription {
  std::uint64_t generation = 0;
  std::uint64_t subjectGeneration = 0;
  InsightsSubject subject;
  long rows = 0;
  // Item lists.
  insights::ListStatistics statistics;
  std::map<insights::Currency, QList<QPointF>> points;  // (price, bids) of each priced row
  // The left end of each currency's price axis, below its lowest price above 0.
  std::map<insights::Currency, double> priceFloor;
  // Auction lists.
  double auctions = 0;
  double medianCount = 0;
  long largestCount = 0;
  std::vector<std::pair<QString, long>> largest;  // largest count first
};

namespace {

using insights::Currency;
using sites::Site;

bool DescribesAuctions(const InsightsSubject& subject) {
  return subject.tab == app::Tab::Keywords || subject.tab == app::Tab::Auctions;
}

QString Number(double value, int decimals) {
  return QLocale(QLocale::English).toString(value, 'f', decimals);
}

QString CurrencyName(Currency currency) {
  return QString::fromLatin1(insights::CurrencyCode(currency).data(),
                             static_cast<qsizetype>(insights::CurrencyCode(currency).size()));
}

// The axis of `chart` along `orientation`, made by the constructor below.
template <class Axis>
Axis* AxisOf(QChart* chart, Qt::Orientation orientation) {
  return static_cast<Axis*>(chart->axes(orientation).front());
}

template <class Series>
Series* SeriesOf(QChart* chart) {
  return static_cast<Series*>(chart->series().front());
}

QChart* NewChart(const QString& title, QAbstractSeries* series, QAbstractAxis* x, QAbstractAxis* y) {
  auto* chart = new QChart;
  chart->setTitle(title);
  chart->legend()->hide();
  chart->addSeries(series);
  chart->addAxis(x, Qt::AlignBottom);
  chart->addAxis(y, Qt::AlignLeft);
  series->attachAxis(x);
  series->attachAxis(y);
  return chart;
}

QValueAxis* NewValueAxis(const QString& title, const char* format) {
  auto* axis = new QValueAxis;
  axis->setTitleText(title);
  axis->setLabelFormat(QString::fromLatin1(format));
  return axis;
}

QLogValueAxis* NewPriceAxis() {
  auto* axis = new QLogValueAxis;
  axis->setBase(10);
  axis->setLabelFormat(QStringLiteral("%g"));
  axis->setMinorTickCount(-1);
  return axis;
}

// One picture the series stamps at each point: cheaper to paint than a shape per mark.
QImage PointMarker(QColor colour) {
  QImage marker(7, 7, QImage::Format_ARGB32_Premultiplied);
  marker.fill(Qt::transparent);
  QPainter painter(&marker);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  colour.setAlpha(160);
  painter.setBrush(colour);
  painter.drawEllipse(QRectF(0.5, 0.5, 6, 6));
  return marker;
}

// Bucket edges short enough for ten of them to stand side by side: "0.99", "15.7", "629", "1.6k".
QString Compact(double value) {
  if (value >= 1000) return Number(value / 1000, value >= 9950 ? 0 : 1) + u'k';
  return Number(value, value >= 100 ? 0 : value >= 10 ? 1 : 2);
}

// The prices of the currency the selector shows, or the end of the description's currencies.
auto ChosenPrices(const InsightsDescription& description, const QComboBox& selector) {
  const QVariant chosen = selector.currentData();
  return chosen.isValid() ? description.statistics.currencies.find(static_cast<Currency>(chosen.toInt()))
                          : description.statistics.currencies.end();
}

// The numbers table: Ctrl+C and its menu's Copy take the selected cells as tab-separated lines (the
// whole table when nothing is selected), the way spreadsheets paste them.
class NumbersTable : public QTableWidget {
 public:
  explicit NumbersTable(QWidget* parent) : QTableWidget(0, 2, parent) {
    setHorizontalHeaderLabels({QStringLiteral("Figure"), QStringLiteral("Value")});
    verticalHeader()->hide();
    horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    horizontalHeader()->setStretchLastSection(true);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
  }

  void Copy() {
    QModelIndexList cells = selectionModel()->selectedIndexes();
    if (cells.isEmpty()) {
      for (int row = 0; row < rowCount(); ++row) {
        for (int column = 0; column < columnCount(); ++column) cells.append(model()->index(row, column));
      }
    }
    std::sort(cells.begin(), cells.end(), [](const QModelIndex& a, const QModelIndex& b) {
      return std::pair(a.row(), a.column()) < std::pair(b.row(), b.column());
    });
    QString text;
    for (qsizetype i = 0; i < cells.size(); ++i) {
      if (i > 0) text += cells[i].row() == cells[i - 1].row() ? u'\t' : u'\n';
      text += cells[i].data().toString();
    }
    QApplication::clipboard()->setText(text);
  }

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    if (event->matches(QKeySequence::Copy)) {
      Copy();
      return;
    }
    QTableWidget::keyPressEvent(event);
  }
  void contextMenuEvent(QContextMenuEvent* event) override {
    QMenu menu(this);
    connect(menu.addAction(QStringLiteral("&Copy")), &QAction::triggered, this, [this] { Copy(); });
    menu.exec(event->globalPos());
  }
};

struct Figure {
  QString name;
  double value;
  int decimals;
};

std::vector<Figure> ItemFigures(const insights::ListStatistics& statistics) {
  std::vector<Figure> figures{{QStringLiteral("Rows"), double(statistics.count), 0},
                              {QStringLiteral("Rows with bids"), double(statistics.withBids), 0}};
  for (const auto& [currency, price] : statistics.currencies) {
    const QString code = CurrencyName(currency);
    figures.insert(figures.end(), {{QStringLiteral("Rows priced in %1").arg(code), double(price.count), 0},
                                   {code + QStringLiteral(" lowest"), price.min, 2},
                                   {code + QStringLiteral(" lower quartile"), price.q1, 2},
                                   {code + QStringLiteral(" median"), price.median, 2},
                                   {code + QStringLiteral(" upper quartile"), price.q3, 2},
                                   {code + QStringLiteral(" highest"), price.max, 2},
                                   {code + QStringLiteral(" mean"), price.mean, 2}});
  }
  figures.insert(figures.end(), {{QStringLiteral("Bids median"), statistics.bids.median, 1},
                                 {QStringLiteral("Bids mean"), statistics.bids.mean, 2},
                                 {QStringLiteral("Bids highest"), double(statistics.bids.max), 0}});
  return figures;
}

// The right end of a price axis, with room after the highest price (that price itself when the
// room would take it beyond any double).
double Ceiling(double highest) {
  return std::isfinite(highest * 1.25) ? highest * 1.25 : highest;
}

// The scatter's points, at most kScatterMarks of them: Qt Charts makes a graphics item of each mark,
// and making tens of thousands holds the window's thread for seconds. Beyond that many, points
// that fall into one cell of a grid over the plot share a mark (the first of them), the grid
// coarsening until the marks are few enough; at the plot's size its finest cells are a few pixels.
QList<QPointF> Thinned(QList<QPointF> points, double floor, double ceiling, double maxBids) {
  if (points.size() <= CInsightsWindow::kScatterMarks) return points;
  const double left = std::log(floor);
  const double width = std::max(std::log(ceiling) - left, 1e-9);
  const double height = std::max(maxBids, 1.0);
  for (double scale = 1;; scale *= 0.75) {
    const std::int64_t columns = std::max<std::int64_t>(2, std::llround(160 * scale));
    const std::int64_t rows = std::max<std::int64_t>(2, std::llround(80 * scale));
    std::unordered_set<std::int64_t> taken;
    QList<QPointF> marks;
    for (const QPointF& point : points) {
      const auto column = static_cast<std::int64_t>((std::log(point.x()) - left) / width * double(columns - 1));
      const auto row = static_cast<std::int64_t>(point.y() / height * double(rows - 1));
      if (taken.insert(column * rows + row).second) marks.append(point);
    }
    if (marks.size() <= CInsightsWindow::kScatterMarks || columns == 2) return marks;
  }
}

std::vector<Figure> AuctionFigures(const InsightsDescription& description) {
  return {{QStringLiteral("Sub-categories"), double(description.rows), 0},
          {QStringLiteral("Auctions"), description.auctions, 0},
          {QStringLiteral("Median count"), description.medianCount, 1},
          {QStringLiteral("Largest count"), double(description.largestCount), 0}};
}

void DescribeItems(const hotitems::CItemListCtrl& list, bool history, Site querySite,
                   InsightsDescription& description) {
  std::vector<insights::ItemFigures> figures;
  {
    // The snapshot holds the records, not the list: rows arriving meanwhile wait for the next reading.
    const std::vector<hotitems::CItemListCtrl::RecordPtr> rows = list.Rows();
    figures = history ? insights::HistoryFigures(rows) : insights::QueryFigures(rows, querySite);
  }
  description.rows = static_cast<long>(figures.size());
  description.statistics = insights::Summarise(figures);
  // Prices spread over orders of magnitude, as the histogram's buckets do, so the scatter's price
  // axis is logarithmic; a price of 0, which has no place on it, is drawn at the axis' left end.
  for (const auto& [currency, price] : description.statistics.currencies) {
    description.points[currency].reserve(price.count);
    description.priceFloor[currency] = price.max > 0 ? price.max : 1;
  }
  for (const insights::ItemFigures& item : figures) {
    if (item.price && item.price->amount > 0) {
      double& floor = description.priceFloor[item.price->currency];
      floor = std::min(floor, item.price->amount);
    }
  }
  for (auto& [currency, floor] : description.priceFloor) floor /= 1.25;
  for (const insights::ItemFigures& item : figures) {
    if (!item.price) continue;
    const double at = std::max(item.price->amount, description.priceFloor[item.price->currency]);
    description.points[item.price->currency].append(QPointF(at, double(item.bids)));
  }
  for (auto& [currency, points] : description.points) {
    const double floor = description.priceFloor[currency];
    points = Thinned(std::move(points), floor, Ceiling(description.statistics.currencies[currency].max),
                     double(description.statistics.bids.max));
  }
}

void DescribeAuctions(const auctions::CAuctionListCtrl& list, InsightsDescription& description) {
  struct Counted {
    std::string name;
    long count;
    std::size_t order;
  };
  std::vector<Counted> counted;
  {
    const std::vector<auctions::AuctionListRow> rows = list.Rows();
    description.rows = static_cast<long>(rows.size());
    for (const auto& row : rows) {
      if (const std::optional<long> count = insights::ReadCount(row.count))
        counted.push_back({row.name, *count, counted.size()});
    }
  }
  // Summed as doubles: counts read from a page may add up beyond any long.
  std::vector<double> counts;
  counts.reserve(counted.size());
  for (const Counted& row : counted) {
    counts.push_back(double(row.count));
    description.auctions += double(row.count);
    description.largestCount = std::max(description.largestCount, row.count);
  }
  std::sort(counts.begin(), counts.end());
  if (!counts.empty()) description.medianCount = insights::Quantile(counts, 0.5);
  // Equal counts keep the list's order, as the list's own sort does.
  const auto shown = std::min<std::size_t>(counted.size(), CInsightsWindow::kLargestSubcategories);
  std::partial_sort(
      counted.begin(), counted.begin() + static_cast<std::ptrdiff_t>(shown), counted.end(),
      [](const Counted& a, const Counted& b) { return a.count != b.count ? a.count > b.count : a.order < b.order; });
  for (std::size_t i = 0; i < shown; ++i)
    description.largest.emplace_back(FromPageText(counted[i].name), counted[i].count);
}

}  // namespace

CInsightsWindow::CInsightsWindow(app::CRunController& run, base::IUserMessages& messages, std::filesystem::path store,
                                 QWidget* parent)
    : QWidget(parent, Qt::Window),
      m_run(run),
      m_messages(messages),
      m_current(std::make_unique<InsightsDescription>()),
      m_worker([this](Reading job, std::stop_token stop) { Work(job, stop); }) {
  setWindowTitle(QStringLiteral("Gavelscope Insights"));
  // Closing this window alone never ends the program, also while the main window sits in the tray.
  setAttribute(Qt::WA_QuitOnClose, false);
  resize(980, 680);

  m_caption = new QLabel(this);
  QFont bold = m_caption->font();
  bold.setBold(true);
  bold.setPointSizeF(bold.pointSizeF() * 1.2);
  m_caption->setFont(bold);
  m_numbers = new NumbersTable(this);
  m_numbers->setMinimumWidth(260);
  m_currency = new QComboBox(this);
  m_currency->hide();
  connect(m_currency, &QComboBox::currentIndexChanged, this, [this] { ShowCurrency(); });

  auto* scatter = new QScatterSeries;
  scatter->setMarkerSize(7);
  scatter->setLightMarker(PointMarker(QColor(32, 74, 135)));
  m_histogram = new QChartView(NewChart(QStringLiteral("Prices"), new QBarSeries, new QBarCategoryAxis,
                                        NewValueAxis(QStringLiteral("Rows"), "%d")),
                               this);
  m_scatter = new QChartView(NewChart(QStringLiteral("Bids against price"), scatter, NewPriceAxis(),
                                      NewValueAxis(QStringLiteral("Bids"), "%d")),
                             this);
  // Sub-category names read along bars lying down; the count axis runs along the bottom.
  auto* bars = new QHorizontalBarSeries;
  m_auctions = new QChartView(NewChart(QStringLiteral("Largest sub-categories by auctions"), bars,
                                       NewValueAxis(QStringLiteral("Auctions"), "%d"), new QBarCategoryAxis),
                              this);
  for (QChartView* view : {m_histogram, m_scatter, m_auctions}) view->setRenderHint(QPainter::Antialiasing);

  m_itemPanes = new QWidget(this);
  auto* itemLayout = new QVBoxLayout(m_itemPanes);
  itemLayout->setContentsMargins(0, 0, 0, 0);
  itemLayout->addWidget(m_currency, 0, Qt::AlignLeft);
  itemLayout->addWidget(ChartPane(InsightsChart::Histogram, m_histogram), 1);
  itemLayout->addWidget(ChartPane(InsightsChart::Scatter, m_scatter), 1);
  m_auctionPane = ChartPane(InsightsChart::Auctions, m_auctions);

  auto* statistics = new QWidget(this);
  auto* body = new QHBoxLayout;
  body->addWidget(m_numbers);
  body->addWidget(m_itemPanes, 1);
  body->addWidget(m_auctionPane, 1);
  auto* statisticsLayout = new QVBoxLayout(statistics);
  statisticsLayout->addWidget(m_caption);
  statisticsLayout->addLayout(body, 1);
  m_trends = new CTrendsPage(m_run, std::move(store),
                             [this](QChartView* view) { return ChartPane(InsightsChart::Trends, view); }, this);
  m_pages = new QTabWidget(this);
  m_pages->addTab(statistics, QStringLiteral("&Statistics"));
  m_pages->addTab(m_trends, QStringLiteral("&Trends"));
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(4, 4, 4, 4);
  layout->addWidget(m_pages);

  m_coalesce.setSingleShot(true);
  m_coalesce.setInterval(kCoalesceMilliseconds);
  connect(&m_coalesce, &QTimer::timeout, this, [this] { Request(); });
  m_marksTimer.setSingleShot(true);
  m_marksTimer.setInterval(0);
  connect(&m_marksTimer, &QTimer::timeout, this, [this] {
    if (m_scatterStale) ShowScatter();
    ShowMarks();
  });
  Follow(m_subject);
}

CInsightsWindow::~CInsightsWindow() = default;

QWidget* CInsightsWindow::ChartPane(InsightsChart which, QChartView* view) {
  auto* pane = new QWidget(this);
  auto* save = new QPushButton(QStringLiteral("Save as PNG..."), pane);
  connect(save, &QPushButton::clicked, this, [this, which] { AskAndSave(which); });
  auto* layout = new QVBoxLayout(pane);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(view, 1);
  layout->addWidget(save, 0, Qt::AlignRight);
  return pane;
}

void CInsightsWindow::ShowTrends(bool trends) {
  m_pages->setCurrentWidget(trends ? static_cast<QWidget*>(m_trends) : m_pages->widget(0));
}

void CInsightsWindow::Follow(const InsightsSubject& subject) {
  m_subject = subject;
  m_trends->Follow(subject.site);
  ++m_subjectGeneration;
  // Only the charts of the list's kind are laid out and drawn, from the first paint on.
  m_itemPanes->setVisible(!DescribesAuctions(subject));
  m_auctionPane->setVisible(DescribesAuctions(subject));
  m_coalesce.stop();
  if (isVisible()) Request();
}

const base::ObservableControl& CInsightsWindow::ListOf(const InsightsSubject& subject) const {
  switch (subject.tab) {
    case app::Tab::Query:
      return m_run.QueryResults();
    case app::Tab::HotItems:
      return m_run.HotItemList(subject.site);
    case app::Tab::Keywords:
    case app::Tab::Auctions:
      break;
  }
  return m_run.AuctionList(subject.site);
}

void CInsightsWindow::ListChanged(const base::ObservableControl& list) {
  // A hidden window reads nothing; showing it reads the list afresh.
  if (&list != &ListOf(m_subject) || !isVisible()) return;
  if (!m_coalesce.isActive()) m_coalesce.start();
}

void CInsightsWindow::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  m_coalesce.stop();
  Request();
}

void CInsightsWindow::Request() {
  ++m_requested;
  m_worker.Hand(Reading{m_requested, m_subjectGeneration, m_subject});
}

void CInsightsWindow::Work(const Reading& job, const std::stop_token& stop) {
  auto description = std::make_shared<InsightsDescription>(Describe(job.subject));
  description->generation = job.generation;
  description->subjectGeneration = job.subjectGeneration;
  if (stop.stop_requested()) return;
  OnGuiThread(this, [this, description] { Show(*description); });
}

InsightsDescription CInsightsWindow::Describe(const InsightsSubject& subject) const {
  InsightsDescription description;
  description.subject = subject;
  if (DescribesAuctions(subject)) {
    DescribeAuctions(m_run.AuctionList(subject.site), description);
  } else if (subject.tab == app::Tab::Query) {
    DescribeItems(m_run.QueryResults(), false, subject.querySite, description);
  } else {
    DescribeItems(m_run.HotItemList(subject.site), true, subject.site, description);
  }
  return description;
}

QString CInsightsWindow::caption() const {
  return m_caption->text();
}

QChart* CInsightsWindow::chart(InsightsChart which) const {
  switch (which) {
    case InsightsChart::Histogram:
      return m_histogram->chart();
    case InsightsChart::Scatter:
      return m_scatter->chart();
    case InsightsChart::Trends:
      return m_trends->chart();
    case InsightsChart::Auctions:
      break;
  }
  return m_auctions->chart();
}

void CInsightsWindow::Show(const InsightsDescription& description) {
  // The reading of a list the window has since left is dropped; the one of the new list follows.
  if (description.subjectGeneration != m_subjectGeneration) return;
  const bool sameList = m_current->subjectGeneration == description.subjectGeneration;
  m_shown = description.generation;
  *m_current = description;

  const InsightsSubject& subject = description.subject;
  const bool auctions = DescribesAuctions(subject);
  const Site site = subject.tab == app::Tab::Query ? subject.querySite : subject.site;
  const QString list = auctions                            ? QStringLiteral("Todays Auctions")
                       : subject.tab == app::Tab::HotItems ? QStringLiteral("Hot Item History")
                                                           : QStringLiteral("Hot Item Query");
  const QString unit = auctions
                           ? (description.rows == 1 ? QStringLiteral("sub-category") : QStringLiteral("sub-categories"))
                           : (description.rows == 1 ? QStringLiteral("row") : QStringLiteral("rows"));
  m_caption->setText(QStringLiteral("%1 \u2014 %2 \u2014 %3 %4")
                         .arg(list, site == Site::USA ? QStringLiteral("USA") : QStringLiteral("UK"),
                              Number(double(description.rows), 0), unit));

  const std::vector<Figure> figures = auctions ? AuctionFigures(description) : ItemFigures(description.statistics);
  m_numbers->setRowCount(static_cast<int>(figures.size()));
  for (int row = 0; row < static_cast<int>(figures.size()); ++row) {
    const Figure& figure = figures[static_cast<std::size_t>(row)];
    // Cells are changed in place, so that only the figures that moved are drawn again.
    for (int column : {0, 1}) {
      if (m_numbers->item(row, column) == nullptr) m_numbers->setItem(row, column, new QTableWidgetItem);
    }
    QTableWidgetItem* value = m_numbers->item(row, 1);
    m_numbers->item(row, 0)->setText(figure.name);
    value->setText(Number(figure.value, figure.decimals));
    // The unrounded figure, for whoever reads the table as data.
    value->setData(Qt::UserRole, figure.value);
    value->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
  }
  if (auctions) {
    QChart* chart = m_auctions->chart();
    auto* series = SeriesOf<QHorizontalBarSeries>(chart);
    series->clear();
    auto* set = new QBarSet(QStringLiteral("Auctions"));
    QStringList names;
    std::set<QString> used;
    // Bars are laid from the bottom up: the largest goes last, to stand at the top. Many categories
    // have a sub-category of the same name ("Other"), and the axis keeps one of each name.
    for (auto it = description.largest.rbegin(); it != description.largest.rend(); ++it) {
      QString name = it->first;
      for (int n = 2; !used.insert(name).second; ++n) name = QStringLiteral("%1 (%2)").arg(it->first).arg(n);
      names.append(name);
      *set << double(it->second);
    }
    series->append(set);
    AxisOf<QBarCategoryAxis>(chart, Qt::Vertical)->setCategories(names);
    AxisOf<QValueAxis>(chart, Qt::Horizontal)->setRange(0, std::max(1.0, double(description.largestCount) * 1.05));
    return;
  }

  // The currency chosen stays chosen while the same list still prices rows in it.
  const QVariant chosen = sameList ? m_currency->currentData() : QVariant();
  {
    const QSignalBlocker quiet(m_currency);
    m_currency->clear();
    for (const auto& entry : description.statistics.currencies) {
      m_currency->addItem(CurrencyName(entry.first), static_cast<int>(entry.first));
    }
    const int again = m_currency->findData(chosen);
    m_currency->setCurrentIndex(again >= 0 ? again : 0);
  }
  m_currency->setVisible(m_currency->count() > 1);
  ShowCurrency();
}

void CInsightsWindow::ShowCurrency() {
  const InsightsDescription& description = *m_current;
  const auto price = ChosenPrices(description, *m_currency);
  const bool priced = price != description.statistics.currencies.end();
  const QString code = priced ? CurrencyName(price->first) : QString();

  QChart* histogram = m_histogram->chart();
  auto* bars = SeriesOf<QBarSeries>(histogram);
  bars->clear();
  QStringList buckets;
  long most = 0;
  if (priced) {
    auto* set = new QBarSet(code);
    for (const insights::HistogramBucket& bucket : price->second.histogram) {
      // Axis labels are rich text: a range on two lines fits the width of its bar.
      buckets.append(Compact(bucket.from) + QStringLiteral("\u2013<br>") + Compact(bucket.to));
      *set << double(bucket.count);
      most = std::max(most, bucket.count);
    }
    bars->append(set);
  }
  histogram->setTitle(priced ? QStringLiteral("Prices (%1)").arg(code) : QStringLiteral("Prices"));
  AxisOf<QBarCategoryAxis>(histogram, Qt::Horizontal)->setCategories(buckets);
  auto* rows = AxisOf<QValueAxis>(histogram, Qt::Vertical);
  rows->setRange(0, std::max(1.0, double(most) * 1.1));
  rows->applyNiceNumbers();

  // The scatter follows in a turn of its own, so the window's thread draws one chart at a time.
  m_scatterStale = true;
  m_marksTimer.start();
}

void CInsightsWindow::ShowScatter() {
  m_scatterStale = false;
  const InsightsDescription& description = *m_current;
  const auto price = ChosenPrices(description, *m_currency);
  const bool priced = price != description.statistics.currencies.end();
  const QString code = priced ? CurrencyName(price->first) : QString();
  QChart* scatter = m_scatter->chart();
  const auto points = priced ? description.points.find(price->first) : description.points.end();
  m_marks = points != description.points.end() ? points->second : QList<QPointF>();
  QString title = priced ? QStringLiteral("Bids against price (%1)").arg(code) : QStringLiteral("Bids against price");
  if (priced && points->second.size() < price->second.count) {
    title += QStringLiteral(": %1 rows in %2 marks")
                 .arg(Number(double(price->second.count), 0), Number(double(points->second.size()), 0));
  }
  scatter->setTitle(title);
  auto* priceAxis = AxisOf<QLogValueAxis>(scatter, Qt::Horizontal);
  priceAxis->setTitleText(priced ? QStringLiteral("Price (%1)").arg(code) : QStringLiteral("Price"));
  if (priced) {
    const double floor = description.priceFloor.at(price->first);
    priceAxis->setRange(floor, Ceiling(std::max(price->second.max, floor)));
  }
  auto* bids = AxisOf<QValueAxis>(scatter, Qt::Vertical);
  bids->setRange(0, std::max(1.0, double(description.statistics.bids.max) * 1.05));
  bids->applyNiceNumbers();
}

void CInsightsWindow::ShowMarks() {
  auto* series = SeriesOf<QScatterSeries>(m_scatter->chart());
  // The series keeps its marks' graphics items and moves them to new points; only the marks beyond
  // those it has are made, kNewMarksPerTurn of them a turn of the event loop.
  const qsizetype shown = std::min<qsizetype>(m_marks.size(), series->count() + kNewMarksPerTurn);
  series->replace(shown == m_marks.size() ? m_marks : m_marks.first(shown));
  if (shown < m_marks.size()) m_marksTimer.start();
}

bool CInsightsWindow::SaveChart(InsightsChart which, const QString& file) {
  const QPixmap picture = chart(which)->scene()->views().front()->grab();
  return !picture.isNull() && picture.save(file, "PNG");
}

void CInsightsWindow::AskAndSave(InsightsChart which) {
  const std::optional<std::filesystem::path> file =
      m_messages.ChooseFile({"Save Chart As Picture", "PNG Picture (*.png)", "png", true});
  if (!file) return;
  if (!SaveChart(which, QString::fromStdString(file->string()))) {
    m_messages.Show({"Cannot write " + file->string(), base::text::kMessageTitle, base::MessageButtons::Ok, true,
                     base::MessageKind::Error});
  }
}

}  // namespace gavelscope::ui
