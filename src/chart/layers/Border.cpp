#include "chart/layers/ChartFrame.h"
#include "chart/layers/Layers.h"
#include "chart/layers/Strokes.h"

void layers::paintBorder(QPainter& painter, const ChartFrame& frame)
{
    const QRect& plot = frame.view.plot();
    const Strokes strokes(painter);
    strokes.down(plot.right(), plot.top(), plot.bottom(), frame.colors.grid);
    strokes.across(plot.left(), plot.right(), plot.bottom(), frame.colors.grid);
}
