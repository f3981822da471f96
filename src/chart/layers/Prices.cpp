#include "chart/layers/ChartFrame.h"
#include "chart/layers/Layers.h"
#include "chart/layers/PenLines.h"
#include "chart/layers/Strokes.h"

#include <QVarLengthArray>

#include <algorithm>
#include <cstdlib>

namespace {

/// Below this bar width a body has no room for a shape of its own.
constexpr double thinnestBody = 2.5;

void paintLine(QPainter& painter, const ChartFrame& frame)
{
    const PixelGrid grid(painter);
    QVarLengthArray<QLineF, 512> segments;
    QPointF from;
    for (qsizetype i = frame.bars.first; i <= frame.bars.last; ++i) {
        const QPointF to = grid.snapped(frame.view.barPixel(i), frame.view.pricePixel(frame.candle(i).close));
        if (i > frame.bars.first)
            segments.append(QLineF(from, to));
        from = to;
    }
    // Single segments: a polyline above one pixel of width is stroked as one large path.
    strokes::withPen(painter, frame, QPen(frame.colors.line, 1.2), segments);
}

void paintBars(QPainter& painter, const ChartFrame& frame)
{
    const ChartView& view = frame.view;
    const int tick = std::max(static_cast<int>(view.barWidth() * 0.36), 1);
    const Strokes strokes(painter);
    for (qsizetype i = frame.bars.first; i <= frame.bars.last; ++i) {
        const int x = view.barPixel(i);
        if (x + tick < view.plot().left())
            continue;
        const Candle& candle = frame.candle(i);
        const QColor& color = candle.close < candle.open ? frame.colors.down : frame.colors.up;
        const int open = view.pricePixel(candle.open);
        const int close = view.pricePixel(candle.close);
        strokes.down(x, view.pricePixel(candle.high), view.pricePixel(candle.low), color);
        strokes.columns({x, tick, 0}, open, open + 1, color);
        strokes.columns({x, 0, tick}, close, close + 1, color);
    }
}

void paintCandles(QPainter& painter, const ChartFrame& frame)
{
    const ChartView& view = frame.view;
    const int width = std::max(static_cast<int>(view.barWidth() * 0.72), 1);
    const int half = width / 2;
    const bool hasBody = view.barWidth() >= thinnestBody;
    const Strokes strokes(painter);
    for (qsizetype i = frame.bars.first; i <= frame.bars.last; ++i) {
        const int x = view.barPixel(i);
        if (x + half < view.plot().left())
            continue;
        const Candle& candle = frame.candle(i);
        const bool rising = candle.close >= candle.open;
        const QColor& color = rising ? frame.colors.up : frame.colors.down;
        strokes.down(x, view.pricePixel(candle.high), view.pricePixel(candle.low), color);
        const int open = view.pricePixel(candle.open);
        const int close = view.pricePixel(candle.close);
        if (!hasBody) {
            strokes.columns({x, half, width - 1 - half}, close, close + 1, color);
            continue;
        }
        const int top = std::min(open, close);
        const int end = top + std::max(std::abs(close - open), 1);
        if (rising) // as a pen along its edges would, covering one pixel more to the right and below
            strokes.outlinedColumns({x, half, width - half}, top, end, frame.colors.background, color);
        else
            strokes.columns({x, half, width - 1 - half}, top, end, color);
    }
}

} // namespace

void layers::paintPrices(QPainter& painter, const ChartFrame& frame)
{
    switch (frame.type) {
    case ChartType::Line:
        return paintLine(painter, frame);
    case ChartType::Bars:
        return paintBars(painter, frame);
    case ChartType::Candles:
        return paintCandles(painter, frame);
    }
}
