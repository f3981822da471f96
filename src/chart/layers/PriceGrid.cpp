#include "app/base/NumberFormat.h"
#include "chart/data/GridSteps.h"
#include "chart/layers/ChartFrame.h"
#include "chart/layers/Layers.h"
#include "chart/layers/Strokes.h"

void layers::paintPriceGrid(QPainter& painter, const ChartFrame& frame)
{
    const ChartView& view = frame.view;
    const QRect& plot = view.plot();
    const PixelGrid grid(painter);
    const QPen pen = strokes::hairline(frame.colors.grid, Qt::DotLine);
    for (const double price : priceGridLines(view.prices(), plot.height())) {
        const int y = view.pricePixel(price);
        painter.setPen(pen);
        painter.drawLine(QLineF(grid.snapped(plot.left(), y), grid.snapped(plot.right(), y)));
        frame.texts->draw(painter, QRect(plot.right() + 4, y - 8, 62, 16), Qt::AlignLeft,
            formatPrice(price, frame.digits), frame.colors.axis);
    }
}
