// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "ui/TrendsPage.h"

#include <QChart>
#include <QChartView>
#include <QDateTime>
#include <QDateTimeAxis>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLegend>
#include <QLineSeries>
#include <QLocale>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>
#include <QValueAxis>

#include <algorithm>
#include <set>
#include <vector>

#include "insights/Formats.h"
#include "store/ResearchStore.h"
#include "ui/GuiThread.h"

namespace gavelscope::ui {

// One reading of the store for one Site, made on the page's worker and shown on its thread.
struct TrendsReading {
  std::uint64_t generation = 0;
  sites::Site site = sites::Site::USA;
  std::int64_t snapshots = 0;
  store::AuctionHistory history;
  store::KeywordTrend keywords;
  // What went wrong reading, or what the last recording did; shown under the chart.
  std::string said;
};

namespace {

using sites::Site;

// Eight colours told apart at a glance, also by most colour-blind eyes; the chart theme's own repeat
// after five.
constexpr QRgb kLineColours[] = {0x1f77b4, 0xff7f0e, 0x2ca02c, 0xd62728, 0x9467bd, 0x8c564b, 0xe377c2, 0x17becf};

QString SiteTitle(Site site) {
  return site == Site::USA ? QStringLiteral("USA") : QStringLiteral("UK");
}

QString Text(const std::string& text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QDateTime TimeOf(const std::string& text) {
  const std::optional<std::chrono::sys_seconds> time = store::ParseTime(text);
  return time ? QDateTime::fromSecsSinceEpoch(time->time_since_epoch().count(), Qt::UTC) : QDateTime();
}

QString Day(const std::string& text) {
  return QLocale(QLocale::English).toString(TimeOf(text), QStringLiteral("d MMM yyyy"));
}

// The movers table: entered, moved, left; each row its keyword, its place before and now, and how
// it moved.
void FillMovers(QTableWidget& table, const store::KeywordTrend& trend) {
  struct Row {
    QString keyword, was, now, move;
  };
  std::vector<Row> rows;
  const QString none = QStringLiteral("\u2014");
  for (const store::KeywordPlace& entered : trend.entered) {
    rows.push_back({Text(entered.keyword), none, QString::number(entered.position), QStringLiteral("new")});
  }
  for (const store::KeywordMove& move : trend.moves) {
    const QString arrow = move.change > 0 ? QStringLiteral("\u25B2 %1").arg(move.change)
                                          : QStringLiteral("\u25BC %1").arg(-move.change);
    rows.push_back({Text(move.keyword), QString::number(move.from), QString::number(move.to), arrow});
  }
  for (const store::KeywordPlace& left : trend.left) {
    rows.push_back({Text(left.keyword), QString::number(left.position), none, QStringLiteral("left")});
  }
  table.setRowCount(static_cast<int>(rows.size()));
  for (int row = 0; row < static_cast<int>(rows.size()); ++row) {
    const Row& values = rows[static_cast<std::size_t>(row)];
    const QString cells[] = {values.keyword, values.was, values.now, values.move};
    for (int column = 0; column < 4; ++column) {
      auto* item = new QTableWidgetItem(cells[column]);
      if (column > 0) item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
      table.setItem(row, column, item);
    }
  }
}

}  // namespace

CTrendsPage::CTrendsPage(app::CRunController& run, std::filesystem::path store,
                         const std::function<QWidget*(QChartView*)>& pane, QWidget* parent)
    : QWidget(parent),
      m_run(run),
      m_store(std::move(store)),
      m_worker([this](Job job, std::stop_token stop) { Work(job, stop); }) {
  m_heading = new QLabel(this);
  QFont bold = m_heading->font();
  bold.setBold(true);
  bold.setPointSizeF(bold.pointSizeF() * 1.2);
  m_heading->setFont(bold);

  auto* chart = new QChart;
  chart->setTitle(QStringLiteral("Sub-categories that grew most"));
  chart->legend()->setAlignment(Qt::AlignRight);
  auto* time = new QDateTimeAxis;
  time->setTitleText(QStringLiteral("Snapshot (UTC)"));
  auto* counts = new QValueAxis;
  counts->setTitleText(QStringLiteral("Auctions"));
  counts->setLabelFormat(QStringLiteral("%d"));
  chart->addAxis(time, Qt::AlignBottom);
  chart->addAxis(counts, Qt::AlignLeft);
  m_chart = new QChartView(chart, this);
  m_chart->setRenderHint(QPainter::Antialiasing);

  m_movers = new QTableWidget(0, 4, this);
  m_movers->setHorizontalHeaderLabels(
      {QStringLiteral("Keyword"), QStringLiteral("Was"), QStringLiteral("Now"), QStringLiteral("Move")});
  m_movers->verticalHeader()->hide();
  m_movers->setWordWrap(false);
  m_movers->verticalHeader()->setDefaultSectionSize(m_movers->fontMetrics().height() + 8);
  m_movers->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
  m_movers->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
  m_movers->setEditTriggers(QAbstractItemView::NoEditTriggers);
  m_movers->setMinimumWidth(240);
  m_movers->setMaximumWidth(320);
  auto* moversTitle = new QLabel(QStringLiteral("Keyword movers"), this);
  auto* moversPane = new QWidget(this);
  auto* moversLayout = new QVBoxLayout(moversPane);
  moversLayout->setContentsMargins(0, 0, 0, 0);
  moversLayout->addWidget(moversTitle);
  moversLayout->addWidget(m_movers, 1);

  m_status = new QLabel(this);
  m_status->setWordWrap(true);
  m_status->setTextInteractionFlags(Qt::TextSelectableByMouse);
  m_record = new QPushButton(QStringLiteral("&Record now"), this);
  m_record->setToolTip(
      QStringLiteral("Keep what the window has loaded (keywords, auction counts and the query's results) in the "
                     "research store, without fetching anything"));
  connect(m_record, &QPushButton::clicked, this, [this] { RecordNow(); });

  auto* body = new QHBoxLayout;
  body->addWidget(pane(m_chart), 3);
  body->addWidget(moversPane, 1);
  auto* foot = new QHBoxLayout;
  foot->addWidget(m_status, 1);
  foot->addWidget(m_record, 0, Qt::AlignTop);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(m_heading);
  layout->addLayout(body, 1);
  layout->addLayout(foot);

  Follow(m_site);
}

CTrendsPage::~CTrendsPage() = default;

QChart* CTrendsPage::chart() const {
  return m_chart->chart();
}

QString CTrendsPage::status() const {
  return m_status->text();
}

bool CTrendsPage::IsSettled() const {
  return !m_recording && m_shown == m_requested;
}

void CTrendsPage::Follow(Site site) {
  m_site = site;
  m_heading->setText(QStringLiteral("Trends \u2014 %1").arg(SiteTitle(site)));
  if (isVisible()) Request(false);
}

void CTrendsPage::SetQuery(std::optional<RecordableQuery> query) {
  m_query = std::move(query);
}

void CTrendsPage::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  Request(false);
}

void CTrendsPage::RecordNow() {
  m_recording = true;
  m_record->setEnabled(false);
  m_status->setText(QStringLiteral("Recording..."));
  Request(true);
}

void CTrendsPage::Request(bool record) {
  ++m_requested;
  // A reading not yet begun is replaced by a newer one; a recording waiting is never dropped.
  m_worker.Hand([&](const std::optional<Job>& waiting) {
    return Job{m_requested, m_site, record || (waiting && waiting->record), m_query};
  });
}

void CTrendsPage::Work(const Job& job, const std::stop_token& stop) {
  const std::string recorded = job.record ? Record(job) : std::string();
  auto reading = std::make_shared<TrendsReading>(Read(job));
  if (job.record) reading->said = recorded + (reading->said.empty() ? "" : " " + reading->said);
  if (stop.stop_requested()) return;
  OnGuiThread(this, [this, reading, record = job.record] {
    if (record) {
      m_recording = false;
      m_record->setEnabled(true);
    }
    Show(*reading);
  });
}

std::string CTrendsPage::Record(const Job& job) const {
  std::vector<store::SnapshotData> snapshots;
  std::vector<std::string> skipped;
  for (const Site site : {Site::USA, Site::UK}) {
    // A Site still loading (or loading again after Refresh) would be recorded half, which the trends
    // would read as sub-categories gone. A Refresh begun while the lists were read clears the events.
    const auto loaded = [&] {
      return m_run.LoadDone(app::KeywordsLoad(site)).IsSet() && m_run.LoadDone(app::AuctionsLoad(site)).IsSet();
    };
    store::SnapshotData snapshot{site, store::NowUtc(), {}, {}, {}};
    if (loaded()) {
      snapshot = store::SnapshotOf(site, snapshot.time, m_run.AuctionList(site).Rows(), m_run.Tree(site));
      if (!loaded()) snapshot = store::SnapshotData{site, snapshot.time, {}, {}, {}};
    }
    if (job.query && job.query->definition.site == site && !m_run.IsQueryAlive()) {
      const auto rows = m_run.QueryResults().Rows();
      // A query started meanwhile has cleared the list: what was read may be its first rows.
      if (!rows.empty() && !m_run.IsQueryAlive()) snapshot.queries.push_back(store::QueryRecordingOf(job.query->name, job.query->definition, rows));
    }
    if (snapshot.auctions.empty() && snapshot.keywords.empty() && snapshot.queries.empty()) {
      skipped.emplace_back(insights::SiteName(site));
    } else {
      snapshots.push_back(std::move(snapshot));
    }
  }
  if (snapshots.empty()) {
    return "Nothing was recorded: neither Site has finished loading its keywords and auction counts.";
  }
  base::Outcome opened;
  const std::unique_ptr<store::ResearchStore> research = store::ResearchStore::Open(m_store, {}, opened);
  if (!research) return opened.error;
  std::vector<std::int64_t> ids;
  if (const base::Outcome recorded = research->Record(snapshots, ids); !recorded) return recorded.error;
  std::string said = "Recorded ";
  for (std::size_t i = 0; i < snapshots.size(); ++i) {
    said += (i == 0 ? "" : "; ") + store::RecordedText(snapshots[i], ids[i]);
  }
  said += ".";
  for (const std::string& site : skipped) said += " " + site + " was not recorded: it has not finished loading.";
  if (job.query && !job.query->name.empty() && m_run.IsQueryAlive()) {
    said += " The query is still running and was not recorded.";
  }
  return said;
}

TrendsReading CTrendsPage::Read(const Job& job) const {
  TrendsReading reading;
  reading.generation = job.generation;
  reading.site = job.site;
  base::Outcome result;
  store::OpenOptions options;
  // Reading never makes a store: the research store is the user's choice, made by recording.
  options.create = false;
  const std::unique_ptr<store::ResearchStore> research = store::ResearchStore::Open(m_store, options, result);
  if (!research) {
    reading.said = result.error;
    return reading;
  }
  std::vector<store::SnapshotInfo> snapshots;
  if (result = research->Snapshots(job.site, snapshots); result) {
    reading.snapshots = static_cast<std::int64_t>(snapshots.size());
    result = research->GrowthHistory(job.site, kLines, reading.history);
  }
  if (result) result = research->TrendsKeywords(job.site, reading.keywords);
  if (!result) reading.said = result.error;
  return reading;
}

void CTrendsPage::Show(const TrendsReading& reading) {
  m_shown = std::max(m_shown, reading.generation);
  // A reading of the Site the page has since left is dropped; the one of the new Site follows.
  if (reading.site != m_site) return;

  QChart* chart = m_chart->chart();
  chart->removeAllSeries();
  auto* time = static_cast<QDateTimeAxis*>(chart->axes(Qt::Horizontal).front());
  auto* counts = static_cast<QValueAxis*>(chart->axes(Qt::Vertical).front());
  long highest = 0;
  std::set<QString> named;
  for (const store::AuctionSeries& line : reading.history.series) {
    auto* series = new QLineSeries;
    // Many categories have a sub-category of the same name ("Other"); each line keeps a name of its own.
    QString name = Text(line.auction);
    for (int n = 2; !named.insert(name).second; ++n) name = QStringLiteral("%1 (%2)").arg(Text(line.auction)).arg(n);
    series->setName(name);
    series->setColor(kLineColours[static_cast<std::size_t>(chart->series().size()) % std::size(kLineColours)]);
    series->setPointsVisible(true);
    for (std::size_t i = 0; i < line.counts.size(); ++i) {
      // A snapshot without the sub-category leaves its line out there rather than drawing a 0.
      if (!line.counts[i]) continue;
      series->append(double(TimeOf(reading.history.times[i]).toMSecsSinceEpoch()), double(*line.counts[i]));
      highest = std::max(highest, *line.counts[i]);
    }
    chart->addSeries(series);
    series->attachAxis(time);
    series->attachAxis(counts);
  }
  if (!reading.history.times.empty()) {
    const QDateTime first = TimeOf(reading.history.times.front());
    const QDateTime last = TimeOf(reading.history.times.back());
    time->setRange(first, last > first ? last : first.addSecs(60));
    time->setFormat(first.daysTo(last) >= 2 ? QStringLiteral("d MMM") : QStringLiteral("d MMM hh:mm"));
    time->setTickCount(std::clamp<int>(static_cast<int>(reading.history.times.size()), 2, 7));
  }
  counts->setRange(0, std::max(10.0, double(highest) * 1.1));
  counts->applyNiceNumbers();
  // Without lines the axes would only show a made-up range.
  const bool lines = !reading.history.series.empty();
  for (QAbstractAxis* axis : {static_cast<QAbstractAxis*>(time), static_cast<QAbstractAxis*>(counts)}) {
    axis->setVisible(lines);
  }
  chart->legend()->setVisible(lines);
  FillMovers(*m_movers, reading.keywords);

  const QString site = SiteTitle(reading.site);
  QString text;
  if (reading.snapshots == 0) {
    text = QStringLiteral("No snapshot of %1 is recorded yet.").arg(site);
  } else if (reading.snapshots == 1) {
    text = QStringLiteral("One snapshot of %1 is recorded: the trends need a second.").arg(site);
  } else {
    text = QStringLiteral("%1 snapshots of %2.").arg(reading.snapshots).arg(site);
    if (!reading.history.times.empty()) {
      text += QStringLiteral(" Auction counts from %1 to %2").arg(Day(reading.history.times.front()),
                                                                 Day(reading.history.times.back()));
      text += reading.history.series.empty() ? QStringLiteral(": no sub-category grew.") : QStringLiteral(".");
    }
    if (reading.keywords.from && reading.keywords.to) {
      text += QStringLiteral(" Keywords of %1 against %2.").arg(Day(*reading.keywords.to), Day(*reading.keywords.from));
    }
  }
  if (!reading.said.empty()) text = Text(reading.said) + (reading.snapshots > 0 ? u' ' + text : QString());
  m_status->setText(text);
}

}  // namespace gavelscope::ui
