#include "chart/layers/CrosshairBoxes.h"

#include "chart/data/ChartView.h"
#include "chart/layers/PriceTag.h"

#include <array>

QRect crosshair::timeTag(const ChartView& view, int x)
{
    return {x - 50, view.timeAxisEdge() + 2, 100, 19};
}

QRect crosshair::priceLine(const ChartView& view)
{
    const QRect& plot = view.plot();
    return {plot.left() + 6, plot.top() + 4, plot.width() - 12, 16};
}

QRegion crosshair::area(const ChartView& view, const QPoint& pointer)
{
    const QRect& plot = view.plot();
    const std::array parts{QRect(plot.left(), pointer.y(), plot.width(), 1),
        QRect(pointer.x(), plot.top(), 1, plot.height()), priceTagBox(view, pointer.y()),
        timeTag(view, pointer.x()), priceLine(view)};
    QRegion area;
    for (const QRect& part : parts)
        area += part;
    return area;
}
