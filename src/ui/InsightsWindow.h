// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <QList>
#include <QPointF>
#include <QTimer>
#include <QWidget>

#include <cstdint>
#include <memory>
#include <optional>

#include "app/MainCommands.h"
#include "app/RunController.h"
#include "base/LatestJobThread.h"
#include "base/ObservableControl.h"
#include "base/UserMessages.h"
#include "sites/SiteProfile.h"
#include "ui/TrendsPage.h"

class QChart;
class QChartView;
class QComboBox;
class QLabel;
class QTableWidget;
class QTabWidget;

namespace gavelscope::ui {

// Which list the window describes, as the main window's tab and flags choose it: the query
// results on the query tab, the selected Site's history on the history tab, and the selected
// Site's auction counts on the other two.
struct InsightsSubject {
  app::Tab tab = app::Tab::Keywords;
  sites::Site site = sites::Site::USA;
  // Prices of the query results are read by the rules of the Site the query ran on.
  sites::Site querySite = sites::Site::USA;
};

enum class InsightsChart { Histogram, Scatter, Auctions, Trends };

struct InsightsDescription;

// The statistics of the list the main window shows, in numbers and charts, beside the window and
// never over its face. The rows are read and summed up on a thread of the window's own, so a list
// of tens of thousands of rows costs the window's thread only the drawing; changes arriving while
// a query runs are gathered into one update per kCoalesceMilliseconds.
class CInsightsWindow : public QWidget {
 public:
  static constexpr int kCoalesceMilliseconds = 250;
  // The narrowest the window is placed at beside the face: the numbers and a readable chart.
  static constexpr int kNarrowest = 560;
  static constexpr int kLargestSubcategories = 20;
  // The most marks the scatter draws; a list with more priced rows shows them thinned.
  static constexpr int kScatterMarks = 1500;
  // Qt Charts makes a graphics item of each new mark, a few milliseconds' work per few hundred.
  static constexpr int kNewMarksPerTurn = 300;

  // `messages` asks where a chart is saved and tells when it cannot be; the Trends page reads and
  // records into the research store `store`.
  CInsightsWindow(app::CRunController& run, base::IUserMessages& messages, std::filesystem::path store,
                  QWidget* parent = nullptr);
  ~CInsightsWindow() override;

  // Describes `subject` from now on, at once.
  void Follow(const InsightsSubject& subject);
  // Any list of the run changed; only the one described is read again.
  void ListChanged(const base::ObservableControl& list);

  // Writes the chart as a PNG picture; false when the file cannot be written.
  bool SaveChart(InsightsChart which, const QString& file);

  CTrendsPage* trends() const { return m_trends; }
  // Shows the Trends page (true) or the statistics of the list (false).
  void ShowTrends(bool trends);

  QString caption() const;
  QTableWidget* numbers() const { return m_numbers; }
  QChart* chart(InsightsChart which) const;
  // True once what is shown describes the list as it last changed.
  bool IsCurrent() const { return !m_coalesce.isActive() && !m_marksTimer.isActive() && m_shown == m_requested; }

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  struct Reading {
    std::uint64_t generation = 0;
    std::uint64_t subjectGeneration = 0;
    InsightsSubject subject;
  };

  const base::ObservableControl& ListOf(const InsightsSubject& subject) const;
  void Request();
  void Work(const Reading& job, const std::stop_token& stop);
  InsightsDescription Describe(const InsightsSubject& subject) const;
  void Show(const InsightsDescription& description);
  void ShowCurrency();
  void ShowScatter();
  void ShowMarks();
  void AskAndSave(InsightsChart which);
  QWidget* ChartPane(InsightsChart which, QChartView* view);

  app::CRunController& m_run;
  base::IUserMessages& m_messages;
  InsightsSubject m_subject;
  // Counts Follow calls: a description of a list no longer followed is never shown.
  std::uint64_t m_subjectGeneration = 0;
  std::uint64_t m_requested = 0;
  std::uint64_t m_shown = 0;
  QTimer m_coalesce;
  // The scatter is drawn after the numbers and the histogram, its marks a few at a time (see
  // ShowMarks), each step a turn of the event loop of its own.
  bool m_scatterStale = false;
  QList<QPointF> m_marks;
  QTimer m_marksTimer;
  std::unique_ptr<InsightsDescription> m_current;

  QLabel* m_caption = nullptr;
  QTableWidget* m_numbers = nullptr;
  QComboBox* m_currency = nullptr;
  QChartView* m_histogram = nullptr;
  QChartView* m_scatter = nullptr;
  QChartView* m_auctions = nullptr;
  QWidget* m_itemPanes = nullptr;
  QWidget* m_auctionPane = nullptr;
  QTabWidget* m_pages = nullptr;
  CTrendsPage* m_trends = nullptr;

  // Declared last: stopped and joined before anything it reads goes.
  base::LatestJobThread<Reading> m_worker;
};

}  // namespace gavelscope::ui
