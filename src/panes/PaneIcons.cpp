#include "panes/PaneIcons.h"

#include <QPainter>
#include <QPainterPath>

namespace {

constexpr int side = 16;

template <typename Draw> QIcon drawn(const Draw& draw)
{
    QIcon icon;
    for (const int ratio : {1, 2}) { // crisp on either screen
        QPixmap pixmap(side * ratio, side * ratio);
        pixmap.setDevicePixelRatio(ratio);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        draw(painter);
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

QIcon triangle(const QColor& color, const QPolygonF& corners)
{
    return drawn([&](QPainter& painter) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(color);
        painter.drawPolygon(corners);
    });
}

template <typename Draw> QIcon stroked(const QColor& color, const Draw& draw)
{
    return drawn([&](QPainter& painter) {
        painter.setPen(QPen(color, 1.3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        draw(painter);
    });
}

} // namespace

QIcon upArrowIcon(const QColor& color)
{
    return triangle(color, {{8, 3.5}, {13, 12.5}, {3, 12.5}});
}

QIcon downArrowIcon(const QColor& color)
{
    return triangle(color, {{3, 3.5}, {13, 3.5}, {8, 12.5}});
}

QIcon folderIcon(const QColor& stroke)
{
    return stroked(stroke, [](QPainter& painter) {
        painter.drawPolygon(
            QPolygonF({{1.5, 13}, {1.5, 3.5}, {6, 3.5}, {7.5, 5.5}, {14.5, 5.5}, {14.5, 13}}));
    });
}

QIcon accountIcon(const QColor& stroke)
{
    return stroked(stroke, [](QPainter& painter) {
        painter.drawEllipse(QRectF(5.2, 2, 5.6, 5.6));
        QPainterPath shoulders(QPointF(2.5, 14));
        shoulders.cubicTo(2.5, 8.2, 13.5, 8.2, 13.5, 14);
        painter.drawPath(shoulders);
    });
}

QIcon indicatorIcon(const QColor& stroke)
{
    return stroked(stroke, [](QPainter& painter) {
        QPainterPath wave(QPointF(1.5, 11.5));
        wave.cubicTo(5, 1, 8, 1.5, 9, 8);
        wave.cubicTo(9.7, 12.5, 12, 11, 14.5, 4.5);
        painter.drawPath(wave);
    });
}

QIcon expertIcon(const QColor& stroke)
{
    return stroked(stroke, [](QPainter& painter) {
        painter.drawRoundedRect(QRectF(2, 5.5, 12, 8.5), 2, 2);
        painter.drawLine(QPointF(8, 5.5), QPointF(8, 2));
        painter.drawPoint(QPointF(5.5, 9.5));
        painter.drawPoint(QPointF(10.5, 9.5));
    });
}
