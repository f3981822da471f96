#include "chart/layers/ChartFrame.h"
#include "chart/layers/Layers.h"
#include "chart/layers/Strokes.h"

void layers::paintScrollButton(QPainter& painter, const ChartFrame& frame)
{
    if (frame.autoScroll)
        return;
    const QRect box = frame.view.scrollToEndButton();
    Strokes(painter).outlined(box, QColor(0x33, 0x33, 0x33), frame.colors.axis);
    frame.texts->draw(painter, box, Qt::AlignHCenter, QString(QChar(0x00bb)), frame.colors.axis);
}
