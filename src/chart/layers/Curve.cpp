#include "chart/layers/Curve.h"

#include "chart/ChartView.h"

#include <QPainter>
#include <QRect>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

void fill(QPainter& painter, const QRect& box, const QRect& within, const QColor& color)
{
    const QRect part = box & within;
    if (!part.isEmpty())
        painter.fillRect(part, color);
}

} // namespace

void curve::slope(
    QPainter& painter, const QPoint& from, const QPoint& to, const QRect& within, const QColor& color)
{
    const int width = to.x() - from.x();
    const int height = std::abs(to.y() - from.y());
    const int down = to.y() < from.y() ? -1 : 1;
    const bool flat = width >= height;
    const qint64 runs = std::min(width, height);
    const qint64 length = std::max(width, height);
    qint64 start = 0;
    for (qint64 run = 0; run <= runs; ++run) {
        // The next run begins where the line comes nearer to the next row (or column) than to this one.
        const qint64 next = run < runs ? (length * (2 * run + 1) + 2 * runs - 1) / (2 * runs) : length + 1;
        const auto first = static_cast<int>(start);
        const auto last = static_cast<int>(next - 1);
        const auto aside = static_cast<int>(run);
        if (flat) {
            const int y = from.y() + down * aside;
            fill(painter, QRect(from.x() + first, y, last - first + 1, 1), within, color);
        } else {
            const int x = from.x() + aside;
            const int y = from.y() + down * (down > 0 ? first : last);
            fill(painter, QRect(x, y, 1, last - first + 1), within, color);
        }
        start = next;
    }
}

void curve::join(QPainter& painter, const ChartView& view, std::span<const double> values,
    const BarRange& bars, int (*row)(const ChartView&, double), const QRect& within, const QColor& color)
{
    const qsizetype last = std::min(bars.last, static_cast<qsizetype>(values.size()) - 1);
    QPoint from;
    bool joined = false;
    for (qsizetype i = bars.first; i <= last; ++i) {
        const double value = values[static_cast<std::size_t>(i)];
        const bool present = !std::isnan(value);
        const QPoint to = present ? QPoint(view.barPixel(i), row(view, value)) : QPoint();
        if (joined && present)
            slope(painter, from, to, within, color);
        from = to;
        joined = present;
    }
}
