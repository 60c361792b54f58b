// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "ui/FaceAccess.h"

#include <QAccessible>
#include <QAccessibleActionInterface>
#include <QAccessibleWidget>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPointer>

#include <array>
#include <vector>

#include "ui/AnimatedPicture.h"

namespace gavelscope::ui {

namespace {

using sites::Site;

const std::array<FaceCommand, 11>& Commands() {
  static const std::array<FaceCommand, 11> commands{{
      {QStringLiteral("Todays Keywords"), QKeySequence(Qt::CTRL | Qt::Key_1), FaceRegion::TabKeywords},
      {QStringLiteral("Todays Auctions"), QKeySequence(Qt::CTRL | Qt::Key_2), FaceRegion::TabAuctions},
      {QStringLiteral("Hot Item History"), QKeySequence(Qt::CTRL | Qt::Key_3), FaceRegion::TabHotItems},
      {QStringLiteral("Hot Item Query"), QKeySequence(Qt::CTRL | Qt::Key_4), FaceRegion::TabQuery},
      {QStringLiteral("home"), QKeySequence(Qt::CTRL | Qt::Key_H), FaceRegion::Home},
      {QStringLiteral("refresh"), QKeySequence(Qt::Key_F5), FaceRegion::Refresh},
      {QStringLiteral("eXport"), QKeySequence(Qt::CTRL | Qt::Key_E), FaceRegion::Export},
      {QStringLiteral("my eBay"), QKeySequence(Qt::CTRL | Qt::Key_M), FaceRegion::MyEbay},
      {QStringLiteral("Search:"), QKeySequence(), FaceRegion::Search},
      {QStringLiteral("U.S.A"), QKeySequence(Qt::ALT | Qt::Key_U), std::nullopt, Site::USA},
      {QStringLiteral("UK"), QKeySequence(Qt::ALT | Qt::Key_K), std::nullopt, Site::UK},
  }};
  return commands;
}

bool IsTab(const FaceCommand& command) {
  return command.region && *command.region <= FaceRegion::TabQuery;
}

// One painted command as a screen reader sees it: a page tab or a button that can be pressed.
class FaceCommandAccessible : public QAccessibleInterface, public QAccessibleActionInterface {
 public:
  FaceCommandAccessible(CMainDialog* window, const FaceCommand& command) : m_window(window), m_command(command) {}

  bool isValid() const override { return !m_window.isNull(); }
  QObject* object() const override { return nullptr; }
  QWindow* window() const override { return m_window ? m_window->windowHandle() : nullptr; }
  QAccessibleInterface* parent() const override { return QAccessible::queryAccessibleInterface(m_window.data()); }
  QAccessibleInterface* child(int) const override { return nullptr; }
  int childCount() const override { return 0; }
  int indexOfChild(const QAccessibleInterface*) const override { return -1; }
  QAccessibleInterface* childAt(int, int) const override { return nullptr; }
  QString text(QAccessible::Text kind) const override {
    switch (kind) {
      case QAccessible::Name:
        return m_command.caption;
      case QAccessible::Accelerator:
        return m_command.key.toString(QKeySequence::NativeText);
      default:
        return {};
    }
  }
  void setText(QAccessible::Text, const QString&) override {}
  QRect rect() const override {
    if (!m_window) return {};
    const QRect place = FaceCommandRect(*m_window, m_command);
    return QRect(m_window->mapToGlobal(place.topLeft()), place.size());
  }
  QAccessible::Role role() const override { return IsTab(m_command) ? QAccessible::PageTab : QAccessible::Button; }
  QAccessible::State state() const override {
    QAccessible::State state;
    state.invisible = !m_window || !m_window->isVisible();
    state.selectable = IsTab(m_command);
    state.selected = IsTab(m_command) && m_window &&
                     static_cast<int>(m_window->commands().tab()) == static_cast<int>(*m_command.region);
    return state;
  }
  void* interface_cast(QAccessible::InterfaceType type) override {
    return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this) : nullptr;
  }

  QStringList actionNames() const override { return {pressAction()}; }
  void doAction(const QString& action) override {
    if (action == pressAction() && m_window) m_window->OnClick(FaceCommandRect(*m_window, m_command).center());
  }
  QStringList keyBindingsForAction(const QString& action) const override {
    if (action != pressAction() || m_command.key.isEmpty()) return {};
    return {m_command.key.toString(QKeySequence::NativeText)};
  }

 private:
  QPointer<CMainDialog> m_window;
  const FaceCommand& m_command;
};

// The window as a screen reader sees it: its widgets, then the painted commands.
class FaceAccessible : public QAccessibleWidget {
 public:
  explicit FaceAccessible(CMainDialog* window) : QAccessibleWidget(window, QAccessible::Dialog) {
    for (const FaceCommand& command : Commands()) {
      auto* painted = new FaceCommandAccessible(window, command);
      m_painted.push_back(QAccessible::registerAccessibleInterface(painted));
    }
  }
  ~FaceAccessible() override {
    for (QAccessible::Id id : m_painted) QAccessible::deleteAccessibleInterface(id);
  }

  int childCount() const override { return QAccessibleWidget::childCount() + static_cast<int>(m_painted.size()); }
  QAccessibleInterface* child(int index) const override {
    const int widgets = QAccessibleWidget::childCount();
    if (index < widgets) return QAccessibleWidget::child(index);
    const int painted = index - widgets;
    return painted < static_cast<int>(m_painted.size()) ? QAccessible::accessibleInterface(m_painted[painted])
                                                        : nullptr;
  }
  int indexOfChild(const QAccessibleInterface* child) const override {
    for (std::size_t i = 0; i < m_painted.size(); ++i) {
      if (QAccessible::accessibleInterface(m_painted[i]) == child) {
        return QAccessibleWidget::childCount() + static_cast<int>(i);
      }
    }
    return QAccessibleWidget::indexOfChild(child);
  }

 private:
  std::vector<QAccessible::Id> m_painted;
};

QAccessibleInterface* FaceFactory(const QString& className, QObject* object) {
  // The window class has no meta-object of its own: it is found by its type, whatever name Qt reports.
  (void)className;
  if (auto* window = dynamic_cast<CMainDialog*>(object)) return new FaceAccessible(window);
  return nullptr;
}

}  // namespace

std::span<const FaceCommand> FaceCommands() {
  return Commands();
}

QRect FaceCommandRect(const CMainDialog& window, const FaceCommand& command) {
  if (command.region) return FaceRegionRect(*command.region);
  const CAnimatedPicture* flag = window.flag(command.site);
  return flag != nullptr ? flag->geometry() : QRect();
}

const FaceCommand* FaceCommandAt(const CMainDialog& window, QPoint point) {
  for (const FaceCommand& command : Commands()) {
    if (FaceCommandRect(window, command).contains(point)) return &command;
  }
  return nullptr;
}

QString FaceToolTipAt(const CMainDialog& window, QPoint point) {
  const FaceCommand* command = FaceCommandAt(window, point);
  if (command == nullptr) return {};
  QString caption = command->caption;
  if (caption.endsWith(':')) caption.chop(1);
  if (command->key.isEmpty()) return caption;
  return caption + QStringLiteral(" (") + command->key.toString(QKeySequence::NativeText) + ')';
}

bool HandleFaceKey(CMainDialog& window, const QKeyEvent& event) {
  const QKeySequence pressed(event.keyCombination());
  if (pressed == QKeySequence(Qt::CTRL | Qt::Key_F)) {
    window.searchEdit()->setFocus(Qt::ShortcutFocusReason);
    window.searchEdit()->selectAll();
    return true;
  }
  for (const FaceCommand& command : Commands()) {
    if (command.key.isEmpty() || pressed != command.key) continue;
    window.OnClick(FaceCommandRect(window, command).center());
    return true;
  }
  return false;
}

void InstallFaceAccessibility() {
  static const bool installed = [] {
    QAccessible::installFactory(FaceFactory);
    return true;
  }();
  (void)installed;
}

}  // namespace gavelscope::ui
