#pragma once

#include "chart/data/IndicatorPane.h"
#include "chart/data/IndicatorTable.h"

#include <QRect>

#include <span>

class QPainter;
struct BarRange;
struct ChartFrame;

/// What one pane of a frame shows.
struct PaneContent {
    QRect area;
    IndicatorPane pane;
    PaneStyle style;
    std::span<const double> values; ///< one a bar, NaN where there is none; may be empty
};

/// Paints ground, bounds, line and title of a pane, as far as they are exposed.
void paintPane(QPainter& painter, const ChartFrame& frame, const PaneContent& content);

/// The scale of the style, or one that holds the values of the visible bars: 0 to 1 where there are none.
[[nodiscard]] ValueRange paneScale(
    const PaneStyle& style, std::span<const double> values, const BarRange& visible);
