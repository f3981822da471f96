#pragma once

#include "chart/series/Candle.h"

#include <QColor>
#include <QImage>
#include <QMouseEvent>
#include <QPointF>
#include <QWheelEvent>
#include <QWidget>

#include <QApplication>

#include <algorithm>
#include <cmath>
#include <vector>

/// Bars and gestures that the chart tests share.
namespace fixtures {

inline constexpr qint64 quarterHour = 900'000;
/// 2 June 2026, 00:00 UTC.
inline constexpr qint64 midnight = 1'780'358'400'000;

/// When the bar of that number begins.
inline constexpr qint64 barTime(int index)
{
    return midnight + index * quarterHour;
}

/// Price of a pixel row of a plot of 278 rows in which one unit of price is one pixel, in the middle of the
/// row so that rounding cannot matter.
inline constexpr double priceAtRow(int y)
{
    return 278.0 - y - 0.5;
}

/// `count` quarter-hour bars that wander around 1.1, the first one at midnight.
inline std::vector<Candle> wave(int count)
{
    std::vector<Candle> candles;
    candles.reserve(static_cast<std::size_t>(count));
    double open = 1.1;
    for (int i = 0; i < count; ++i) {
        const double close = 1.1 + 0.01 * std::sin(i * 0.37) + 0.002 * std::cos(i * 1.9);
        Candle candle;
        candle.time = barTime(i);
        candle.open = open;
        candle.close = close;
        candle.high = std::max(open, close) + 0.0005 * (1 + i % 4);
        candle.low = std::min(open, close) - 0.0005 * (1 + i % 3);
        candle.volume = 10 + (i * 37) % 200;
        candles.push_back(candle);
        open = close;
    }
    return candles;
}

/// `count` quarter-hour bars without a movement.
inline std::vector<Candle> flatBars(int count, double price)
{
    std::vector<Candle> candles;
    for (int i = 0; i < count; ++i)
        candles.push_back({barTime(i), price, price, price, price, 0});
    return candles;
}

/// Four times longer ones, which begin at the same time.
inline std::vector<Candle> hours(std::vector<Candle> candles)
{
    for (Candle& candle : candles)
        candle.time = midnight + 4 * (candle.time - midnight);
    return candles;
}

inline void hover(QWidget& widget, const QPoint& position, Qt::MouseButtons buttons = Qt::NoButton)
{
    QMouseEvent event(QEvent::MouseMove, position, widget.mapToGlobal(position), Qt::NoButton, buttons, {});
    QApplication::sendEvent(&widget, &event);
}

inline void leave(QWidget& widget)
{
    QEvent event(QEvent::Leave);
    QApplication::sendEvent(&widget, &event);
}

inline void turnWheel(QWidget& widget, const QPoint& angle)
{
    const QPointF position = widget.rect().center();
    QWheelEvent event(
        position, widget.mapToGlobal(position), QPoint(), angle, Qt::NoButton, {}, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&widget, &event);
}

/// Pixels of `area` (cut to the picture) that are not `color`.
inline int pixelsOtherThan(const QImage& picture, const QRect& area, const QColor& color)
{
    int count = 0;
    const QRect part = area.intersected(picture.rect());
    for (int y = part.top(); y <= part.bottom(); ++y) {
        for (int x = part.left(); x <= part.right(); ++x)
            count += picture.pixelColor(x, y) != color ? 1 : 0;
    }
    return count;
}

/// Pixels of `area` (cut to the picture) that are `color`.
inline int pixelsOf(const QImage& picture, const QRect& area, const QColor& color)
{
    const QRect part = area.intersected(picture.rect());
    return part.width() * part.height() - pixelsOtherThan(picture, area, color);
}

} // namespace fixtures
