#pragma once

#include "app/base/PriceRule.h"
#include "chart/data/ChartColors.h"
#include "chart/data/ChartType.h"
#include "chart/data/IndicatorPane.h"
#include "chart/data/MovingAverageSpec.h"

#include <QList>
#include <QRect>
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
    QRect covered; ///< what a panel covers; texts at the left edge of the plot stand beside it
    QList<IndicatorPane> panes = hiddenPanes(); ///< the first that is shown is the lowest
};

/// The wanted colours without transparency. An invalid colour is replaced by the current one.
[[nodiscard]] ChartColors solidColors(const ChartColors& wanted, const ChartColors& current);
/// Averages with colours without transparency. An invalid colour becomes the first one of the palette.
[[nodiscard]] QList<MovingAverageSpec> solidAverages(QList<MovingAverageSpec> averages);
/// The type that a number means; candles for an unknown number.
[[nodiscard]] ChartType chartTypeOf(int number);
