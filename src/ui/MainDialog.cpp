// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "store/ResearchStore.h"
#include "ui/MainDialog.h"

#include <QApplication>

#include <QCloseEvent>
#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QToolTip>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <algorithm>
#include <cstdio>

#include "ui/AboutDialog.h"
#include "ui/AnimatedPicture.h"
#include "ui/ControlViews.h"
#include "ui/FaceAccess.h"
#include "ui/GuiThread.h"
#include "ui/QueryDialog.h"
#include "ui/Resources.h"

namespace gavelscope::ui {

namespace {

using app::Tab;
using app::ViewId;
using sites::Site;

const QRect kTreeArea(15, 135, 395, 400);
const QRect kKeywordArea(415, 135, 365, 400);
const QRect kListArea(15, 135, 765, 400);

// The face's colours (the selected tab is orange, the button captions a muted blue).
const QColor kSelectedTabFill(255, 204, 0);
const QColor kButtonCaption(69, 69, 181);

struct FaceText {
  int x;
  int y;
  const char* text;
};
constexpr FaceText kButtonCaptions[] = {
    {180, 100, "home"}, {230, 100, "refresh"}, {292, 100, "eXport"}, {351, 100, "my eBay"}, {422, 100, "Search:"}};
constexpr FaceText kTabCaptions[] = {{156, 5, "Todays Keywords"},
                                     {157, 27, "Todays Auctions"},
                                     {155, 49, "Hot Item History"},
                                     {156, 71, "Hot Item Query"}};
constexpr int kSeparatorsX[] = {221, 283, 342, 413};
// Tray menu positions of the four View items follow the tab order.
constexpr int kFirstViewMenuItem = 2;

QFont FaceFont() {
  // The face's text is 17 pixels from the top of its character cell to the bottom; in this face
  // that is an em of 15 pixels, which is what a pixel size means here.
  QFont font(QStringLiteral("Times New Roman"));
  font.setPixelSize(15);
  font.setWeight(QFont::Bold);
  return font;
}

// Text positions are the top-left corner of the text cell.
void DrawFaceText(QPainter& painter, int x, int y, const QString& text) {
  painter.drawText(QRect(x, y, 400, 40), Qt::AlignLeft | Qt::AlignTop | Qt::TextSingleLine, text);
}

QStringList ItemHeaders(bool query) {
  return {query ? "Time Left" : "Date Ended", "Item Title", "Price", "Bids"};
}

RowsModel* ItemModel(hotitems::CItemListCtrl& list, QObject* parent) {
  return new RowsModel(
      ItemHeaders(list.variant() == hotitems::ItemListVariant::QueryResults),
      [&list] { return static_cast<int>(list.RowCount()); },
      [&list](int row, int column) { return list.CellText(static_cast<std::size_t>(row), column); }, parent);
}

RowsModel* AuctionModel(auctions::CAuctionListCtrl& list, QObject* parent) {
  return new RowsModel(
      {"Auction", "Count"}, [&list] { return static_cast<int>(list.RowCount()); },
      [&list](int row, int column) {
        const auctions::AuctionListRow data = list.RowAt(static_cast<std::size_t>(row));
        return column == 0 ? data.name : data.count;
      },
      parent);
}

RowsModel* KeywordModel(keywords::CKeywordListCtrl& list, QObject* parent) {
  return new RowsModel(
      {"Keywords"}, [&list] { return static_cast<int>(list.RowCount()); },
      [&list](int row, int) {
        const keywords::KeywordRecordPtr record = list.RowAt(static_cast<std::size_t>(row));
        return record ? record->GetKeyword() : std::string();
      },
      parent);
}

int RegionAt(QPoint point) {
  for (int region = 0; region < kFaceRegionCount; ++region) {
    if (FaceRegionRect(static_cast<FaceRegion>(region)).contains(point)) return region;
  }
  return -1;
}

}  // namespace

QRect FaceRegionRect(FaceRegion region) {
  static constexpr int kRects[kFaceRegionCount][4] = {{148, 5, 270, 23},    {148, 27, 270, 45},   {148, 49, 270, 67},
                                                      {148, 71, 270, 89},   {180, 103, 213, 115}, {230, 103, 275, 115},
                                                      {292, 103, 334, 115}, {351, 103, 404, 115}, {422, 103, 464, 115}};
  const auto& r = kRects[static_cast<int>(region)];
  return QRect(QPoint(r[0], r[1]), QPoint(r[2] - 1, r[3] - 1));
}

CMainDialog::CMainDialog(app::ControllerConfig config, base::IUserMessages* messages, base::IBrowser* browser,
                         QWidget* parent)
    : CTrayDialog(parent),
      m_messages(messages != nullptr ? messages : new QtMessages(this)),
      m_view(new QtMainView(this)),
      m_researchStore(store::DefaultStorePath()) {
  setWindowTitle(QString::fromLatin1(base::text::kWindowTitle));
  setFixedSize(kClientWidth, kClientHeight);
  setMouseTracking(true);
  if (browser == nullptr) {
    m_ownBrowser = std::make_unique<app::CBrowserLauncher>(*m_messages);
    browser = m_ownBrowser.get();
  }
  m_browser = browser;
  m_controller = std::make_unique<app::CRunController>(std::move(config), *m_view, *m_messages, *m_browser);
  m_commands = std::make_unique<app::CMainCommands>(*m_controller, *m_view, *m_messages, *m_browser);

  app::CRunController& run = *m_controller;
  m_treeUK = new CategoryTreeModel(run.Tree(Site::UK), this);
  m_treeUSA = new CategoryTreeModel(run.Tree(Site::USA), this);
  m_keywordsUK = KeywordModel(run.KeywordList(Site::UK), this);
  m_keywordsUSA = KeywordModel(run.KeywordList(Site::USA), this);
  m_auctionsUSA = AuctionModel(run.AuctionList(Site::USA), this);
  m_auctionsUK = AuctionModel(run.AuctionList(Site::UK), this);
  m_hotItemsUSA = ItemModel(run.HotItemList(Site::USA), this);
  m_hotItemsUK = ItemModel(run.HotItemList(Site::UK), this);
  m_queryResults = ItemModel(run.QueryResults(), this);

  for (Site site : {Site::UK, Site::USA}) {
    const bool usa = site == Site::USA;
    auto* tree = new CategoryTreeView(run.Tree(site), usa ? m_treeUSA : m_treeUK, this);
    tree->setGeometry(kTreeArea);
    Attach(usa ? ViewId::TreeUSA : ViewId::TreeUK, tree);
    auto* keywords = new KeywordListView(run.KeywordList(site), usa ? m_keywordsUSA : m_keywordsUK, {365}, this);
    keywords->setGeometry(kKeywordArea);
    Attach(usa ? ViewId::KeywordsUSA : ViewId::KeywordsUK, keywords);
    auto* auctions = new AuctionListView(run.AuctionList(site), usa ? m_auctionsUSA : m_auctionsUK, {390, 390}, this);
    auctions->setGeometry(kListArea);
    Attach(usa ? ViewId::AuctionsUSA : ViewId::AuctionsUK, auctions);
  }
  const std::tuple<ViewId, RowsModel*, hotitems::CItemListCtrl*> itemViews[] = {
      {ViewId::HotItemsUSA, m_hotItemsUSA, &run.HotItemList(Site::USA)},
      {ViewId::HotItemsUK, m_hotItemsUK, &run.HotItemList(Site::UK)},
      {ViewId::QueryResults, m_queryResults, &run.QueryResults()}};
  for (const auto& [id, model, list] : itemViews) {
    auto* items = new ItemListView(*list, model, {95, 500, 100, 60}, this);
    items->setGeometry(kListArea);
    Attach(id, items);
  }
  MakeTemplateControls();
  MakePictures();
  MakeTrayMenu();
  LoadBackground(QPixmap(PicturePath(QStringLiteral("background.png"))));
  const QIcon icon(PicturePath(QStringLiteral("gavelscope.png")));
  setWindowIcon(icon);
  SetTrayIcon(icon);
  SetTrayTip(QStringLiteral("View Gavelscope Results"));
  WatchControls();
  // The keyboard moves through the views as they stand on the face, then to the search box.
  QWidget* previous = nullptr;
  for (ViewId id : {ViewId::TreeUSA, ViewId::TreeUK, ViewId::KeywordsUSA, ViewId::KeywordsUK, ViewId::AuctionsUSA,
                    ViewId::AuctionsUK, ViewId::HotItemsUSA, ViewId::HotItemsUK, ViewId::QueryResults}) {
    QWidget* next = view(id);
    if (previous != nullptr) setTabOrder(previous, next);
    previous = next;
  }
  setTabOrder(previous, m_search);
  InstallFaceAccessibility();
  // Enter, Esc and the face's keys are seen before any child handles them.
  qApp->installEventFilter(this);
  m_commands->SelectTab(Tab::Keywords);
}

CMainDialog::~CMainDialog() {
  qApp->removeEventFilter(this);
  // It reads the controller's lists on its own thread.
  m_insights.reset();
  m_bannerStop.request_stop();
  m_bannerThread.reset();
  // The controls are told to nobody before the models they would refresh go.
  m_controller->Shutdown();
}

void CMainDialog::Attach(ViewId id, QWidget* widget) {
  m_viewWidgets[static_cast<std::size_t>(id)] = widget;
  // The face's hand cursor belongs to its regions and pictures: a view never inherits it, however
  // fast the mouse leaves a tab for the view.
  if (qobject_cast<QLineEdit*>(widget) == nullptr) widget->setCursor(Qt::ArrowCursor);
  m_view->Attach(id, widget);
}

void CMainDialog::MakeTemplateControls() {
  // Placed as the dialog template places them: dialog units of 1.5 by 1.625 pixels.
  m_progress = new QProgressBar(this);
  m_progress->setGeometry(231, 122, 239, 11);
  m_progress->setTextVisible(false);
  Attach(ViewId::Progress, m_progress);
  m_search = new QLineEdit(this);
  m_search->setGeometry(471, 101, 117, 20);
  Attach(ViewId::Search, m_search);
  m_pagesSearched = new QLineEdit(this);
  m_pagesSearched->setGeometry(348, 549, 68, 28);
  m_pagesSearched->setReadOnly(true);
  m_pagesSearched->setAlignment(Qt::AlignCenter);
  QFont bold(QStringLiteral("Arial"));
  bold.setBold(true);
  m_pagesSearched->setFont(bold);
  Attach(ViewId::PagesSearched, m_pagesSearched);
  m_stopQuery = new QPushButton(this);
  m_stopQuery->setGeometry(473, 546, 48, 37);
  m_stopQuery->setIconSize(m_stopQuery->size());
  Attach(ViewId::StopQueryButton, m_stopQuery);
  connect(m_stopQuery, &QPushButton::clicked, this, [this] { m_commands->StopQuery(); });
}

void CMainDialog::MakePictures() {
  // The face owns every click and the hand cursor over the pictures, so they let the mouse
  // through.
  const auto picture = [this](QPoint at, QSize size) {
    auto* shown = new CAnimatedPicture(this);
    shown->setGeometry(QRect(at, size));
    shown->setAttribute(Qt::WA_TransparentForMouseEvents);
    return shown;
  };
  m_flagUSA = picture({15, 551}, {39, 20});
  m_flagUK = picture({78, 551}, {42, 20});
  m_banner = picture({753, 11}, {30, 33});
  // Until a banner arrives its place is a black rectangle.
  m_banner->setAutoFillBackground(true);
  QPalette black = m_banner->palette();
  black.setColor(QPalette::Window, Qt::black);
  m_banner->setPalette(black);
  SwitchSite();
}

void CMainDialog::MakeTrayMenu() {
  auto* menu = new QMenu(QStringLiteral("TrayMenu"), this);
  connect(menu->addAction(QStringLiteral("Gavelscope Home")), &QAction::triggered, this,
          [this] { m_commands->OpenHomePage(); });
  menu->addSeparator();
  const std::pair<const char*, Tab> views[] = {{"View Keywords", Tab::Keywords},
                                               {"View Auctions", Tab::Auctions},
                                               {"View Hot Items", Tab::HotItems},
                                               {"View Hot Items Query", Tab::Query}};
  for (const auto& [text, tab] : views) {
    connect(menu->addAction(QString::fromLatin1(text)), &QAction::triggered, this,
            [this, tab = tab] { ViewFromTray(tab); });
  }
  menu->addSeparator();
  connect(menu->addAction(QStringLiteral("Exit")), &QAction::triggered, this, [this] {
    close();
    QCoreApplication::quit();
  });
  SetTrayMenu(menu);
}

void CMainDialog::WatchControls() {
  // Each control's change becomes one queued refresh of its model on this thread.
  const auto watch = [this](base::ObservableControl& control, auto* model) {
    control.SetObserver([this, model] { OnGuiThread(this, [model] { model->Refresh(); }); });
  };
  app::CRunController& run = *m_controller;
  watch(run.Tree(Site::UK), m_treeUK);
  watch(run.Tree(Site::USA), m_treeUSA);
  watch(run.KeywordList(Site::UK), m_keywordsUK);
  watch(run.KeywordList(Site::USA), m_keywordsUSA);
  watch(run.AuctionList(Site::USA), m_auctionsUSA);
  watch(run.AuctionList(Site::UK), m_auctionsUK);
  watch(run.HotItemList(Site::USA), m_hotItemsUSA);
  watch(run.HotItemList(Site::UK), m_hotItemsUK);
  watch(run.QueryResults(), m_queryResults);
}

void CMainDialog::Start(bool welcome) {
  m_controller->Start();
  const app::ControllerConfig& config = m_controller->config();
  m_bannerThread = std::make_unique<banner::CLoadBannerThread>(
      config.profile, config.net, config.cacheFolder, static_cast<banner::IBannerSink&>(*this), m_bannerTiming);
  m_bannerThread->Start();
  if (welcome) m_controller->ShowWelcome();
}

void CMainDialog::OnClick(QPoint point) {
  if (m_banner->geometry().contains(point)) {
    // No banner yet, nothing to open.
    if (!m_strBannerLink.empty()) m_browser->OpenUrlInBrowser(m_strBannerLink);
  } else if (m_flagUSA->geometry().contains(point)) {
    SelectSite(Site::USA);
  } else if (m_flagUK->geometry().contains(point)) {
    SelectSite(Site::UK);
  }

  const int region = RegionAt(point);
  switch (static_cast<FaceRegion>(region)) {
    case FaceRegion::TabKeywords:
    case FaceRegion::TabAuctions:
    case FaceRegion::TabHotItems:
      SelectTab(static_cast<Tab>(region));
      break;
    case FaceRegion::TabQuery:
      SelectTab(Tab::Query);
      AskForNewQuery();
      break;
    case FaceRegion::Home:
      m_commands->OpenHomePage();
      break;
    case FaceRegion::Refresh:
      m_controller->RefreshDisplay();
      break;
    case FaceRegion::Export:
      m_commands->Export();
      break;
    case FaceRegion::MyEbay:
      m_commands->OpenMyEbay();
      break;
    case FaceRegion::Search:
      m_commands->SearchView(ToPageText(m_search->text()));
      break;
  }
  repaint();
}

bool CMainDialog::AskForNewQuery() {
  // Asked on every click of the tab, also when it is already selected.
  const base::MessageReply reply = m_messages->Show(base::UserMessage{
      "Are you sure you wish to make a new query?", "Warning - This may take a while !", base::MessageButtons::YesNo});
  if (reply != base::MessageReply::Yes) return false;
  // A running query is stopped, and said so, before the new one is defined.
  if (m_controller->IsQueryRunning()) m_commands->StopQuery();
  const bool started = m_queryDialog ? m_queryDialog() : [this] {
    const CQueryDialog* shown = nullptr;
    CQueryDialog dialog(
        m_controller->config().profile, KnownCategoryNames(*m_controller),
        [this, &shown](const query::QueryDefinition& query) {
          return StartQuery(query, shown != nullptr && shown->file() ? shown->file()->filename().string() : "");
        },
        *m_messages, this);
    shown = &dialog;
    return dialog.exec() == QDialog::Accepted;
  }();
  if (!started) return false;
  m_controller->SetPagesSearchedText("0");
  m_messages->Show(
      base::UserMessage{"Your new query has now began - you will be notified when search has ended.  "
                        "Feel free to use Gavelscope normally while you wait.",
                        "Searching !"});
  return true;
}

void CMainDialog::ShowAbout() {
  auto* about = new CAboutDlg(m_controller->config().profile.vendor.supportEmail, this);
  about->setAttribute(Qt::WA_DeleteOnClose);
  about->open();
}

bool CMainDialog::StartQuery(const query::QueryDefinition& query, std::string name) {
  m_querySite = query.site;
  // Only a query with a file's name is recorded: that name is what its trends are asked for by.
  m_lastQuery = name.empty() ? std::nullopt : std::optional(RecordableQuery{query, std::move(name)});
  if (m_insights) m_insights->trends()->SetQuery(m_lastQuery);
  const bool started = m_commands->StartQuery(query);
  FollowInsights();
  return started;
}

InsightsSubject CMainDialog::ShownSubject() const {
  // Until a query has run, its empty list is read by the selected Site's rules.
  return {m_commands->tab(), m_commands->site(), m_querySite.value_or(m_commands->site())};
}

void CMainDialog::FollowInsights() {
  if (m_insights) m_insights->Follow(ShownSubject());
}

void CMainDialog::ShowInsights() {
  if (!m_insights) {
    m_insights = std::make_unique<CInsightsWindow>(*m_controller, *m_messages, m_researchStore);
    m_insights->trends()->SetQuery(m_lastQuery);
    app::CRunController& run = *m_controller;
    const std::pair<RowsModel*, const base::ObservableControl*> lists[] = {{m_auctionsUSA, &run.AuctionList(Site::USA)},
                                                                           {m_auctionsUK, &run.AuctionList(Site::UK)},
                                                                           {m_hotItemsUSA, &run.HotItemList(Site::USA)},
                                                                           {m_hotItemsUK, &run.HotItemList(Site::UK)},
                                                                           {m_queryResults, &run.QueryResults()}};
    // Each model is refreshed on this thread after every change of its list: the Insights window
    // hears of the change there and gathers the changes up itself.
    for (const auto& [model, list] : lists) {
      const auto changed = [this, list = list] { m_insights->ListChanged(*list); };
      connect(model, &QAbstractItemModel::modelReset, m_insights.get(), changed);
      connect(model, &QAbstractItemModel::dataChanged, m_insights.get(), changed);
    }
    // Beside the face, on the side with more room, narrowed to fit there; where neither side has
    // room for a usable window, the desktop places it.
    const QRect face = frameGeometry();
    const QRect room = screen()->availableGeometry();
    const int right = room.right() - face.right();
    const int left = face.left() - room.left();
    const int width = std::min(m_insights->width(), std::max(left, right) - 16);
    if (width >= CInsightsWindow::kNarrowest) {
      m_insights->resize(width, m_insights->height());
      m_insights->move(right >= left ? face.right() + 8 : face.left() - 8 - width, face.top());
    }
  }
  m_insights->Follow(ShownSubject());
  m_insights->show();
  m_insights->raise();
  m_insights->activateWindow();
}

void CMainDialog::contextMenuEvent(QContextMenuEvent* event) {
  // The face's regions and pictures take right clicks as clicks; the bare face offers the About
  // box and the Insights window, which a desktop without a window menu has nowhere else to put.
  const QPoint point = event->pos();
  if (RegionAt(point) >= 0 || m_banner->geometry().contains(point) || m_flagUSA->geometry().contains(point) ||
      m_flagUK->geometry().contains(point)) {
    return;
  }
  QMenu menu(this);
  connect(menu.addAction(QStringLiteral("&About Gavelscope...")), &QAction::triggered, this, &CMainDialog::ShowAbout);
  connect(menu.addAction(QStringLiteral("&Insights...\tF2")), &QAction::triggered, this, &CMainDialog::ShowInsights);
  menu.exec(event->globalPos());
}

void CMainDialog::SelectTab(Tab tab) {
  m_commands->SelectTab(tab);
  FollowInsights();
  update();
}

void CMainDialog::ViewFromTray(Tab tab) {
  show();
  RemoveTrayIcon();
  SelectTab(tab);
}

void CMainDialog::SelectSite(Site site) {
  if (m_commands->SelectSite(site)) {
    SwitchSite();
    FollowInsights();
  }
}

void CMainDialog::SwitchSite() {
  const bool usa = m_commands->site() == Site::USA;
  m_flagUSA->Stop();
  m_flagUK->Stop();
  m_flagUSA->LoadFromFile(PicturePath(usa ? QStringLiteral("usaselected.gif") : QStringLiteral("usa.gif")));
  m_flagUK->LoadFromFile(PicturePath(usa ? QStringLiteral("uk.gif") : QStringLiteral("ukselected.gif")));
  m_flagUSA->Draw();
  m_flagUK->Draw();
}

void CMainDialog::PublishLink(const std::string& link) {
  OnGuiThread(this, [this, link] { m_strBannerLink = link; });
}

void CMainDialog::ShowBanner(const std::filesystem::path& picture) {
  // Read here: the next banner overwrites the file while the window may not have shown this one.
  std::string bytes;
  if (std::FILE* file = std::fopen(picture.c_str(), "rb")) {
    char chunk[4096];
    for (std::size_t read; (read = std::fread(chunk, 1, sizeof chunk, file)) > 0;) bytes.append(chunk, read);
    std::fclose(file);
  }
  DecodedPicture decoded = CAnimatedPicture::Decode(bytes, m_bannerStop.get_token());
  if (m_bannerStop.stop_requested()) return;
  OnGuiThread(this, [this, decoded = std::move(decoded)] { ShowBannerPicture(decoded); });
}

void CMainDialog::ShowBannerPicture(const DecodedPicture& picture) {
  m_banner->Stop();
  // A picture that cannot be shown leaves the place empty for its time, with no box of an earlier
  // banner's size; its link, published before the download, still counts.
  const bool loaded = m_banner->Install(picture);
  if (loaded) m_banner->Draw();
  const QSize size = loaded ? m_banner->GetSize() : QSize(0, 0);
  m_banner->setFixedSize(size);
  // The banner's top right corner sits at the client area's top right corner.
  m_banner->setGeometry(kClientWidth - size.width(), 0, size.width(), size.height());
  if (m_bannerShown) m_bannerShown();
}

void CMainDialog::UpdateCursor(QPoint point) {
  const bool overPicture = m_banner->geometry().contains(point) || m_flagUSA->geometry().contains(point) ||
                           m_flagUK->geometry().contains(point);
  if (overPicture || RegionAt(point) >= 0) {
    setCursor(Qt::PointingHandCursor);
  } else {
    unsetCursor();
  }
}

void CMainDialog::mousePressEvent(QMouseEvent* event) {
  // Right clicks act exactly like left clicks on the face.
  if (event->button() == Qt::LeftButton || event->button() == Qt::RightButton) {
    const QPoint point = event->position().toPoint();
    OnClick(point);
    // The pointer is still over what it pressed; keys and screen readers press the same commands
    // without it. The query tab's dialog has taken the pointer elsewhere: its next move tells.
    const int region = RegionAt(point);
    if (region >= 0 && region != static_cast<int>(FaceRegion::TabQuery)) setCursor(Qt::PointingHandCursor);
  }
  CTrayDialog::mousePressEvent(event);
}

void CMainDialog::mouseMoveEvent(QMouseEvent* event) {
  UpdateCursor(event->position().toPoint());
  CTrayDialog::mouseMoveEvent(event);
}

void CMainDialog::mouseReleaseEvent(QMouseEvent* event) {
  UpdateCursor(event->position().toPoint());
  CTrayDialog::mouseReleaseEvent(event);
}

void CMainDialog::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  PaintBackground(painter);
  PaintFace(painter);
}

void CMainDialog::PaintFace(QPainter& painter) const {
  painter.setFont(FaceFont());
  painter.setPen(Qt::white);
  DrawFaceText(painter, 22, 576, QStringLiteral("U.S.A"));
  DrawFaceText(painter, 93, 576, QStringLiteral("UK"));

  painter.setPen(kButtonCaption);
  for (const FaceText& caption : kButtonCaptions) DrawFaceText(painter, caption.x, caption.y, caption.text);

  // Separators and underlines end one pixel short, as line drawing leaves out the end point.
  painter.setPen(Qt::black);
  for (int x : kSeparatorsX) painter.drawLine(x, 103, x, 114);
  for (int region = static_cast<int>(FaceRegion::Home); region < kFaceRegionCount; ++region) {
    const QRect button = FaceRegionRect(static_cast<FaceRegion>(region));
    painter.drawLine(button.left(), 115, button.right(), 115);
  }

  // Frames and fills are both fills of whole logical pixels, so they meet at every scale factor,
  // where a line's rounding and a fill's rounding would part.
  const int selected = static_cast<int>(m_commands->tab());
  for (int tab = 0; tab < 4; ++tab) {
    const QRect place = FaceRegionRect(static_cast<FaceRegion>(tab));
    painter.fillRect(place, Qt::black);
    painter.fillRect(place.adjusted(1, 1, -1, -1), tab == selected ? kSelectedTabFill : Qt::white);
  }
  if (m_commands->tab() == Tab::Query) {
    painter.setPen(Qt::white);
    DrawFaceText(painter, 280, 555, QStringLiteral("Searched :"));
    DrawFaceText(painter, 420, 555, QStringLiteral("Pages"));
  }

  painter.setPen(Qt::black);
  for (const FaceText& caption : kTabCaptions) DrawFaceText(painter, caption.x, caption.y, caption.text);
  for (int top : {23, 45, 67}) painter.fillRect(QRect(198, top, 20, 4), Qt::black);
}

void CMainDialog::showEvent(QShowEvent* event) {
  CTrayDialog::showEvent(event);
  SetDefaultMenuItem(kFirstViewMenuItem + static_cast<int>(m_commands->tab()));
}

void CMainDialog::hideEvent(QHideEvent* event) {
  CTrayDialog::hideEvent(event);
  SetDefaultMenuItem(kFirstViewMenuItem + static_cast<int>(m_commands->tab()));
}

bool CMainDialog::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyPress) {
    auto* widget = qobject_cast<QWidget*>(watched);
    if (widget != nullptr && widget->window() == this) {
      const int key = static_cast<QKeyEvent*>(event)->key();
      if (key == Qt::Key_Return || key == Qt::Key_Enter) {
        // Enter never closes the window; in the search edit it searches.
        m_commands->EnterPressed(m_search->hasFocus(), ToPageText(m_search->text()));
        return true;
      }
      if (key == Qt::Key_F1) {
        ShowAbout();
        return true;
      }
      if (key == Qt::Key_F2) {
        ShowInsights();
        return true;
      }
      if (key == Qt::Key_Escape) {
        close();
        return true;
      }
      if (HandleFaceKey(*this, *static_cast<QKeyEvent*>(event))) return true;
    }
  }
  return CTrayDialog::eventFilter(watched, event);
}

void CMainDialog::closeEvent(QCloseEvent* event) {
  m_bannerStop.request_stop();
  if (m_bannerThread) m_bannerThread->Stop();
  m_controller->Shutdown();
  if (m_insights) m_insights->close();
  RemoveTrayIcon();
  event->accept();
}

bool CMainDialog::event(QEvent* event) {
  // The painted commands name themselves and their keys; the face has no widgets to carry tooltips.
  if (event->type() == QEvent::ToolTip) {
    auto* help = static_cast<QHelpEvent*>(event);
    const QString tip = FaceToolTipAt(*this, help->pos());
    if (tip.isEmpty()) {
      QToolTip::hideText();
      event->ignore();
    } else {
      QToolTip::showText(help->globalPos(), tip, this, FaceCommandRect(*this, *FaceCommandAt(*this, help->pos())));
    }
    return true;
  }
  return CTrayDialog::event(event);
}

}  // namespace gavelscope::ui
