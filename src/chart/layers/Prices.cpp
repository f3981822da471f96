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
    QVarLengthArray<QLineF, 512> segments;
    QPointF from;
    for (qsizetype i = frame.bars.first; i <= frame.bars.last; ++i) {
        const QPointF to(frame.view.barPixel(i), frame.view.pricePixel(frame.candle(i).close));
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
    for (qsizetype i = frame.bars.first; i <= frame.bars.last; ++i) {
        const int x = view.barPixel(i);
        if (x + tick < view.plot().left())
            continue;
        const Candle& candle = frame.candle(i);
        const QColor& color = candle.close < candle.open ? frame.colors.down : frame.colors.up;
        strokes::down(painter, x, view.pricePixel(candle.high), view.pricePixel(candle.low), color);
        strokes::across(painter, x - tick, x, view.pricePixel(candle.open), color);
        strokes::across(painter, x, x + tick, view.pricePixel(candle.close), color);
    }
}

void paintCandles(QPainter& painter, const ChartFrame& frame)
{
    const ChartView& view = frame.view;
    const int width = std::max(static_cast<int>(view.barWidth() * 0.72), 1);
    const int half = width / 2;
    const bool hasBody = view.barWidth() >= thinnestBody;
    for (qsizetype i = frame.bars.first; i <= frame.bars.last; ++i) {
        const int x = view.barPixel(i);
        if (x + half < view.plot().left())
            continue;
        const Candle& candle = frame.candle(i);
        const bool rising = candle.close >= candle.open;
        const QColor& color = rising ? frame.colors.up : frame.colors.down;
        strokes::down(painter, x, view.pricePixel(candle.high), view.pricePixel(candle.low), color);
        const int open = view.pricePixel(candle.open);
        const int close = view.pricePixel(candle.close);
        if (!hasBody) {
            painter.fillRect(x - half, close, width, 1, color);
            continue;
        }
        const QRect body(x - half, std::min(open, close), width, std::max(std::abs(close - open), 1));
        if (rising) // as a pen along its edges would, covering one pixel more to the right and below
            strokes::outlined(painter, body.adjusted(0, 0, 1, 1), frame.colors.background, color);
        else
            painter.fillRect(body, color);
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
