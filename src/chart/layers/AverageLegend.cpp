#include "chart/data/IndicatorTable.h"
#include "chart/layers/ChartFrame.h"
#include "chart/layers/Layers.h"
#include "chart/layers/LeftTexts.h"

void layers::paintAverageLegend(QPainter& painter, const ChartFrame& frame)
{
    constexpr int gap = 12;
    // Of the letters, beside their baseline.
    constexpr int rowsAbove = 12;
    constexpr int rowsBelow = 4;
    const QRect& plot = frame.view.plot();
    const int row = plot.top() + 28;
    QPoint baseline(lefttexts::column(frame, row - rowsAbove, row + rowsBelow), row);
    for (const MovingAverageSpec& average : frame.averages) {
        if (baseline.x() > plot.right())
            return;
        const QString text = indicatorLabel(average.kind, average.period);
        frame.texts->drawAt(painter, baseline, text, average.color);
        baseline.rx() += frame.texts->advance(text) + gap;
    }
}
