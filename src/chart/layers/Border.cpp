#include "chart/layers/ChartFrame.h"
#include "chart/layers/Layers.h"
#include "chart/layers/Strokes.h"

void layers::paintBorder(QPainter& painter, const ChartFrame& frame)
{
    const QRect& plot = frame.view.plot();
    strokes::down(painter, plot.right(), plot.top(), plot.bottom(), frame.colors.grid);
    strokes::across(painter, plot.left(), plot.right(), plot.bottom(), frame.colors.grid);
}
