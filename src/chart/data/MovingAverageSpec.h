#pragma once

#include <QColor>
#include <QtGlobal>

/// How a moving average weighs its bars.
enum class AverageKind : qint32 {
    Simple = 0,
    Exponential = 1,
};

/// One moving average of a chart.
struct MovingAverageSpec {
    AverageKind kind = AverageKind::Simple;
    qint32 period = 20; ///< bars; 2 to 400 when a person enters it, below 1 counts as 1
    QColor color;       ///< of the line and of its legend

    bool operator==(const MovingAverageSpec&) const = default;
};
