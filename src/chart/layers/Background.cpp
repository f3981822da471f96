#include "chart/layers/ChartFrame.h"
#include "chart/layers/Layers.h"
#include "chart/layers/PixelGrid.h"

#include <QPainter>

void layers::paintBackground(QPainter& painter, const ChartFrame& frame)
{
    // Where the size is no whole number of pixels, the last one may be rounded either way.
    const int more = PixelGrid(painter).isWhole() ? 0 : 1;
    painter.fillRect(QRect(QPoint(0, 0), frame.view.size() + QSize(more, more)), frame.colors.background);
}
