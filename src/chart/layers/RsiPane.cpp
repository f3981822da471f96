#include "chart/layers/ChartFrame.h"
#include "chart/layers/Curve.h"
#include "chart/layers/Layers.h"
#include "chart/layers/Strokes.h"

#include <QCoreApplication>
#include <QVarLengthArray>

#include <algorithm>
#include <array>

namespace {

constexpr QColor groundColor(0x0a, 0x0a, 0x0a);
constexpr QColor boundColor(0x44, 0x44, 0x44);
constexpr QColor lineColor(0xc7, 0x92, 0xea);
constexpr std::array bounds{30, 70};

int rowOf(const ChartView& view, double value)
{
    const QRect& pane = view.rsi();
    return static_cast<int>(pane.top() + pane.height() * (100.0 - value) / 100.0);
}

/// A dotted line, of which only the dots in `part` are painted. The dots depend on the pane alone.
void paintBound(QPainter& painter, const QRect& pane, const QRect& part, int y)
{
    constexpr int period = 3;
    if (y < part.top() || y > part.bottom())
        return;
    const int skipped = (std::max(part.left() - pane.left(), 0) + period - 1) / period * period;
    QVarLengthArray<QPoint, 1024> dots;
    for (int x = pane.left() + skipped; x <= std::min(pane.right(), part.right()); x += period)
        dots.append(QPoint(x, y));
    painter.setPen(strokes::hairline(boundColor, Qt::SolidLine));
    painter.drawPoints(dots.constData(), static_cast<int>(dots.size()));
}

/// The bars that have something of their line between two columns.
BarRange barsBetween(const ChartFrame& frame, int left, int right)
{
    return {std::max(frame.bars.first, frame.view.barAt(left) - 2),
        std::min(frame.bars.last, frame.view.barAt(right) + 2)};
}

} // namespace

void layers::paintRsiPane(QPainter& painter, const ChartFrame& frame)
{
    const ChartView& view = frame.view;
    const QRect& pane = view.rsi();
    if (pane.isEmpty())
        return;
    // Pointer and ticks change little of the pane, which then costs little. One pixel more on each side,
    // since a part may end between two pixels of the screen.
    const QRect rows(pane.left(), pane.top(), view.size().width(), pane.height() + 1);
    const QRect exposed = (frame.exposed & rows).boundingRect();
    if (exposed.isEmpty())
        return;
    const QRect part = exposed.adjusted(-1, -1, 1, 1);

    painter.fillRect(pane & part, groundColor);
    strokes::across(painter, pane.left(), pane.right(), pane.top(), frame.colors.grid);
    for (const int bound : bounds) {
        const int y = rowOf(view, bound);
        paintBound(painter, pane, part, y);
        const QRect label(pane.right() + 4, y - 8, 62, 16);
        if (part.intersects(label))
            frame.texts->draw(painter, label, Qt::AlignLeft, QString::number(bound), frame.colors.axis);
    }
    // The row below the pane belongs to the value 0.
    curve::join(painter, view, frame.rsiValues, barsBetween(frame, part.left(), part.right()), &rowOf,
        pane.adjusted(0, 0, 0, 1) & part, frame.exposed, lineColor);
    frame.texts->drawAt(painter, pane.topLeft() + QPoint(6, 14),
        QCoreApplication::translate("ChartWidget", "RSI(%1)").arg(frame.rsiPeriod), frame.colors.axis);
}
