#pragma once

#include "app/base/Balloon.h"

#include <QMenu>
#include <QObject>
#include <QSystemTrayIcon>

/// The terminal's icon at the system tray with its menu and balloons. Create it only where
/// QSystemTrayIcon::isSystemTrayAvailable(): an icon reports itself visible even without a tray.
class TrayIcon final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(TrayIcon)

public:
    explicit TrayIcon(QObject* parent = nullptr);

    [[nodiscard]] QSystemTrayIcon& icon() { return m_icon; }

public Q_SLOTS:
    /// Shows it at once, even if another one is on show: the tray arranges them, and news of money must not
    /// wait.
    void showBalloon(const Balloon& balloon);

Q_SIGNALS:
    /// "Show" was chosen, or the icon itself was clicked.
    void showRequested();
    void exitRequested();

private:
    QMenu m_menu;
    QSystemTrayIcon m_icon;
};
