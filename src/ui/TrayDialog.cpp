// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "ui/TrayDialog.h"

#include <QEvent>
#include <QMenu>
#include <QPainter>
#include <QTimer>

namespace gavelscope::ui {

CTrayDialog::CTrayDialog(QWidget* parent) : QWidget(parent) {}

CTrayDialog::~CTrayDialog() { RemoveTrayIcon(); }

void CTrayDialog::SetTrayIcon(const QIcon& icon) {
  m_icon = icon;
  if (m_tray != nullptr) m_tray->setIcon(icon);
}

void CTrayDialog::SetTrayTip(const QString& tip) {
  m_tip = tip.left(63);
  if (m_tray != nullptr) m_tray->setToolTip(m_tip);
}

void CTrayDialog::SetTrayMenu(QMenu* menu) {
  m_menuTray = menu;
  menu->setParent(this, menu->windowFlags());
  // The default item is marked each time the menu opens, whoever opens it: the desktop on a right
  // click or the context-menu key.
  connect(menu, &QMenu::aboutToShow, this, [this] {
    const QList<QAction*> actions = m_menuTray->actions();
    if (m_nDefaultMenuItem >= 0 && m_nDefaultMenuItem < actions.size()) {
      m_menuTray->setDefaultAction(actions[m_nDefaultMenuItem]);
    }
  });
}

void CTrayDialog::LoadBackground(const QPixmap& tile) { m_bmpBackground = tile; }

bool CTrayDialog::AddTrayIcon() {
  if (m_bTrayIconShown || !m_trayAvailable()) return false;
  if (m_tray == nullptr) {
    m_tray = new QSystemTrayIcon(m_icon, this);
    m_tray->setToolTip(m_tip);
    if (m_menuTray != nullptr) m_tray->setContextMenu(m_menuTray);
    connect(m_tray, &QSystemTrayIcon::activated, this, &CTrayDialog::OnActivated);
  }
  m_tray->show();
  m_bTrayIconShown = true;
  return true;
}

bool CTrayDialog::RemoveTrayIcon() {
  if (!m_bTrayIconShown) return false;
  if (m_tray != nullptr) m_tray->hide();
  m_bTrayIconShown = false;
  return true;
}

void CTrayDialog::OnTrayLButtonDblClk() {
  if (m_bMinimizeToTray && RemoveTrayIcon()) {
    showNormal();
    activateWindow();
  }
}

void CTrayDialog::OnTrayRButtonDown() {
  // The desktop opens the context menu itself; the menu marks its default item as it opens.
}

void CTrayDialog::OnActivated(QSystemTrayIcon::ActivationReason reason) {
  switch (reason) {
    case QSystemTrayIcon::Trigger:
      OnTrayLButtonDown();
      break;
    case QSystemTrayIcon::DoubleClick:
      OnTrayLButtonDblClk();
      break;
    case QSystemTrayIcon::Context:
      OnTrayRButtonDown();
      break;
    default:
      break;
  }
}

void CTrayDialog::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::WindowStateChange && isMinimized() && m_bMinimizeToTray) {
    // Qt reports the minimise after the fact; undo it from the event loop, not from inside the
    // state change.
    QTimer::singleShot(0, this, [this] { MinimizeToTray(); });
  }
}

void CTrayDialog::MinimizeToTray() {
  if (!isMinimized()) return;
  const bool toTray = AddTrayIcon();
  setWindowState(windowState() & ~Qt::WindowMinimized);
  if (toTray) hide();
}

void CTrayDialog::PaintBackground(QPainter& painter) const {
  if (m_bmpBackground.isNull()) return;
  for (int y = 0; y < height(); y += m_bmpBackground.height()) {
    for (int x = 0; x < width(); x += m_bmpBackground.width()) painter.drawPixmap(x, y, m_bmpBackground);
  }
}

}  // namespace gavelscope::ui
