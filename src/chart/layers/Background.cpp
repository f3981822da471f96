#include "chart/layers/ChartFrame.h"
#include "chart/layers/Layers.h"

#include <QPainter>

void layers::paintBackground(QPainter& painter, const ChartFrame& frame)
{
    painter.fillRect(QRect(QPoint(0, 0), frame.view.size()), frame.colors.background);
}
