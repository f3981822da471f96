#pragma once

#include "chart/ChartFixtures.h"
#include "chart/layers/ChartFrame.h"

#include <QImage>
#include <QPainter>
#include <QSize>

#include <functional>
#include <vector>

/// What the tests of single layers share: frames made by hand, of a widget of 400 by 300 pixels, and what a
/// layer paints of them.
namespace fixtures {

inline constexpr QSize frameSize(400, 300);

/// A frame of bars: plot (0, 0, 332, 278), the last bar at column 331. The price scale is set so that one
/// unit of price is one pixel, 278 at the top.
inline ChartFrame frameOfBars(const std::vector<Candle>& candles, double barWidth, TextPainter& texts)
{
    ViewState state;
    state.barWidth = barWidth;
    state.rightBarIndex = static_cast<double>(candles.size()) - 1.0;
    ChartFrame frame;
    frame.view
        = ChartView(frameSize, state, static_cast<qsizetype>(candles.size()), false).withPrices({0.0, 278.0});
    frame.candles = candles;
    frame.bars = frame.view.visible();
    frame.timeframeMs = quarterHour;
    frame.exposed = QRect(QPoint(0, 0), frameSize);
    frame.digits = 2;
    frame.texts = &texts;
    return frame;
}

/// What a layer paints on a ground of one colour.
inline QImage paint(const std::function<void(QPainter&, const ChartFrame&)>& layer, const ChartFrame& frame,
    const QColor& ground = QColor(Qt::black))
{
    QImage image(frame.view.size(), QImage::Format_RGB32);
    image.fill(ground);
    QPainter painter(&image);
    layer(painter, frame);
    return image;
}

} // namespace fixtures
