#include "chart/layers/ChartFrame.h"
#include "chart/layers/Curve.h"
#include "chart/layers/Layers.h"

#include <algorithm>

void layers::paintMovingAverages(QPainter& painter, const ChartFrame& frame)
{
    const ChartView& view = frame.view;
    const auto row = [&view](double price) { return view.pricePixel(price); };
    BarRange bars = frame.bars;
    for (std::size_t i = 0; i < frame.averageValues.size(); ++i) {
        const QColor& color = frame.averages.at(static_cast<qsizetype>(i)).color;
        // An average may lie far from the prices in view, so it is clipped to the plot and leaves the axes
        // readable.
        curve::join(painter, view, frame.averageValues[i], bars, row, view.plot(), frame.exposed, color);
        // Where only the newest bars are painted, each average begins one bar earlier than the one below it,
        // whose first pixels would otherwise lie over the older part of this one.
        bars.first = std::max(view.visible().first, bars.first - 1);
    }
}
