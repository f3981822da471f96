#pragma once

#include "chart/data/TradeLevel.h"

#include <QJsonArray>
#include <QList>
#include <QString>

/// The level lines of one symbol: entry, stop loss and take profit of each open trade, the trigger price
/// of each pending order, in the order of the lists. Trades of other symbols are left out, and so is a
/// level that is missing, 0 or unreadable.
[[nodiscard]] QList<TradeLevel> buildTradeLevels(
    const QString& symbol, const QJsonArray& open, const QJsonArray& pending);
