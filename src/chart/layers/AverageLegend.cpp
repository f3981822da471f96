#include "chart/data/IndicatorTable.h"
#include "chart/layers/ChartFrame.h"
#include "chart/layers/Layers.h"

void layers::paintAverageLegend(QPainter& painter, const ChartFrame& frame)
{
    constexpr int gap = 12;
    const QRect& plot = frame.view.plot();
    QPoint baseline = plot.topLeft() + QPoint(6 + frame.legendIndent, 28);
    for (const MovingAverageSpec& average : frame.averages) {
        if (baseline.x() > plot.right())
            return;
        const QString text = indicatorLabel(average.kind, average.period);
        frame.texts->drawAt(painter, baseline, text, average.color);
        baseline.rx() += frame.texts->advance(text) + gap;
    }
}
