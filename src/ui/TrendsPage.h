// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <QString>
#include <QWidget>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "app/RunController.h"
#include "base/LatestJobThread.h"
#include "query/QueryDefinition.h"
#include "sites/SiteProfile.h"

class QChart;
class QChartView;
class QLabel;
class QPushButton;
class QTableWidget;

namespace gavelscope::ui {

// The query the window ran last, and the name of the query file it came from or went to: what
// `trends query NAME` finds it by. A query never loaded nor saved has no name and is not recorded.
struct RecordableQuery {
  query::QueryDefinition definition;
  std::string name;
};

struct TrendsReading;

// The Trends page of the Insights window: from the research store, the selected Site's sub-categories
// that grew most as lines over time and the keywords that moved between its last two snapshots; and
// "Record now", which keeps what the window has loaded as snapshots, without fetching anything.
// The store is read and written on a thread of the page's own; the window's thread only draws.
class CTrendsPage : public QWidget {
 public:
  static constexpr int kLines = 8;

  // `pane` puts the chart into the window (with its Save button).
  CTrendsPage(app::CRunController& run, std::filesystem::path store,
              const std::function<QWidget*(QChartView*)>& pane, QWidget* parent = nullptr);
  ~CTrendsPage() override;

  // Shows `site` from now on; read afresh when the page is visible.
  void Follow(sites::Site site);
  void SetQuery(std::optional<RecordableQuery> query);
  // Records each Site whose keywords and auction counts have loaded, and the query's results once it
  // ended, as one transaction; then reads the trends again.
  void RecordNow();

  QChart* chart() const;
  QTableWidget* movers() const { return m_movers; }
  QPushButton* recordButton() const { return m_record; }
  QString status() const;
  // True when no reading or recording is waiting or under way and the last reading is shown.
  bool IsSettled() const;

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  struct Job {
    std::uint64_t generation = 0;
    sites::Site site = sites::Site::USA;
    bool record = false;
    std::optional<RecordableQuery> query;
  };

  void Request(bool record);
  void Work(const Job& job, const std::stop_token& stop);
  TrendsReading Read(const Job& job) const;
  std::string Record(const Job& job) const;
  void Show(const TrendsReading& reading);

  app::CRunController& m_run;
  const std::filesystem::path m_store;
  sites::Site m_site = sites::Site::USA;
  std::optional<RecordableQuery> m_query;
  std::uint64_t m_requested = 0;
  std::uint64_t m_shown = 0;
  bool m_recording = false;

  QLabel* m_heading = nullptr;
  QChartView* m_chart = nullptr;
  QTableWidget* m_movers = nullptr;
  QLabel* m_status = nullptr;
  QPushButton* m_record = nullptr;

  // Declared last: stopped and joined before anything it reads goes.
  base::LatestJobThread<Job> m_worker;
};

}  // namespace gavelscope::ui
