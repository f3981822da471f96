#pragma once

#include "chart/ChartColors.h"

#include <QJsonObject>

#include <optional>

class ChartWidget;

/// What of a chart's look is saved with the window layout, and how it stands in JSON.
struct ChartState {
    bool rsi = false;
    int rsiPeriod = 14;
    std::optional<int> chartType; ///< 0 candles, 1 bars, 2 line
    std::optional<bool> chartShift;
    std::optional<bool> autoScroll;
    ChartColors colors;

    [[nodiscard]] static ChartState of(const ChartWidget& chart);
    void applyTo(ChartWidget& chart) const;

    [[nodiscard]] QJsonObject toJson() const;
    /// Reads what toJson() wrote. Unknown keys are passed over; a type, shift or scroll state that is
    /// missing or of a wrong type stays absent, so that applying it keeps the chart's own; a colour that
    /// is missing or does not parse is the default one.
    [[nodiscard]] static ChartState fromJson(const QJsonObject& json);

    bool operator==(const ChartState&) const = default;
};
