#include "chart/data/ChartTexts.h"
#include "chart/data/GridSteps.h"
#include "chart/layers/ChartFrame.h"
#include "chart/layers/Layers.h"
#include "chart/layers/Strokes.h"

void layers::paintTimeGrid(QPainter& painter, const ChartFrame& frame)
{
    const ChartView& view = frame.view;
    const QRect& plot = view.plot();
    const BarRange& bars = view.visible();
    if (bars.isEmpty())
        return;
    const qsizetype step = timeGridStep(view.barWidth());
    const PixelGrid grid(painter);
    const QPen pen = strokes::hairline(frame.colors.grid, Qt::DotLine);
    // At multiples of the step, so that the lines keep their bars while new candles arrive.
    for (qsizetype i = bars.last - bars.last % step; i >= bars.first; i -= step) {
        const int x = view.barPixel(i);
        if (x < plot.left())
            break;
        painter.setPen(pen);
        painter.drawLine(QLineF(grid.snapped(x, plot.top()), grid.snapped(x, plot.bottom())));
        frame.texts->draw(painter, QRect(x - 44, view.timeAxisEdge() + 3, 88, 18), Qt::AlignHCenter,
            barTimeText(frame.candle(i).time, frame.timeframeMs, false), frame.colors.axis);
    }
}
