#pragma once

#include "chart/data/ChartColors.h"
#include "chart/data/IndicatorPane.h"
#include "chart/data/MovingAverageSpec.h"

#include <QJsonObject>
#include <QList>

#include <optional>

class ChartWidget;

/// The part of a chart's look that is saved with the window layout, and its form in JSON.
struct ChartState {
    /// More than anybody can tell apart; any further ones in a saved state are left out.
    static constexpr qsizetype mostAverages = 64;

    QList<MovingAverageSpec> averages;
    QList<IndicatorPane> panes = hiddenPanes();
    std::optional<int> chartType; ///< 0 candles, 1 bars, 2 line
    std::optional<bool> chartShift;
    std::optional<bool> autoScroll;
    ChartColors colors;

    [[nodiscard]] static ChartState of(const ChartWidget& chart);
    void applyTo(ChartWidget& chart) const;

    [[nodiscard]] QJsonObject toJson() const;
    /// Reads what toJson() wrote. Unknown keys are passed over; a type, shift or scroll state that is missing
    /// or of a wrong type stays absent, so that applying it keeps the chart's own; a colour that is missing
    /// or does not parse is the default one. Averages that are no objects, and those after the first
    /// `mostAverages`, are left out; a type that is missing or unknown is "sma"; a period that is missing or
    /// no whole number is 20, one below 1 is 1; a colour that is missing or does not parse is the first one
    /// of the palette.
    [[nodiscard]] static ChartState fromJson(const QJsonObject& json);

    bool operator==(const ChartState&) const = default;
};
