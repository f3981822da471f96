#pragma once

#include <QColor>
#include <QPainter>
#include <QPen>
#include <QRect>

#include <algorithm>
#include <array>
#include <span>

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

/// Pixels drawn and left out in turn along a broken line; empty for an unbroken one.
[[nodiscard]] inline std::span<const int> dashes(Qt::PenStyle style)
{
    static constexpr std::array dash{4, 2};
    static constexpr std::array dot{1, 2};
    static constexpr std::array dashDot{4, 2, 1, 2};
    static constexpr std::array dashDotDot{4, 2, 1, 2, 1, 2};
    switch (style) {
    case Qt::DashLine:
        return dash;
    case Qt::DotLine:
        return dot;
    case Qt::DashDotLine:
        return dashDot;
    case Qt::DashDotDotLine:
        return dashDotDot;
    default:
        return {};
    }
}

/// Calls `piece(from, to)` for each drawn piece between two pixels, both ends included. The pieces depend
/// on the line alone, so that a line painted in parts by clipped frames has no seams; a pen begins its
/// pattern anew at the edge of the clip.
template <typename Piece> void alongDashes(int first, int last, Qt::PenStyle style, Piece piece)
{
    const std::span<const int> pattern = dashes(style);
    if (pattern.empty()) {
        piece(first, last);
        return;
    }
    for (std::size_t i = 0; first <= last; i = (i + 2) % pattern.size()) {
        piece(first, std::min(first + pattern[i] - 1, last));
        first += pattern[i] + pattern[i + 1];
    }
}

/// Horizontal line in a pen style, both ends included.
inline void across(QPainter& painter, int x1, int x2, int y, const QColor& color, Qt::PenStyle style)
{
    alongDashes(x1, x2, style, [&](int from, int to) { across(painter, from, to, y, color); });
}

/// Vertical line in a pen style, both ends included.
inline void down(QPainter& painter, int x, int y1, int y2, const QColor& color, Qt::PenStyle style)
{
    alongDashes(y1, y2, style, [&](int from, int to) { down(painter, x, from, to, color); });
}

/// Filled box with a border of one pixel inside `box`.
inline void outlined(QPainter& painter, const QRect& box, const QColor& fill, const QColor& border)
{
    painter.fillRect(box, border);
    if (box.width() > 2 && box.height() > 2)
        painter.fillRect(box.adjusted(1, 1, -1, -1), fill);
}

/// A pen for the grid: it draws many dots faster than boxes would. Hair-thin at every device pixel ratio,
/// since wider strokes cost many times more.
inline QPen hairline(const QColor& color, Qt::PenStyle style)
{
    QPen pen(color, 1.0, style);
    pen.setCosmetic(true);
    return pen;
}

} // namespace strokes
