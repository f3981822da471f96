#pragma once

#include <QColor>
#include <QPainter>
#include <QPen>
#include <QRect>

/// Straight lines and boxes in whole pixels. Rectangles, because filling one is several times cheaper than
/// setting a pen and stroking, and looks the same at every device pixel ratio.
namespace strokes {

/// Horizontal line, both ends included.
inline void across(QPainter& painter, int x1, int x2, int y, const QColor& color)
{
    painter.fillRect(QRect(QPoint(x1, y), QPoint(x2, y)), color);
}

/// Vertical line, both ends included.
inline void down(QPainter& painter, int x, int y1, int y2, const QColor& color)
{
    painter.fillRect(QRect(QPoint(x, y1), QPoint(x, y2)), color);
}

/// Filled box with a border of one pixel inside `box`.
inline void outlined(QPainter& painter, const QRect& box, const QColor& fill, const QColor& border)
{
    painter.fillRect(box, border);
    if (box.width() > 2 && box.height() > 2)
        painter.fillRect(box.adjusted(1, 1, -1, -1), fill);
}

/// Pen for broken lines; hair-thin at every device pixel ratio, since wider strokes cost many times more.
inline QPen hairline(const QColor& color, Qt::PenStyle style)
{
    QPen pen(color, 1.0, style);
    pen.setCosmetic(true);
    return pen;
}

} // namespace strokes
