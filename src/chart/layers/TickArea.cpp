#include "chart/layers/TickArea.h"

#include "chart/data/ChartScene.h"

#include <algorithm>

namespace {

/// More rows than the header's text takes, and none of the panel of one-click trading below it, whose volume
/// would be painted again with every tick.
constexpr int textRows = 20;
/// The histogram takes less than a fifth of the plot's height.
constexpr int volumeShare = 5;

} // namespace

QRect tickarea::newestCandle(const ChartView& view)
{
    const QRect& plot = view.plot();
    // From a bar's width left of the bar before, where the line of closes begins.
    const int before = view.barPixel(view.count() - 2) - static_cast<int>(view.barWidth()) - 1;
    const QPoint corner(std::clamp(before, plot.left(), plot.right() + 1), plot.top());
    return {corner, QPoint(view.size().width() - 1, view.size().height() - 1)};
}

QRect tickarea::quoteLine(const ChartView& view, double price)
{
    return {view.plot().left(), view.pricePixel(price), view.plot().width(), 1};
}

QRect tickarea::candleTexts(const ChartView& view)
{
    return {view.plot().left(), view.plot().top(), view.plot().width(), textRows};
}

QRect tickarea::volumes(const ChartView& view)
{
    const QRect& plot = view.plot();
    return plot.adjusted(0, plot.height() - plot.height() / volumeShare, 0, 0);
}

QRect tickarea::pane(const ChartView& view, int number)
{
    // The row below belongs to the lowest value.
    return view.pane(number).adjusted(0, 0, 0, 1);
}

std::optional<QRegion> tickarea::changed(const QuotedView& before, const QuotedView& after)
{
    if (!(before.view == after.view))
        return std::nullopt;
    QRegion area = newestCandle(after.view);
    area += candleTexts(after.view);
    for (const double price : {before.bid, before.ask, after.bid, after.ask})
        area += quoteLine(after.view, price);
    if (before.largestVolume != after.largestVolume)
        area += volumes(after.view);
    return area;
}
