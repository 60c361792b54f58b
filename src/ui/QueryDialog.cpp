// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "ui/QueryDialog.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <memory>
#include <optional>

#include <QCheckBox>
#include <QFont>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QProxyStyle>
#include <QPushButton>
#include <QRadioButton>

#include "base/TextHelpers.h"
#include "query/QueryFile.h"
#include "ui/ControlModels.h"

namespace gavelscope::ui {

namespace {

constexpr const char* kTitle = "Gavelscope - Please input a new Hot Item Query for real time search";
constexpr const char* kErrorTitle = "Gavelscope Error !";
constexpr const char* kQueryFilter = "Gavelscope Query File (*.sbqry)";
constexpr const char* kQuerySuffix = "sbqry";
constexpr std::int32_t kMaxInt = std::numeric_limits<std::int32_t>::max();

// The dialog was drawn in dialog units of an 8-point face: 1.5 pixels across, 1.625 down.
int Across(int units) {
  return (units * 3 + 1) / 2;
}
int Down(int units) {
  return (units * 13 + 4) / 8;
}
QRect Units(int x, int y, int width, int height) {
  return QRect(Across(x), Down(y), Across(width), Down(height));
}

// Radio buttons and check boxes with the dialog template's small marks and narrow gap: with the
// platform style's roomier ones, the longest captions would run under the edits beside them.
class TemplateButtonStyle : public QProxyStyle {
 public:
  int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override {
    switch (metric) {
      case PM_ExclusiveIndicatorWidth:
      case PM_ExclusiveIndicatorHeight:
      case PM_IndicatorWidth:
      case PM_IndicatorHeight:
        return 13;
      case PM_RadioButtonLabelSpacing:
      case PM_CheckBoxLabelSpacing:
        return 3;
      default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
  }
};

// How each filter box looks: its place, its radios and edits, and what the greater and less edits
// are counted in (price shows the Site's currency instead).
struct FilterLayout {
  const char* title;
  int left;
  std::array<int, 3> radioIds;
  std::array<const char*, 3> radioTexts;
  std::array<int, 4> editIds;
  const char* unit;
  int anyId;
  const char* anyText;
};

constexpr std::array<FilterLayout, 3> kFilterLayouts{{
    {"Bid Count",
     7,
     {kBidsGreater, kBidsLess, kBidsRange},
     {"Greater than", "Less than", "From"},
     {kBidsGreaterEdit, kBidsLessEdit, kBidsFromEdit, kBidsToEdit},
     "Bids",
     kAnyBids,
     "Any Bid Range"},
    {"Date Range",
     152,
     {kDaysGreater, kDaysLess, kDaysRange},
     {"More than", "Less than", "From"},
     {kDaysGreaterEdit, kDaysLessEdit, kDaysFromEdit, kDaysToEdit},
     "Days left",
     kAnyDays,
     "Any Date Range"},
    {"Price Range",
     297,
     {kPriceGreater, kPriceLess, kPriceRange},
     {"Greater than", "Less than", "From"},
     {kPriceGreaterEdit, kPriceLessEdit, kPriceFromEdit, kPriceToEdit},
     nullptr,
     kAnyPrice,
     "Any Price Range"},
}};

// Where each filter box's query lives in a query and in the members, in the order of
// FilterLayout's radios and edits.
struct FilterFields {
  query::FilterSpec query::QueryDefinition::*filter;
  std::array<std::int32_t QueryMembers::*, 4> members;
};

constexpr std::array<FilterFields, 3> kFilterFields{{
    {&query::QueryDefinition::bids,
     {&QueryMembers::m_nBidsGreater, &QueryMembers::m_nBidsLess, &QueryMembers::m_nBidsFrom, &QueryMembers::m_nBidsTo}},
    {&query::QueryDefinition::days,
     {&QueryMembers::m_nDaysGreater, &QueryMembers::m_nDaysLess, &QueryMembers::m_nDaysFrom, &QueryMembers::m_nDaysTo}},
    {&query::QueryDefinition::price,
     {&QueryMembers::m_nPriceGreater, &QueryMembers::m_nPriceLess, &QueryMembers::m_nPriceFrom,
      &QueryMembers::m_nPriceTo}},
}};

// A filter's bounds in the order of the edits: greater, less, from, to.
std::array<std::int32_t, 4> Bounds(const query::FilterSpec& filter) {
  return {filter.greater, filter.less, filter.from, filter.to};
}

constexpr std::array<query::FilterSpec::Test, 3> kTests{query::FilterSpec::Test::Greater, query::FilterSpec::Test::Less,
                                                        query::FilterSpec::Test::Range};
// The sort radios in their order: date ended, item title, price, bids.
constexpr std::array<query::SortColumn, 4> kSortColumns{query::SortColumn::DateEnded, query::SortColumn::Title,
                                                        query::SortColumn::Price, query::SortColumn::Bids};

// A number member with the field it is exchanged with, in exchange order. The price "greater than"
// edit is the one number that is not range-checked.
struct NumberField {
  std::int32_t QueryMembers::*member;
  int id;
  const char* box;
  const char* value;
  bool ranged;
  std::int32_t low;
  std::int32_t high;
};

constexpr std::array<NumberField, 13> kNumberFields{{
    {&QueryMembers::m_nBidsFrom, kBidsFromEdit, "Bid Count", "From", true, 0, 500},
    {&QueryMembers::m_nDaysFrom, kDaysFromEdit, "Date Range", "From", true, 0, 12},
    {&QueryMembers::m_nPriceFrom, kPriceFromEdit, "Price Range", "From", true, 0, kMaxInt},
    {&QueryMembers::m_nBidsGreater, kBidsGreaterEdit, "Bid Count", "Greater than", true, 0, 500},
    {&QueryMembers::m_nDaysGreater, kDaysGreaterEdit, "Date Range", "More than", true, 0, 12},
    {&QueryMembers::m_nBidsLess, kBidsLessEdit, "Bid Count", "Less than", true, 0, 500},
    {&QueryMembers::m_nDaysLess, kDaysLessEdit, "Date Range", "Less than", true, 0, 12},
    {&QueryMembers::m_nPriceLess, kPriceLessEdit, "Price Range", "Less than", true, 0, kMaxInt},
    {&QueryMembers::m_nBidsTo, kBidsToEdit, "Bid Count", "to", true, 0, 500},
    {&QueryMembers::m_nDaysTo, kDaysToEdit, "Date Range", "to", true, 0, 12},
    {&QueryMembers::m_nPriceTo, kPriceToEdit, "Price Range", "to", true, 0, kMaxInt},
    {&QueryMembers::m_nPriceGreater, kPriceGreaterEdit, "Price Range", "Greater than", false, 0, 0},
    {&QueryMembers::m_nPageDepth, kPageDepth, "Page Depth", nullptr, true, 1, 10000},
}};

// Which edits go with a test: greater and less one each, the range both of the last two.
bool EditGoesWith(std::size_t test, std::size_t edit) {
  return test == 2 ? edit >= 2 : edit == test;
}

// What the query takes from an edit: its leading number as atoi reads it, so "12 bids" is 12 and
// text without digits is 0. Out-of-range numbers stop at the ends of the 32-bit range.
std::int32_t LeadingInteger(const QString& text) {
  const std::string bytes = text.toStdString();
  const long long value = std::strtoll(bytes.c_str(), nullptr, 10);
  return static_cast<std::int32_t>(std::clamp<long long>(value, std::numeric_limits<std::int32_t>::min(), kMaxInt));
}

// What the field check accepts: a whole number and nothing else, blanks around it allowed.
std::optional<std::int32_t> WholeNumber(const QString& text) {
  bool ok = false;
  const int value = text.trimmed().toInt(&ok, 10);
  return ok ? std::optional<std::int32_t>(value) : std::nullopt;
}

template <std::size_t N>
void CheckOnly(const std::array<QRadioButton*, N>& radios, QRadioButton* checked) {
  for (QRadioButton* radio : radios) radio->setChecked(radio == checked);
}

std::string FullPath(const std::filesystem::path& file) {
  std::error_code ignored;
  const std::filesystem::path full = std::filesystem::absolute(file, ignored);
  // Paths are the system's own encoding; messages are single-byte text.
  return ToPageText(QString::fromStdString((full.empty() ? file : full).string()));
}

}  // namespace

CQueryDialog::CQueryDialog(const sites::Profile& profile, CategoryNames categoryNames, Start start,
                           base::IUserMessages& messages, QWidget* parent)
    : QDialog(parent),
      m_profile(profile),
      m_categoryNames(std::move(categoryNames)),
      m_start(std::move(start)),
      m_messages(messages) {
  setWindowTitle(QString::fromLatin1(kTitle));
  QFont face(QStringLiteral("Arial"));
  face.setPixelSize(11);
  setFont(face);
  setFixedSize(Across(444), Down(226));
  m_buttonStyle = new TemplateButtonStyle;
  m_buttonStyle->setParent(this);

  for (std::size_t i = 0; i < m_filters.size(); ++i) MakeFilterGroup(i);
  MakeLowerControls();

  // A dialog opened during start-up shows the categories as soon as the Site's home page is read.
  m_categoriesPending.setInterval(200);
  connect(&m_categoriesPending, &QTimer::timeout, this, [this] {
    if (m_categoryNames(m_listedSite)) FillCategoryList(m_listedSite);
  });
  // The opening state: every filter on "greater (more) than", sorted by date ended, ascending, on
  // the USA Site.
  FillCategoryList(sites::Site::USA);
  m_countryRadios[0]->setChecked(true);
  for (FilterGroup& group : m_filters) {
    group.radios[0]->setChecked(true);
    for (std::size_t e = 0; e < group.edits.size(); ++e) group.edits[e]->setEnabled(e == 0);
  }
  m_ascending->setChecked(true);
  m_sortRadios[0]->setChecked(true);
  ClearEditMemory();
  m_members.m_nPageDepth = 1;
  ShowMembers();
}

void CQueryDialog::MakeFilterGroup(std::size_t index) {
  const FilterLayout& layout = kFilterLayouts[index];
  FilterGroup& group = m_filters[index];
  const int x = layout.left;
  (new QGroupBox(QString::fromLatin1(layout.title), this))->setGeometry(Units(x, 7, 140, 82));

  const auto makeEdit = [this](int id, QRect place) {
    auto* edit = new QLineEdit(this);
    edit->setObjectName(QString::number(id));
    edit->setGeometry(place);
    return edit;
  };
  const auto makeLabel = [this](const QString& text, QRect place) {
    auto* label = new QLabel(text, this);
    label->setGeometry(place);
    return label;
  };
  for (std::size_t r = 0; r < 3; ++r) {
    const int y = 20 + 16 * static_cast<int>(r);
    auto* radio = new QRadioButton(QString::fromLatin1(layout.radioTexts[r]), this);
    radio->setStyle(m_buttonStyle);
    radio->setObjectName(QString::number(layout.radioIds[r]));
    // Exclusivity is kept by hand: a box with "any range" checked must be able to show no radio.
    radio->setAutoExclusive(false);
    // The caption may use the whole gap up to its edit.
    radio->setGeometry(QRect(Across(x + 7), Down(y), Across(x + 62) - Across(x + 7), Down(10)));
    group.radios[r] = radio;
    connect(radio, &QRadioButton::clicked, this, [this, &group, radio] { OnTestRadio(group, radio); });
    if (r < 2) {
      group.edits[r] = makeEdit(layout.editIds[r], Units(x + 62, y - 1, 36, 12));
      if (layout.unit != nullptr) {
        makeLabel(QString::fromLatin1(layout.unit), Units(x + 101, y + 1, 36, 8));
      } else {
        const int id = r == 0 ? kCurrencyGreater : kCurrencyLess;
        m_currency[r] = makeLabel(QString(), Units(x + 101, y + 1, 36, 8));
        m_currency[r]->setObjectName(QString::number(id));
      }
    } else {
      group.edits[2] = makeEdit(layout.editIds[2], Units(x + 62, y - 1, 30, 12));
      makeLabel(QStringLiteral("to"), Units(x + 95, y + 1, 10, 8));
      group.edits[3] = makeEdit(layout.editIds[3], Units(x + 106, y - 1, 30, 12));
    }
  }
  group.any = new QCheckBox(QString::fromLatin1(layout.anyText), this);
  group.any->setStyle(m_buttonStyle);
  group.any->setObjectName(QString::number(layout.anyId));
  group.any->setGeometry(Units(x + 7, 70, 100, 10));
  connect(group.any, &QCheckBox::clicked, this, [this, &group](bool checked) { OnAnyRange(group, checked); });
}

void CQueryDialog::MakeLowerControls() {
  const auto makeRadio = [this](int id, const char* text, QRect place) {
    auto* radio = new QRadioButton(QString::fromLatin1(text), this);
    radio->setStyle(m_buttonStyle);
    radio->setObjectName(QString::number(id));
    radio->setAutoExclusive(false);
    radio->setGeometry(place);
    return radio;
  };
  const auto makeButton = [this](int id, const char* text, QRect place) {
    auto* button = new QPushButton(QString::fromLatin1(text), this);
    button->setObjectName(QString::number(id));
    button->setGeometry(place);
    return button;
  };

  (new QGroupBox(QStringLiteral("Sort Finished Result Data By"), this))->setGeometry(Units(7, 93, 140, 62));
  m_sortRadios = {makeRadio(kSortDateEnded, "Date Ended", Units(14, 106, 60, 10)),
                  makeRadio(kSortTitle, "Item Title", Units(14, 121, 60, 10)),
                  makeRadio(kSortPrice, "Price", Units(80, 106, 50, 10)),
                  makeRadio(kSortBids, "Bids", Units(80, 121, 50, 10))};
  for (QRadioButton* radio : m_sortRadios) {
    connect(radio, &QRadioButton::clicked, this, [this, radio] { CheckOnly(m_sortRadios, radio); });
  }
  m_ascending = new QCheckBox(QStringLiteral("Ascending ?"), this);
  m_ascending->setStyle(m_buttonStyle);
  m_ascending->setObjectName(QString::number(kAscending));
  m_ascending->setGeometry(Units(14, 138, 60, 10));

  (new QLabel(QStringLiteral("Page Depth"), this))->setGeometry(Units(14, 166, 42, 8));
  auto* depth = new QLineEdit(this);
  depth->setObjectName(QString::number(kPageDepth));
  depth->setGeometry(Units(58, 164, 40, 12));

  (new QGroupBox(QStringLiteral("Ebay Category"), this))->setGeometry(Units(152, 93, 140, 108));
  m_categories = new QListWidget(this);
  m_categories->setObjectName(QString::number(kCategoryList));
  m_categories->setSelectionMode(QAbstractItemView::MultiSelection);
  m_categories->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
  m_categories->setGeometry(Units(159, 104, 126, 92));

  (new QGroupBox(QStringLiteral("Country"), this))->setGeometry(Units(297, 93, 140, 40));
  m_countryRadios = {makeRadio(kInternational, "International (.com)", Units(304, 105, 126, 10)),
                     makeRadio(kUnitedKingdom, "United Kingdom (.co.uk)", Units(304, 118, 126, 10))};
  for (std::size_t i = 0; i < m_countryRadios.size(); ++i) {
    const sites::Site site = i == 0 ? sites::Site::USA : sites::Site::UK;
    connect(m_countryRadios[i], &QRadioButton::clicked, this, [this, i, site] {
      CheckOnly(m_countryRadios, m_countryRadios[i]);
      OnCountry(site);
    });
  }

  (new QGroupBox(QStringLiteral("Containing Keywords"), this))->setGeometry(Units(297, 137, 140, 30));
  auto* keywords = new QLineEdit(this);
  keywords->setObjectName(QString::number(kKeywords));
  keywords->setGeometry(Units(304, 150, 126, 12));

  connect(makeButton(kLoadQuery, "Load Query", Units(7, 206, 60, 14)), &QPushButton::clicked, this,
          &CQueryDialog::LoadQuery);
  connect(makeButton(kSaveQuery, "Save Query", Units(72, 206, 60, 14)), &QPushButton::clicked, this,
          &CQueryDialog::SaveQuery);
  QPushButton* start = makeButton(kStartQuery, "Start Query", Units(317, 206, 58, 14));
  start->setDefault(true);
  connect(start, &QPushButton::clicked, this, &CQueryDialog::StartQuery);
  connect(makeButton(kCancelQuery, "Cancel", Units(379, 206, 58, 14)), &QPushButton::clicked, this, &QDialog::reject);

  // The currency labels follow the Site; the dialog opens on the USA Site.
  for (QLabel* label : m_currency) {
    label->setText(QString::fromStdString(m_profile.usa.currency));
  }
}

QRadioButton* CQueryDialog::radio(int id) const {
  return findChild<QRadioButton*>(QString::number(id));
}
QLineEdit* CQueryDialog::edit(int id) const {
  return findChild<QLineEdit*>(QString::number(id));
}
QCheckBox* CQueryDialog::checkBox(int id) const {
  return findChild<QCheckBox*>(QString::number(id));
}
QLabel* CQueryDialog::currencyLabel(int id) const {
  return findChild<QLabel*>(QString::number(id));
}
QPushButton* CQueryDialog::button(int id) const {
  return findChild<QPushButton*>(QString::number(id));
}

void CQueryDialog::OnTestRadio(FilterGroup& group, QRadioButton* clicked) {
  CheckOnly(group.radios, clicked);
  if (group.any->isChecked()) {
    clicked->setChecked(false);
    return;
  }
  const auto test =
      static_cast<std::size_t>(std::find(group.radios.begin(), group.radios.end(), clicked) - group.radios.begin());
  for (std::size_t e = 0; e < group.edits.size(); ++e) group.edits[e]->setEnabled(EditGoesWith(test, e));
}

void CQueryDialog::OnAnyRange(FilterGroup& group, bool checked) {
  if (checked) {
    // A group with no radio checked keeps what it remembered before.
    for (std::size_t r = 0; r < group.radios.size(); ++r) {
      if (!group.radios[r]->isChecked()) continue;
      group.savedRadio = group.radios[r];
      group.savedEdit = group.edits[r];
      group.savedEdit2 = r == 2 ? group.edits[3] : nullptr;
      break;
    }
    for (QRadioButton* radio : group.radios) radio->setChecked(false);
    for (QLineEdit* edit : group.edits) edit->setEnabled(false);
    return;
  }
  if (group.savedRadio != nullptr) CheckOnly(group.radios, group.savedRadio);
  if (group.savedEdit != nullptr) group.savedEdit->setEnabled(true);
  if (group.savedEdit2 != nullptr) {
    group.savedEdit2->setEnabled(true);
    group.savedEdit2 = nullptr;
  }
}

void CQueryDialog::OnCountry(sites::Site site) {
  FillCategoryList(site);
  const QString currency = QString::fromStdString(m_profile.site(site).currency);
  for (QLabel* label : m_currency) label->setText(currency);
}

void CQueryDialog::FillCategoryList(sites::Site site) {
  m_categories->clear();
  m_listedSite = site;
  const std::optional<std::vector<std::string>> names = m_categoryNames(site);
  if (!names) {
    m_categoriesPending.start();
    return;
  }
  m_categoriesPending.stop();
  for (const std::string& name : *names) {
    auto* item = new QListWidgetItem(FromPageText(name), m_categories);
    // The bytes themselves, so that a name goes back to the query exactly as the site wrote it.
    item->setData(Qt::UserRole, QByteArray::fromStdString(name));
  }
}

bool CQueryDialog::ExchangeIn() {
  m_members.m_strKeywords = ToPageText(edit(kKeywords)->text());
  for (const NumberField& field : kNumberFields) {
    QLineEdit* source = edit(field.id);
    const std::optional<std::int32_t> value = WholeNumber(source->text());
    // A number is stored before its range is checked, so the field keeps what was typed even when
    // the check then stops the exchange.
    if (value) m_members.*field.member = *value;
    if (value && (!field.ranged || (*value >= field.low && *value <= field.high))) continue;
    std::string text = field.box;
    if (field.value != nullptr) text += std::string(" \"") + field.value + "\"";
    text += ": please enter a whole number";
    if (field.ranged) text += " from " + std::to_string(field.low) + " to " + std::to_string(field.high);
    text += '.';
    m_messages.Show(base::UserMessage{text, base::text::kMessageTitle, base::MessageButtons::Ok, true, base::MessageKind::Warning});
    source->setFocus();
    source->selectAll();
    return false;
  }
  return true;
}

void CQueryDialog::ShowMembers() {
  edit(kKeywords)->setText(FromPageText(m_members.m_strKeywords));
  for (const NumberField& field : kNumberFields) edit(field.id)->setText(QString::number(m_members.*field.member));
}

void CQueryDialog::ClearEditMemory() {
  for (FilterGroup& group : m_filters) {
    group.savedEdit = nullptr;
    group.savedEdit2 = nullptr;
  }
}

std::vector<std::string> CQueryDialog::SelectedNames() const {
  std::vector<std::string> names;
  for (int row = 0; row < m_categories->count(); ++row) {
    const QListWidgetItem* item = m_categories->item(row);
    if (item->isSelected()) names.push_back(item->data(Qt::UserRole).toByteArray().toStdString());
  }
  return names;
}

sites::Site CQueryDialog::ChosenSite() const {
  return m_countryRadios[0]->isChecked() ? sites::Site::USA : sites::Site::UK;
}

query::QueryDefinition CQueryDialog::CollectQuery() const {
  query::QueryDefinition query;
  query.keywords = m_members.m_strKeywords;
  query.pageDepth = m_members.m_nPageDepth;
  query.site = ChosenSite();
  for (std::size_t g = 0; g < m_filters.size(); ++g) {
    const FilterGroup& group = m_filters[g];
    query::FilterSpec& filter = query.*kFilterFields[g].filter;
    if (group.any->isChecked()) continue;
    // The edits' own texts, not the members: a field that failed its check still counts.
    const auto number = [&group](std::size_t e) { return LeadingInteger(group.edits[e]->text()); };
    if (group.radios[0]->isChecked()) filter = query::FilterSpec::GreaterThan(number(0));
    if (group.radios[1]->isChecked()) filter = query::FilterSpec::LessThan(number(1));
    if (group.radios[2]->isChecked()) filter = query::FilterSpec::Between(number(2), number(3));
  }
  query.ascending = m_ascending->isChecked();
  for (std::size_t r = 0; r < m_sortRadios.size(); ++r) {
    if (m_sortRadios[r]->isChecked()) query.sort = kSortColumns[r];
  }
  query.categories = SelectedNames();
  return query;
}

void CQueryDialog::ApplyQuery(const query::QueryDefinition& query) {
  for (FilterGroup& group : m_filters) {
    for (QRadioButton* radio : group.radios) radio->setChecked(false);
    for (QLineEdit* edit : group.edits) edit->setEnabled(false);
  }
  for (QRadioButton* radio : m_sortRadios) radio->setChecked(false);
  for (QRadioButton* radio : m_countryRadios) radio->setChecked(false);
  ClearEditMemory();

  for (std::size_t g = 0; g < m_filters.size(); ++g) {
    FilterGroup& group = m_filters[g];
    const query::FilterSpec& filter = query.*kFilterFields[g].filter;
    const std::array<std::int32_t, 4> bounds = Bounds(filter);
    for (std::size_t b = 0; b < bounds.size(); ++b) {
      m_members.*kFilterFields[g].members[b] = bounds[b] == -1 ? 0 : bounds[b];
    }
    for (std::size_t t = 0; t < kTests.size(); ++t) {
      if (filter.test != kTests[t]) continue;
      group.radios[t]->setChecked(true);
      for (std::size_t e = 0; e < group.edits.size(); ++e) {
        if (EditGoesWith(t, e)) group.edits[e]->setEnabled(true);
      }
    }
  }
  m_members.m_strKeywords = std::string(base::TrimWhiteSpace(query.keywords));
  m_members.m_nPageDepth = query.pageDepth;

  m_countryRadios[query.site == sites::Site::USA ? 0 : 1]->setChecked(true);
  OnCountry(query.site);

  for (std::size_t r = 0; r < m_sortRadios.size(); ++r) m_sortRadios[r]->setChecked(query.sort == kSortColumns[r]);
  m_ascending->setChecked(query.ascending);

  for (std::size_t g = 0; g < m_filters.size(); ++g) {
    FilterGroup& group = m_filters[g];
    const bool any = (query.*kFilterFields[g].filter).test == query::FilterSpec::Test::Any;
    group.any->setChecked(any);
    if (any) {
      // Unchecking the box later offers the greater (more) than test.
      group.savedRadio = group.radios[0];
      group.savedEdit = group.edits[0];
    }
  }

  for (const std::string& name : query.categories) {
    const QString prefix = FromPageText(name);
    for (int row = 0; row < m_categories->count(); ++row) {
      QListWidgetItem* item = m_categories->item(row);
      if (item->text().startsWith(prefix, Qt::CaseInsensitive)) {
        item->setSelected(true);
        break;
      }
    }
  }
  ShowMembers();
}

void CQueryDialog::StartQuery() {
  // A field that fails its check is reported, and the query is started all the same.
  ExchangeIn();
  if (!m_start(CollectQuery())) return;
  // Closing checks the fields once more; a field still failing keeps the dialog open, though the
  // run has started.
  if (ExchangeIn()) accept();
}

void CQueryDialog::SaveQuery() {
  const std::optional<std::filesystem::path> file =
      m_messages.ChooseFile(base::FileChoice{"Save New Gavelscope Query !", kQueryFilter, kQuerySuffix, /*save=*/true});
  if (!file) return;
  ExchangeIn();
  const base::Outcome saved = query::SaveQueryFile(*file, CollectQuery());
  ShowMembers();
  if (saved) m_file = *file;
  if (!saved) m_messages.Show(base::UserMessage{"Cannot Save To File : " + FullPath(*file), kErrorTitle, base::MessageButtons::Ok, true, base::MessageKind::Error});
}

void CQueryDialog::LoadQuery() {
  const std::optional<std::filesystem::path> file = m_messages.ChooseFile(
      base::FileChoice{"Choose New Gavelscope Query To Load !", kQueryFilter, kQuerySuffix, /*save=*/false});
  if (!file) return;
  ExchangeIn();
  query::QueryDefinition loaded;
  if (!query::LoadQueryFile(*file, loaded)) {
    m_messages.Show(base::UserMessage{"Cannot Load File : " + FullPath(*file), kErrorTitle, base::MessageButtons::Ok, true, base::MessageKind::Error});
    return;
  }
  ApplyQuery(loaded);
  m_file = *file;
}

CQueryDialog::CategoryNames KnownCategoryNames(const app::CRunController& controller) {
  return [&controller](sites::Site site) -> std::optional<std::vector<std::string>> {
    // The names are written once, before the Site's event is set.
    const sites::SiteCategories& categories = controller.Categories(site);
    if (!categories.ready.IsSet()) return std::nullopt;
    return categories.arrCategoryNames;
  };
}

}  // namespace gavelscope::ui
