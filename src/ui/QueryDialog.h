// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <QDialog>
#include <QString>
#include <QTimer>

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "app/RunController.h"
#include "base/UserMessages.h"
#include "query/MySettings.h"
#include "sites/SiteProfile.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QRadioButton;

namespace gavelscope::ui {

// The dialog's controls. Each widget's objectName is its number, so a test finds it by id.
enum QueryControl : int {
  kStartQuery = 1,
  kCancelQuery = 2,
  kSaveQuery = 1000,
  kBidsGreater = 1015,
  kBidsLess = 1016,
  kBidsRange = 1017,
  kBidsGreaterEdit = 1018,
  kBidsLessEdit = 1019,
  kBidsFromEdit = 1020,
  kBidsToEdit = 1021,
  kDaysGreater = 1022,
  kDaysLess = 1023,
  kDaysRange = 1024,
  kDaysGreaterEdit = 1027,
  kCategoryList = 1028,
  kDaysLessEdit = 1029,
  kDaysFromEdit = 1030,
  kDaysToEdit = 1031,
  kSortDateEnded = 1035,
  kAscending = 1036,
  kKeywords = 1037,
  kAnyBids = 1038,
  kAnyDays = 1039,
  kAnyPrice = 1040,
  kInternational = 1041,
  kUnitedKingdom = 1042,
  kCurrencyGreater = 1043,
  kCurrencyLess = 1044,
  kPriceGreater = 1046,
  kPriceLess = 1047,
  kPriceRange = 1048,
  kPriceGreaterEdit = 1049,
  kPriceLessEdit = 1050,
  kPriceFromEdit = 1051,
  kPriceToEdit = 1052,
  kSortTitle = 1053,
  kSortPrice = 1054,
  kSortBids = 1055,
  kLoadQuery = 1059,
  kPageDepth = 1060,
};

// The values the edits held when they were last exchanged: what the edits show again after a save
// or a load. A field that fails its check keeps the number typed into it, as long as it is one; the
// fields after it keep what they had.
struct QueryMembers {
  std::string m_strKeywords;
  std::int32_t m_nBidsFrom = 0;
  std::int32_t m_nDaysFrom = 0;
  std::int32_t m_nPriceFrom = 0;
  std::int32_t m_nBidsGreater = 0;
  std::int32_t m_nDaysGreater = 0;
  std::int32_t m_nBidsLess = 0;
  std::int32_t m_nDaysLess = 0;
  std::int32_t m_nPriceLess = 0;
  std::int32_t m_nBidsTo = 0;
  std::int32_t m_nDaysTo = 0;
  std::int32_t m_nPriceTo = 0;
  std::int32_t m_nPriceGreater = 0;
  std::int32_t m_nPageDepth = 0;
};

// Defines a hot item query: three numeric filters, categories, keywords, Site, page depth and the
// sort of the finished list. Start Query hands the query to whoever opened the dialog and, when it
// was started, closes with Accepted; Save Query and Load Query keep it in a query file.
class CQueryDialog : public QDialog {
 public:
  // The category names of a Site as its home page shows them; nothing while they are not known yet.
  using CategoryNames = std::function<std::optional<std::vector<std::string>>(sites::Site)>;
  // Starts the query; false when it was not started, which keeps the dialog open.
  using Start = std::function<bool(const query::QueryDefinition&)>;

  CQueryDialog(const sites::Profile& profile, CategoryNames categoryNames, Start start, base::IUserMessages& messages,
               QWidget* parent = nullptr);

  // The query the controls describe, categories included: each chosen test with the number its edit
  // holds as text (a field that failed its check counts as typed), the other bounds not given.
  query::QueryDefinition CollectQuery() const;
  // Shows a query in the controls: every bound of it in its edit, its tests, Site, sort and the
  // categories whose names begin with its names.
  void ApplyQuery(const query::QueryDefinition& query);

  void StartQuery();
  // The query file last loaded or saved here, if any.
  const std::optional<std::filesystem::path>& file() const { return m_file; }
  void SaveQuery();
  void LoadQuery();

  QRadioButton* radio(int id) const;
  QLineEdit* edit(int id) const;
  QCheckBox* checkBox(int id) const;
  QLabel* currencyLabel(int id) const;
  QPushButton* button(int id) const;
  QListWidget* categoryList() const { return m_categories; }

 private:
  // One of Bid Count, Date Range and Price Range, with the restore memory of its any-range box.
  struct FilterGroup {
    std::array<QRadioButton*, 3> radios{};  // greater (more) than, less than, from
    std::array<QLineEdit*, 4> edits{};      // greater, less, from, to
    QCheckBox* any = nullptr;
    QRadioButton* savedRadio = nullptr;
    QLineEdit* savedEdit = nullptr;
    QLineEdit* savedEdit2 = nullptr;
  };

  void MakeFilterGroup(std::size_t index);
  void MakeLowerControls();
  void OnTestRadio(FilterGroup& group, QRadioButton* clicked);
  void OnAnyRange(FilterGroup& group, bool checked);
  void OnCountry(sites::Site site);
  // Fills the list with the Site's names; while they are not known, looks again until they are.
  void FillCategoryList(sites::Site site);
  // Reads the edits into the members with their checks. The first field that fails is reported
  // and ends the exchange there; the fields after it keep their earlier values.
  bool ExchangeIn();
  void ShowMembers();
  void ClearEditMemory();
  std::vector<std::string> SelectedNames() const;
  sites::Site ChosenSite() const;

  const sites::Profile& m_profile;
  CategoryNames m_categoryNames;
  Start m_start;
  base::IUserMessages& m_messages;
  QueryMembers m_members;
  std::optional<std::filesystem::path> m_file;
  std::array<FilterGroup, 3> m_filters;            // bids, days, price
  std::array<QRadioButton*, 4> m_sortRadios{};     // date ended, item title, price, bids
  std::array<QRadioButton*, 2> m_countryRadios{};  // international, united kingdom
  QCheckBox* m_ascending = nullptr;
  std::array<QLabel*, 2> m_currency{};
  QListWidget* m_categories = nullptr;
  sites::Site m_listedSite = sites::Site::USA;
  QTimer m_categoriesPending;
  QStyle* m_buttonStyle = nullptr;
};

// The names of the Sites' categories once start-up has read them.
CQueryDialog::CategoryNames KnownCategoryNames(const app::CRunController& controller);

}  // namespace gavelscope::ui
