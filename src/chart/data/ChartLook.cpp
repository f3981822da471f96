#include "chart/data/ChartLook.h"

#include "chart/data/AveragePalette.h"

namespace {

QColor solidColor(const QColor& wanted, const QColor& current)
{
    return wanted.isValid() ? QColor(wanted.red(), wanted.green(), wanted.blue()) : current;
}

} // namespace

ChartColors solidColors(const ChartColors& wanted, const ChartColors& current)
{
    return {solidColor(wanted.background, current.background), solidColor(wanted.grid, current.grid),
        solidColor(wanted.axis, current.axis), solidColor(wanted.up, current.up),
        solidColor(wanted.down, current.down), solidColor(wanted.line, current.line),
        solidColor(wanted.volume, current.volume)};
}

QList<MovingAverageSpec> solidAverages(QList<MovingAverageSpec> averages)
{
    for (MovingAverageSpec& average : averages)
        average.color = solidColor(average.color, averageColor(0));
    return averages;
}

ChartType chartTypeOf(int number)
{
    const bool known
        = number == static_cast<int>(ChartType::Bars) || number == static_cast<int>(ChartType::Line);
    return known ? static_cast<ChartType>(number) : ChartType::Candles;
}
