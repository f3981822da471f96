#include "chart/data/ChartTexts.h"
#include "chart/layers/ChartFrame.h"
#include "chart/layers/Layers.h"

#include <QColor>

void layers::paintHeader(QPainter& painter, const ChartFrame& frame)
{
    if (frame.symbol.isEmpty() || frame.candles.empty() || frame.crosshair)
        return;
    const QPoint corner = frame.view.plot().topLeft();
    frame.texts->drawAt(painter, corner + QPoint(6, 13),
        headerText(frame.symbol, frame.timeframeLabel, frame.description, frame.candles.back(), frame.digits),
        QColor(0xb8, 0xb8, 0xb8));
}
