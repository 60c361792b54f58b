// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <QIcon>
#include <QPixmap>
#include <QSystemTrayIcon>
#include <QWidget>

#include <functional>

class QMenu;
class QPainter;

namespace gavelscope::ui {

// A window that minimises into the desktop's notification area: minimising hides it behind a tray
// icon, a double click on the icon brings it back and a right click opens the tray menu. It also
// tiles its background picture. Where the desktop has no notification area, minimising does
// nothing at all rather than leave a window the user cannot find again.
class CTrayDialog : public QWidget {
 public:
  explicit CTrayDialog(QWidget* parent = nullptr);
  ~CTrayDialog() override;

  void SetTrayIcon(const QIcon& icon);
  // The tip is cut to the 63 characters a tray tip holds.
  void SetTrayTip(const QString& tip);
  // The window owns the menu from now on.
  void SetTrayMenu(QMenu* menu);
  void LoadBackground(const QPixmap& tile);

  bool AddTrayIcon();
  bool RemoveTrayIcon();
  bool IsTrayIconShown() const { return m_bTrayIconShown; }

  QMenu* trayMenu() const { return m_menuTray; }
  // The position within the tray menu of the item drawn as the default one.
  void SetDefaultMenuItem(int position) { m_nDefaultMenuItem = position; }
  int defaultMenuItem() const { return m_nDefaultMenuItem; }

  // Whether the desktop offers a notification area; asked at each minimise. Tests stand in for a
  // desktop here: a bare X server has none, and Qt's tray icon claims to be shown even so.
  void SetTrayAvailable(std::function<bool()> available) { m_trayAvailable = std::move(available); }

  // The tray icon's mouse events, as the desktop reports them.
  virtual void OnTrayLButtonDown() {}
  virtual void OnTrayLButtonDblClk();
  virtual void OnTrayRButtonDown();

 protected:
  void changeEvent(QEvent* event) override;
  // Tiles the background picture over the whole client area.
  void PaintBackground(QPainter& painter) const;

 private:
  void OnActivated(QSystemTrayIcon::ActivationReason reason);
  void MinimizeToTray();

  bool m_bMinimizeToTray = true;
  bool m_bTrayIconShown = false;
  QIcon m_icon;
  QString m_tip;
  QSystemTrayIcon* m_tray = nullptr;
  QMenu* m_menuTray = nullptr;
  int m_nDefaultMenuItem = 0;
  QPixmap m_bmpBackground;
  std::function<bool()> m_trayAvailable = [] { return QSystemTrayIcon::isSystemTrayAvailable(); };
};

}  // namespace gavelscope::ui
