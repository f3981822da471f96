#pragma once

#include <QtGlobal>

/// Every indicator that a chart can show. Its row in IndicatorTable.cpp says what it is and how it is shown.
/// The rows are in this order.
enum class IndicatorKind : qint32 {
    Sma,
    Ema,
    Rsi,
};
