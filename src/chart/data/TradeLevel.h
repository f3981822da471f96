#pragma once

#include <QColor>
#include <QString>

/// One horizontal line that an open trade or a pending order puts on the chart.
struct TradeLevel {
    QString tradeId; ///< full id of the trade or order
    QString kind;    ///< "ENTRY", "SL", "TP" or "PRICE"
    double price = 0.0;
    QString label; ///< plain text drawn on the line
    QColor color;
    Qt::PenStyle penStyle = Qt::DashLine;
    bool draggable = false;
    QString trade = {}; ///< its trade in words: "buy limit 0.10 #1a2b3c4d"

    bool operator==(const TradeLevel&) const = default;
};
