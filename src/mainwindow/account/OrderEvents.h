#pragma once

#include "app/base/LineKind.h"
#include "mainwindow/account/OrderReaction.h"

#include <QJsonObject>
#include <QObject>

/// Turns the feed's order and account events into Journal and Experts lines, sounds, balloons and
/// refreshes, in that order. Knows neither the tray nor the panes; the main window connects them.
class OrderEvents final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(OrderEvents)

public:
    /// Without a tray no balloon is shown.
    explicit OrderEvents(bool hasTray, QObject* parent = nullptr);

public Q_SLOTS:
    void onOrdersChanged(const QJsonObject& event);
    void onAccountUpdated(const QJsonObject& event);

Q_SIGNALS:
    void journalLine(const QString& source, const QString& message);
    void expertLine(const QString& source, const QString& message, LineKind kind);
    void soundWanted(SoundKind kind);
    void balloonWanted(const Balloon& balloon);
    void accountsRefreshWanted();
    void tradesRefreshWanted();
    void historyRefreshWanted();

private:
    void notify(const OrderReaction& reaction);

    bool m_hasTray;
};
