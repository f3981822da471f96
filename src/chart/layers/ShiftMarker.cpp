#include "chart/layers/ChartFrame.h"
#include "chart/layers/Layers.h"
#include "chart/layers/PixelGrid.h"

#include <QPainter>

#include <array>

void layers::paintShiftMarker(QPainter& painter, const ChartFrame& frame)
{
    if (!frame.chartShift || frame.view.visible().isEmpty())
        return;
    const QRect& plot = frame.view.plot();
    const int x = frame.view.barPixel(frame.view.visible().last);
    if (x <= plot.left() || x >= plot.right())
        return;
    const PixelGrid grid(painter);
    const std::array corners{grid.snapped(x - 4, plot.top() + 1), grid.snapped(x + 4, plot.top() + 1),
        grid.snapped(x, plot.top() + 6)};
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0x8a, 0x8a, 0x8a));
    painter.drawConvexPolygon(corners.data(), static_cast<int>(corners.size()));
}
