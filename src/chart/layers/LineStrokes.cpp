#include "chart/layers/LineStrokes.h"

#include "chart/layers/Strokes.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

/// One line in steps along the axis on which it is longer, in device pixels, so that slopes are as fine as
/// the screen.
struct Steps {
    bool steep = false;
    qint64 start = 0;  ///< on the longer axis
    qint64 across = 0; ///< on the other one
    qint64 length = 0; ///< signed, on the longer axis
    qint64 rise = 0;   ///< signed, on the other one

    Steps(const QPoint& from, const QPoint& to, const PixelGrid& grid)
    {
        const qint64 dx = grid.at(to.x()) - grid.at(from.x());
        const qint64 dy = grid.at(to.y()) - grid.at(from.y());
        steep = std::abs(dy) > std::abs(dx);
        length = steep ? dy : dx;
        // A line that runs backwards begins at the far side of its first pixel.
        start = grid.at(steep ? from.y() : from.x()) + (length < 0 ? grid.width(1) - 1 : 0);
        across = grid.at(steep ? from.x() : from.y());
        rise = steep ? dx : dy;
    }

    /// The position on the other axis, to the nearest pixel, at a distance from the start along the longer
    /// one. The last pixel of the line is as wide as the others, and the line ends with it on both axes.
    [[nodiscard]] qint64 at(qint64 distance) const
    {
        const qint64 whole = std::abs(length);
        if (whole == 0)
            return across;
        const qint64 twice = 2 * std::min(distance, whole) * rise + whole;
        const qint64 quotient = twice / (2 * whole);
        return across + (twice % (2 * whole) < 0 ? quotient - 1 : quotient);
    }
};

/// Whether a pixel of a broken line is drawn.
class Dashes {
public:
    Dashes(Qt::PenStyle pen, const Steps& steps, const PixelGrid& grid)
        : m_pattern(strokes::dashes(pen))
        , m_grid(grid)
    {
        const auto length = static_cast<double>(std::abs(steps.length));
        if (length > 0.0)
            m_unit = std::hypot(length, static_cast<double>(steps.rise)) / length;
        for (const int piece : m_pattern)
            m_period += static_cast<double>(grid.length(piece));
    }

    [[nodiscard]] bool isDrawn(qint64 distance) const
    {
        if (m_pattern.empty())
            return true;
        double along = std::fmod(static_cast<double>(distance) * m_unit, m_period);
        for (std::size_t i = 0; i < m_pattern.size(); ++i) {
            along -= static_cast<double>(m_grid.length(m_pattern[i]));
            if (along < 0.0)
                return i % 2 == 0;
        }
        return false;
    }

private:
    std::span<const int> m_pattern;
    const PixelGrid& m_grid;
    double m_unit = 1.0; ///< length along the line of one step
    double m_period = 0.0;
};

} // namespace

void strokes::between(QPainter& painter, const QPoint& from, const QPoint& to, const QRect& bounds,
    const QColor& color, const LineStyle& style)
{
    const PixelGrid grid(painter);
    const Steps steps(from, to, grid);
    const Dashes dashes(style.pen, steps, grid);
    const qint64 direction = steps.length < 0 ? -1 : 1;
    const qint64 width = grid.width(style.width);
    const qint64 lean = grid.length(style.width / 2); // wide ones lean to the left
    const qint64 left = grid.at(bounds.left());
    const qint64 top = grid.at(bounds.top());
    const qint64 right = grid.at(qint64{bounds.right()} + 1);
    const qint64 bottom = grid.at(qint64{bounds.bottom()} + 1);

    // The line covers its last point too, which may be some device pixels long.
    const qint64 count = std::abs(steps.length) + grid.width(1);
    const qint64 low = steps.steep ? top : left;
    const qint64 high = (steps.steep ? bottom : right) - 1;
    const qint64 begin = direction > 0 ? low - steps.start : steps.start - high;
    const qint64 end = direction > 0 ? high - steps.start : steps.start - low;
    const qint64 first = std::max<qint64>(begin, 0);
    const qint64 last = std::min(end, count - 1);

    const auto paintRun = [&](qint64 runFirst, qint64 runLast, qint64 across) {
        const qint64 along = steps.start + direction * (direction > 0 ? runFirst : runLast);
        const qint64 side = across - lean;
        const qint64 length = runLast - runFirst + 1;
        const qint64 runLeft = std::max(steps.steep ? side : along, left);
        const qint64 runTop = std::max(steps.steep ? along : side, top);
        const qint64 runRight = std::min(steps.steep ? side + width : along + length, right);
        const qint64 runBottom = std::min(steps.steep ? along + length : side + width, bottom);
        if (runLeft < runRight && runTop < runBottom)
            grid.fill(painter, runLeft, runTop, runRight, runBottom, color);
    };

    qint64 runFirst = first;
    bool drawing = false;
    qint64 side = 0;
    for (qint64 step = first; step <= last; ++step) {
        const bool drawn = dashes.isDrawn(step);
        const qint64 across = steps.at(step);
        if (drawing && (!drawn || across != side))
            paintRun(runFirst, step - 1, side);
        if (drawn && (!drawing || across != side))
            runFirst = step;
        drawing = drawn;
        side = across;
    }
    if (drawing)
        paintRun(runFirst, last, side);
}

void strokes::boxBetween(QPainter& painter, const QPoint& a, const QPoint& b, const QRect& bounds,
    const QColor& color, const LineStyle& style)
{
    const QPoint right(b.x(), a.y());
    const QPoint below(a.x(), b.y());
    between(painter, a, right, bounds, color, style);
    between(painter, a, below, bounds, color, style);
    between(painter, right, b, bounds, color, style);
    between(painter, below, b, bounds, color, style);
}
