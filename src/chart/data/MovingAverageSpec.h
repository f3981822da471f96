#pragma once

#include "chart/data/IndicatorKind.h"

#include <QColor>

/// One moving average of a chart: an indicator that is drawn over the prices.
struct MovingAverageSpec {
    IndicatorKind kind = IndicatorKind::Sma;
    qint32 period = 20; ///< bars; 2 to 400 when a person enters it, below 1 counts as 1
    QColor color;       ///< of the line and of its legend

    bool operator==(const MovingAverageSpec&) const = default;
};
