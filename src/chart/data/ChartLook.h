#pragma once

#include "app/base/PriceRule.h"
#include "chart/data/ChartColors.h"
#include "chart/data/ChartType.h"
#include "chart/data/IndicatorPane.h"
#include "chart/data/MovingAverageSpec.h"

#include <QList>
#include <QString>

/// What a chart is told to show besides its candles, as the layers use it.
struct ChartLook {
    QString symbol;
    QString timeframeLabel;
    QString description;
    int digits = usualPriceDigits;

    ChartColors colors;
    ChartType type = ChartType::Candles;
    QList<MovingAverageSpec> averages;
    int legendIndent = 0; ///< columns at the left of the averages' names that something covers
    QList<IndicatorPane> panes = hiddenPanes(); ///< the first that is shown is the lowest
};

/// The wanted colours without transparency; one that is none keeps the current one.
[[nodiscard]] ChartColors solidColors(const ChartColors& wanted, const ChartColors& current);
/// Averages without transparency; a colour that is none becomes the first one of the palette.
[[nodiscard]] QList<MovingAverageSpec> solidAverages(QList<MovingAverageSpec> averages);
/// The type a number means; candles for any that means none.
[[nodiscard]] ChartType chartTypeOf(int number);
