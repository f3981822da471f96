#pragma once

#include <QtGlobal>

/// Every indicator that a chart can show. What one is, and all that is shown of it, says its row in
/// IndicatorTable.cpp; the rows stand in this order.
enum class IndicatorKind : qint32 {
    Sma,
    Ema,
    Rsi,
};
