#include "chart/layers/ChartFrame.h"
#include "chart/layers/Layers.h"

#include <QCoreApplication>
#include <QPainter>

void layers::paintEmptySeries(QPainter& painter, const ChartFrame& frame)
{
    if (!frame.candles.empty())
        return;
    frame.texts->draw(painter, QRect(QPoint(0, 0), frame.view.size()), Qt::AlignHCenter,
        QCoreApplication::translate("ChartWidget", "Waiting for data..."), frame.colors.axis);
}
