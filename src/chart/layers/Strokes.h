#pragma once

#include "chart/layers/PixelGrid.h"

#include <QColor>
#include <QPainter>
#include <QPen>
#include <QPoint>
#include <QRect>

#include <algorithm>
#include <array>
#include <span>

namespace strokes {

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

/// A pen for the grid: it draws many dots faster than boxes would. Hair-thin at every device pixel ratio,
/// since wider strokes cost many times more.
inline QPen hairline(const QColor& color, Qt::PenStyle style)
{
    QPen pen(color, 1.0, style);
    pen.setCosmetic(true);
    return pen;
}

} // namespace strokes

/// Straight lines and boxes in whole device pixels, for one layer: equally wide wherever they lie, at every
/// device pixel ratio. Rectangles, because filling one is several times cheaper than setting a pen and
/// stroking.
class Strokes final {
public:
    explicit Strokes(QPainter& painter)
        : m_painter(painter)
        , m_grid(painter)
    {
    }

    /// Horizontal line, both ends included.
    void across(int x1, int x2, int y, const QColor& color) const
    {
        if (m_grid.isWhole())
            m_painter.fillRect(QRect(QPoint(x1, y), QPoint(x2, y)), color);
        else
            fill({m_grid.at(x1), m_grid.at(y), m_grid.at(x2) + line(), m_grid.at(y) + line()}, color);
    }

    /// Vertical line, both ends included.
    void down(int x, int y1, int y2, const QColor& color) const
    {
        if (m_grid.isWhole())
            m_painter.fillRect(QRect(QPoint(x, y1), QPoint(x, y2)), color);
        else
            fill({m_grid.at(x), m_grid.at(y1), m_grid.at(x) + line(), m_grid.at(y2) + line()}, color);
    }

    /// Horizontal line in a pen style, both ends included.
    void across(int x1, int x2, int y, const QColor& color, Qt::PenStyle style) const
    {
        if (m_grid.isWhole())
            return alongDashes(x1, x2, style,
                [&](auto from, auto to) { across(static_cast<int>(from), static_cast<int>(to), y, color); });
        const qint64 row = m_grid.at(y);
        alongDashes(m_grid.at(x1), m_grid.at(x2) + line() - 1, style, [&](qint64 from, qint64 to) {
            fill({from, row, to + 1, row + line()}, color);
        });
    }

    /// Vertical line in a pen style, both ends included.
    void down(int x, int y1, int y2, const QColor& color, Qt::PenStyle style) const
    {
        if (m_grid.isWhole())
            return alongDashes(y1, y2, style,
                [&](auto from, auto to) { down(x, static_cast<int>(from), static_cast<int>(to), color); });
        const qint64 column = m_grid.at(x);
        alongDashes(m_grid.at(y1), m_grid.at(y2) + line() - 1, style, [&](qint64 from, qint64 to) {
            fill({column, from, column + line(), to + 1}, color);
        });
    }

    /// Filled box, whose size is the same wherever it lies.
    void box(const QRect& box, const QColor& color) const
    {
        if (m_grid.isWhole())
            m_painter.fillRect(box, color);
        else
            fill(edgesOf(box), color);
    }

    /// Fills what lines along all four sides of a box surround, these lines included.
    void area(const QRect& box, const QColor& color) const
    {
        if (m_grid.isWhole())
            m_painter.fillRect(box, color);
        else
            fill(edgesOf({box.left(), 0, box.width() - 1}, box.top(), box.bottom()), color);
    }

    /// Filled box with a border of one pixel inside `box`.
    void outlined(const QRect& box, const QColor& ground, const QColor& border) const
    {
        if (m_grid.isWhole())
            outlinedWhole(box, ground, border);
        else
            outlined(edgesOf(box), ground, border);
    }

    /// The border that outlined() gives a box.
    void frame(const QRect& box, const QColor& color) const
    {
        const Edges all = edgesOf(box);
        const Edges rest = within(all);
        fill({all.left, all.top, all.right, rest.top}, color);
        fill({all.left, rest.bottom, all.right, all.bottom}, color);
        fill({all.left, rest.top, rest.left, rest.bottom}, color);
        fill({rest.right, rest.top, all.right, rest.bottom}, color);
    }

    /// What the border leaves of a box.
    void inside(const QRect& box, const QColor& color) const { fill(within(edgesOf(box)), color); }

    /// Columns around that of a bar: as many to the left and to the right of it wherever the bar stands.
    struct Columns {
        int x;
        int left;
        int right;
    };

    /// From one row to the one above another.
    void columns(const Columns& columns, int top, int end, const QColor& color) const
    {
        if (m_grid.isWhole()) {
            m_painter.fillRect(boxOf(columns, top, end - 1), color);
            return;
        }
        Edges edges = edgesOf(columns, top, top);
        if (end > top + 1) // a single row is a line
            edges.bottom = m_grid.at(end);
        fill(edges, color);
    }

    /// A box with a border of one pixel inside, both rows included.
    void outlinedColumns(
        const Columns& columns, int top, int bottom, const QColor& ground, const QColor& border) const
    {
        if (m_grid.isWhole())
            outlinedWhole(boxOf(columns, top, bottom), ground, border);
        else
            outlined(edgesOf(columns, top, bottom), ground, border);
    }

private:
    /// A box in pixels, the far edges excluded.
    struct Edges {
        qint64 left;
        qint64 top;
        qint64 right;
        qint64 bottom;
    };

    [[nodiscard]] qint64 line() const { return m_grid.width(1); }

    [[nodiscard]] Edges edgesOf(const QRect& box) const
    {
        const qint64 left = m_grid.at(box.left());
        const qint64 top = m_grid.at(box.top());
        return {left, top, left + m_grid.length(box.width()), top + m_grid.length(box.height())};
    }

    [[nodiscard]] Edges edgesOf(const Columns& columns, int top, int bottom) const
    {
        const qint64 middle = m_grid.at(columns.x);
        return {middle - m_grid.length(columns.left), m_grid.at(top),
            middle + line() + m_grid.length(columns.right), m_grid.at(bottom) + line()};
    }

    [[nodiscard]] static QRect boxOf(const Columns& columns, int top, int bottom)
    {
        return {QPoint(columns.x - columns.left, top), QPoint(columns.x + columns.right, bottom)};
    }

    [[nodiscard]] Edges within(const Edges& edges) const
    {
        return {edges.left + line(), edges.top + line(), edges.right - line(), edges.bottom - line()};
    }

    void outlinedWhole(const QRect& box, const QColor& ground, const QColor& border) const
    {
        m_painter.fillRect(box, border);
        if (box.width() > 2 && box.height() > 2)
            m_painter.fillRect(box.adjusted(1, 1, -1, -1), ground);
    }

    void outlined(const Edges& edges, const QColor& ground, const QColor& border) const
    {
        fill(edges, border);
        fill(within(edges), ground);
    }

    void fill(const Edges& edges, const QColor& color) const
    {
        if (edges.left < edges.right && edges.top < edges.bottom)
            m_grid.fill(m_painter, edges.left, edges.top, edges.right, edges.bottom, color);
    }

    /// Calls `piece(from, to)` for each drawn piece between two places, both ends included. The pieces depend
    /// on the line alone, so that a line painted in parts by clipped frames has no seams; a pen begins its
    /// pattern anew at the edge of the clip.
    template <typename Piece>
    void alongDashes(qint64 first, qint64 last, Qt::PenStyle style, Piece piece) const
    {
        const std::span<const int> pattern = strokes::dashes(style);
        if (pattern.empty()) {
            piece(first, last);
            return;
        }
        for (std::size_t i = 0; first <= last; i = (i + 2) % pattern.size()) {
            const qint64 drawn = dash(pattern[i]);
            piece(first, std::min(first + drawn - 1, last));
            first += drawn + dash(pattern[i + 1]);
        }
    }

    [[nodiscard]] qint64 dash(int units) const { return m_grid.isWhole() ? units : m_grid.length(units); }

    QPainter& m_painter;
    PixelGrid m_grid;
};
