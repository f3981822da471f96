#include "experts/ScriptOrder.h"

#include <QCoreApplication>

#include <cmath>

std::optional<QString> reasonToIgnore(double lots, double stopLoss, double takeProfit)
{
    // NaN cannot be sent, and an order without the stop that was meant is another order.
    if (!std::isfinite(lots) || lots <= 0.0) {
        return QCoreApplication::translate(
            "ChartExpert", "Order ignored: the lots must be a number above 0, not %1")
            .arg(lots);
    }
    if (!std::isfinite(stopLoss) || !std::isfinite(takeProfit)) {
        return QCoreApplication::translate(
            "ChartExpert", "Order ignored: stop loss or take profit is not a number");
    }
    return std::nullopt;
}
