#pragma once

#include "app/Balloon.h"

#include <QList>
#include <QMenu>
#include <QObject>
#include <QSystemTrayIcon>
#include <QTimer>

/// The terminal's icon at the system tray with its menu and balloons. Create it only where
/// QSystemTrayIcon::isSystemTrayAvailable(): an icon reports itself visible even without a tray.
/// Many trays have room for one balloon, and the next one wipes it out. Balloons that come together are
/// therefore shown one after the other, each long enough to be read.
class TrayIcon final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(TrayIcon)

public:
    explicit TrayIcon(QObject* parent = nullptr);

    [[nodiscard]] QSystemTrayIcon& icon() { return m_icon; }

    /// How many balloons wait at most. What comes beyond that is not shown, and nothing is lost by it: the
    /// lists and the Journal have it too.
    static constexpr qsizetype mostWaiting = 20;

public Q_SLOTS:
    /// At once, or in its turn. A critical one goes before all others and is never left out.
    void showBalloon(const Balloon& balloon);

Q_SIGNALS:
    /// "Show" was chosen, or the icon itself was clicked.
    void showRequested();
    void exitRequested();

private:
    void showNext();

    QMenu m_menu;
    QSystemTrayIcon m_icon;
    QList<Balloon> m_waiting;
    QTimer m_turn{this}; ///< active while the latest balloon is being read
};
