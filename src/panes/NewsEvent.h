#pragma once

#include "net/records/NewsRecord.h"

#include <QColor>
#include <QJsonDocument>
#include <QList>
#include <QString>

/// One upcoming event of the economic calendar.
struct NewsEvent final {
    QString id;
    QString time;         ///< "Fri 13:30", local time; empty when the server's time cannot be read
    int minutesUntil = 0; ///< negative once it has begun
    Impact impact = Impact::Low;
    QString impactText; ///< as the server words it
    QString currency;
    QString title;
};

/// The server's answer to a request for the calendar.
struct NewsReply final {
    int notifyMinutes = 15;  ///< how long before an event of high impact to warn
    QList<NewsEvent> events; ///< in the server's order

    /// A document that holds no list of events has none; fields of a wrong type count as missing.
    [[nodiscard]] static NewsReply read(const QJsonDocument& document);
};

/// "now", "59m" or "1h 15m".
[[nodiscard]] QString countdownText(int minutes);

/// Red, orange or grey, from high to low.
[[nodiscard]] QColor impactColor(Impact impact);

/// Whether an event is to be announced, `notifyMinutes` before it at the earliest.
[[nodiscard]] bool callsForWarning(const NewsEvent& event, int notifyMinutes);
