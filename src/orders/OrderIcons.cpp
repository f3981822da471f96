#include "orders/OrderIcons.h"

#include <QHash>
#include <QPainter>

namespace {

constexpr QColor stroke(0x44, 0x44, 0x44);
constexpr QColor up(0x1f, 0x6f, 0xb2);
constexpr QColor down(0xc0, 0x39, 0x2b);

void drawLevel(QPainter& painter, qreal y)
{
    painter.setPen(QPen(stroke, 1, Qt::DashLine));
    painter.drawLine(QPointF(1, y), QPointF(15, y));
}

void drawArrow(QPainter& painter, const QColor& color, const QPolygonF& road, const QPolygonF& head)
{
    painter.setPen(QPen(color, 1.4));
    painter.drawPolyline(road);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawPolygon(head);
}

void drawTick(QPainter& painter, const QColor& color, qreal top, qreal bottom, qreal middle)
{
    painter.setPen(QPen(color, 1.3));
    painter.drawPolyline(QPolygonF({{1, middle}, {4, top}, {7, bottom}, {10, middle}, {15, top}}));
}

void draw(QPainter& painter, OrderIcon icon)
{
    switch (icon) {
    case OrderIcon::Market:
        painter.setPen(Qt::NoPen);
        painter.setBrush(up);
        painter.drawPolygon(QPolygonF({{9, 1}, {3, 9}, {7, 9}, {6, 15}, {13, 6}, {8.5, 6}}));
        break;
    case OrderIcon::Limit:
        drawLevel(painter, 12.5);
        drawArrow(painter, up, {{2, 3}, {7, 11}, {12, 4}}, {{13.5, 2}, {14, 6.5}, {10, 4.5}});
        break;
    case OrderIcon::Stop:
        drawLevel(painter, 8);
        drawArrow(painter, up, {{2, 14}, {12, 4}}, {{14, 2}, {13, 6.5}, {9.5, 3}});
        break;
    case OrderIcon::StopLimit:
        drawLevel(painter, 4);
        drawLevel(painter, 12);
        drawArrow(painter, down, {{2, 14}, {6, 4}, {10, 11}}, {{11.5, 14}, {12.5, 9.5}, {8.5, 11}});
        break;
    case OrderIcon::OneClick:
        painter.setPen(Qt::NoPen);
        painter.setBrush(stroke);
        painter.drawPolygon(QPolygonF({{4, 1}, {4, 13}, {7, 10.5}, {9, 15}, {11, 14}, {9, 9.5}, {13, 9.5}}));
        break;
    case OrderIcon::TickChart:
        drawTick(painter, down, 2, 8, 5);
        drawTick(painter, up, 8, 14, 11);
        break;
    case OrderIcon::Depth:
        painter.fillRect(QRectF(1, 2, 13, 2.5), down);
        painter.fillRect(QRectF(1, 5.5, 8, 2.5), down);
        painter.fillRect(QRectF(1, 9, 6, 2.5), up);
        painter.fillRect(QRectF(1, 12.5, 11, 2.5), up);
        break;
    case OrderIcon::Minimize:
        painter.setPen(QPen(stroke, 1.2));
        painter.drawRect(QRectF(1.5, 2.5, 13, 11));
        painter.fillRect(QRectF(4, 10, 8, 1.6), stroke);
        break;
    }
}

QIcon drawn(OrderIcon icon)
{
    QPixmap pixmap(16, 16);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    draw(painter, icon);
    painter.end();
    return QIcon(pixmap);
}

} // namespace

QIcon orderIcon(OrderIcon icon)
{
    // Never destroyed: pixmaps must not outlive the application, and statics do.
    static QHash<int, QIcon>& icons = *new QHash<int, QIcon>;
    QIcon& kept = icons[static_cast<int>(icon)];
    if (kept.isNull())
        kept = drawn(icon);
    return kept;
}
