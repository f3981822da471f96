#include "chart/layers/PanePainter.h"

#include "chart/layers/ChartFrame.h"
#include "chart/layers/Curve.h"
#include "chart/layers/Strokes.h"

#include <QVarLengthArray>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr QColor groundColor(0x0a, 0x0a, 0x0a);
constexpr QColor boundColor(0x44, 0x44, 0x44);

/// Keeps values far outside the scale within what an int and the painter can take.
constexpr double farPixel = 1e8;

int rowOf(const QRect& area, const ValueRange& scale, double value)
{
    const double row = area.top() + area.height() * (scale.max - value) / (scale.max - scale.min);
    return static_cast<int>(std::clamp(row, -farPixel, farPixel));
}

/// A dotted line, of which only the dots in `part` are painted. The dots depend on the pane alone.
void paintBound(QPainter& painter, const QRect& area, const QRect& part, int y)
{
    if (y < part.top() || y > part.bottom())
        return;
    const PixelGrid grid(painter);
    const qint64 period = grid.length(3);
    const qint64 left = grid.at(area.left());
    const qint64 skipped = (std::max<qint64>(grid.at(part.left()) - left, 0) + period - 1) / period * period;
    const qint64 end = grid.at(std::min(area.right(), part.right()) + 1);
    const double row = grid.snapped(0, y).y();
    QVarLengthArray<QPointF, 1024> dots;
    for (qint64 x = left + skipped; x < end; x += period)
        dots.append(QPointF(static_cast<double>(x) / grid.scale(), row));
    painter.setPen(strokes::hairline(boundColor, Qt::SolidLine));
    painter.drawPoints(dots.constData(), static_cast<int>(dots.size()));
}

void paintLabel(
    QPainter& painter, const ChartFrame& frame, const QRect& area, const QRect& part, int y, double value)
{
    const QRect label(area.right() + 4, y - 8, 62, 16);
    if (part.intersects(label))
        frame.texts->draw(painter, label, Qt::AlignLeft, QString::number(value), frame.colors.axis);
}

/// The bars whose line reaches into the columns from `left` to `right`.
BarRange barsBetween(const ChartFrame& frame, int left, int right)
{
    return {std::max(frame.bars.first, frame.view.barAt(left) - 2),
        std::min(frame.bars.last, frame.view.barAt(right) + 2)};
}

} // namespace

ValueRange paneScale(const PaneStyle& style, std::span<const double> values, const BarRange& visible)
{
    if (style.scale)
        return *style.scale;
    constexpr double infinity = std::numeric_limits<double>::infinity();
    ValueRange range{infinity, -infinity};
    const qsizetype last = std::min(visible.last, static_cast<qsizetype>(values.size()) - 1);
    for (qsizetype i = visible.first; i <= last; ++i) {
        const double value = values[static_cast<std::size_t>(i)];
        if (!std::isfinite(value))
            continue;
        range.min = std::min(range.min, value);
        range.max = std::max(range.max, value);
    }
    if (range.min > range.max)
        return {};
    if (range.min == range.max) {
        const double half = std::max(0.5, std::abs(range.min) * 1e-9);
        return {range.min - half, range.max + half};
    }
    return range;
}

void paintPane(QPainter& painter, const ChartFrame& frame, const PaneContent& content)
{
    const ChartView& view = frame.view;
    const QRect& area = content.area;
    // Only the exposed part is painted, since pointer and ticks expose little. One pixel more on each side,
    // since a part may end between two pixels of the screen.
    const QRect rows(area.left(), area.top(), view.size().width(), area.height() + 1);
    const QRect exposed = (frame.exposed & rows).boundingRect();
    if (exposed.isEmpty())
        return;
    const QRect part = exposed.adjusted(-1, -1, 1, 1);
    const PaneStyle& style = content.style;
    const ValueRange scale = paneScale(style, content.values, view.visible());

    painter.fillRect(area & part, groundColor);
    Strokes(painter).across(area.left(), area.right(), area.top(), frame.colors.grid);
    for (const int bound : style.bounds) {
        const int y = rowOf(area, scale, bound);
        if (!area.contains(area.left(), y))
            continue;
        paintBound(painter, area, part, y);
        paintLabel(painter, frame, area, part, y, bound);
    }
    if (!style.scale) {
        // Without a fixed scale only these labels tell what the heights mean.
        paintLabel(painter, frame, area, part, area.top() + 8, scale.max);
        paintLabel(painter, frame, area, part, area.bottom() - 8, scale.min);
    }
    // The row below the pane belongs to the lowest value.
    curve::join(
        painter, view, content.values, barsBetween(frame, part.left(), part.right()),
        [&area, &scale](double value) { return rowOf(area, scale, value); }, area.adjusted(0, 0, 0, 1) & part,
        frame.exposed, style.line);
    frame.texts->drawAt(painter, area.topLeft() + QPoint(6, 14),
        indicatorLabel(content.pane.kind, content.pane.period), frame.colors.axis);
}
