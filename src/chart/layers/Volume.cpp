#include "chart/layers/ChartFrame.h"
#include "chart/layers/Layers.h"
#include "chart/layers/Strokes.h"

#include <QPainter>

#include <algorithm>

void layers::paintVolume(QPainter& painter, const ChartFrame& frame)
{
    const ChartView& view = frame.view;
    const QRect& plot = view.plot();
    const auto tallest = static_cast<int>(plot.height() * 0.14);
    const int width = std::max(static_cast<int>(view.barWidth() * 0.6), 1);
    const Strokes strokes(painter);
    for (qsizetype i = frame.bars.first; i <= frame.bars.last; ++i) {
        const int x = view.barPixel(i);
        if (x + width < plot.left())
            continue;
        const double share = static_cast<double>(frame.candle(i).volume) / frame.largestVolume;
        const auto height = static_cast<int>(share * tallest);
        if (height > 0)
            strokes.columns({x, width / 2, width - 1 - width / 2}, plot.bottom() - height, plot.bottom(),
                frame.colors.volume);
    }
}
