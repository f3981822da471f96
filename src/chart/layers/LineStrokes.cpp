#include "chart/layers/LineStrokes.h"

#include "chart/layers/Strokes.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

constexpr int largestScale = 8;

/// Device pixels per pixel, so that slopes are as fine as the screen; 1 where that is no whole number, or the
/// painter does more than scale and move.
int deviceScale(const QPainter& painter)
{
    const QTransform transform = painter.deviceTransform();
    const qreal scale = transform.m11();
    const bool even = transform.type() <= QTransform::TxScale && transform.m22() == scale && scale >= 1.0
        && scale <= largestScale && scale == std::floor(scale);
    return even ? static_cast<int>(scale) : 1;
}

/// One line in steps along the axis on which it is longer, in device pixels.
struct Steps {
    bool steep = false;
    qint64 start = 0;  ///< on the longer axis
    qint64 across = 0; ///< on the other one
    qint64 length = 0; ///< signed, on the longer axis
    qint64 rise = 0;   ///< signed, on the other one

    Steps(const QPoint& from, const QPoint& to, int scale)
    {
        const qint64 dx = (static_cast<qint64>(to.x()) - from.x()) * scale;
        const qint64 dy = (static_cast<qint64>(to.y()) - from.y()) * scale;
        steep = std::abs(dy) > std::abs(dx);
        length = steep ? dy : dx;
        // A line that runs backwards begins at the far side of its first pixel.
        start = static_cast<qint64>(steep ? from.y() : from.x()) * scale + (length < 0 ? scale - 1 : 0);
        across = static_cast<qint64>(steep ? from.x() : from.y()) * scale;
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
    Dashes(Qt::PenStyle pen, const Steps& steps, int scale)
        : m_pattern(strokes::dashes(pen))
        , m_scale(scale)
    {
        const auto length = static_cast<double>(std::abs(steps.length));
        if (length > 0.0)
            m_unit = std::hypot(length, static_cast<double>(steps.rise)) / length;
        for (const int piece : m_pattern)
            m_period += piece * scale;
    }

    [[nodiscard]] bool isDrawn(qint64 distance) const
    {
        if (m_pattern.empty())
            return true;
        double along = std::fmod(static_cast<double>(distance) * m_unit, m_period);
        for (std::size_t i = 0; i < m_pattern.size(); ++i) {
            along -= m_pattern[i] * m_scale;
            if (along < 0.0)
                return i % 2 == 0;
        }
        return false;
    }

private:
    std::span<const int> m_pattern;
    int m_scale;
    double m_unit = 1.0; ///< length along the line of one step
    double m_period = 0.0;
};

} // namespace

void strokes::between(QPainter& painter, const QPoint& from, const QPoint& to, const QRect& bounds,
    const QColor& color, const LineStyle& style)
{
    const int scale = deviceScale(painter);
    const Steps steps(from, to, scale);
    const Dashes dashes(style.pen, steps, scale);
    const qint64 direction = steps.length < 0 ? -1 : 1;
    const QRectF limits(bounds);

    // The line covers its last pixel too, which is `scale` device pixels long.
    const qint64 count = std::abs(steps.length) + scale;
    const qint64 low = static_cast<qint64>(steps.steep ? bounds.top() : bounds.left()) * scale;
    const qint64 high = (static_cast<qint64>(steps.steep ? bounds.bottom() : bounds.right()) + 1) * scale - 1;
    const qint64 begin = direction > 0 ? low - steps.start : steps.start - high;
    const qint64 end = direction > 0 ? high - steps.start : steps.start - low;
    const qint64 first = std::max<qint64>(begin, 0);
    const qint64 last = std::min(end, count - 1);

    const auto paintRun = [&](qint64 runFirst, qint64 runLast, qint64 across) {
        const qint64 near = steps.start + direction * (direction > 0 ? runFirst : runLast);
        const auto along = static_cast<double>(near) / scale;
        const auto side = static_cast<double>(across) / scale - style.width / 2; // wide ones lean to the left
        const auto length = static_cast<double>(runLast - runFirst + 1) / scale;
        const QRectF run = steps.steep ? QRectF(side, along, style.width, length)
                                       : QRectF(along, side, length, style.width);
        if (const QRectF part = run.intersected(limits); !part.isEmpty())
            painter.fillRect(part, color);
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
