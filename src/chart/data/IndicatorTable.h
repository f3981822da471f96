#pragma once

#include "chart/data/IndicatorKind.h"
#include "chart/series/Candle.h"

#include <QColor>
#include <QLatin1StringView>
#include <QString>

#include <optional>
#include <span>

/// What a computation carries from one candle to the next.
struct IndicatorProgress {
    qsizetype bars = 0; ///< how many have their final values so far
    double first = 0.0; ///< the rest is the formula's own
    double second = 0.0;
};

/// Values at the bottom and the top of a pane.
struct ValueRange {
    double min = 0.0;
    double max = 1.0;
};

/// The look of an indicator that has a pane of its own.
struct PaneStyle {
    QColor line;
    std::span<const int> bounds;     ///< values with a dotted line across the pane and a label
    std::optional<ValueRange> scale; ///< without one, the pane is as high as the values in view
};

/// All that the program knows about a kind of indicator.
struct IndicatorRow {
    /// Takes in the candles from `progress.bars` on and writes their values, NaN where there is none, to the
    /// places of the same index. `values` is as long as `candles` at least, `period` at least 1.
    using Formula = void (*)(IndicatorProgress& progress, qsizetype period, std::span<const Candle> candles,
        std::span<double> values);

    IndicatorKind kind;
    QLatin1StringView key;   ///< in the Navigator's entries and in saved charts, so never change it
    const char* name;        ///< in the Navigator
    const char* command;     ///< in the menus
    QLatin1StringView label; ///< on the chart, before the period
    QLatin1StringView icon;  ///< a drawing as mainwindow/Pictograms.h describes it
    qint32 usualPeriod;
    qint32 barsBefore; ///< how many candles a value needs besides those of its period
    Formula formula;
    std::optional<PaneStyle> pane; ///< without one, it is drawn over the prices
};

/// A row for each kind, in the order of menus and of the Navigator.
[[nodiscard]] std::span<const IndicatorRow> indicatorTable();
[[nodiscard]] const IndicatorRow& indicatorRow(IndicatorKind kind);
/// Nothing for a key that no row has.
[[nodiscard]] const IndicatorRow* findIndicator(QStringView key);

/// Name or command of a row, in the user's language.
[[nodiscard]] QString indicatorText(const char* text);
/// What stands on a chart: "EMA(21)".
[[nodiscard]] QString indicatorLabel(IndicatorKind kind, qint32 period);
