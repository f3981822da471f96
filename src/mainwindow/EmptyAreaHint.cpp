#include "mainwindow/EmptyAreaHint.h"

#include <QFontMetrics>
#include <QPainter>

namespace {

constexpr int margin = 16;

}

void paintEmptyAreaHint(QPainter& painter, const QRect& area, const QString& text, const QColor& color)
{
    const QRect room = area.adjusted(margin, margin, -margin, -margin);
    if (room.isEmpty())
        return;
    const QFontMetrics metrics = painter.fontMetrics();
    constexpr int wrapped = Qt::AlignCenter | Qt::TextWordWrap;
    painter.setPen(color);
    if (room.contains(metrics.boundingRect(room, wrapped, text)))
        painter.drawText(room, wrapped, text);
    else
        painter.drawText(area, Qt::AlignCenter, metrics.elidedText(text, Qt::ElideRight, room.width()));
}
