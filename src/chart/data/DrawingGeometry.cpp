#include "chart/data/DrawingGeometry.h"

#include "app/base/NumberFormat.h"
#include "chart/series/CandleSeries.h"
#include "chart/series/Timeframe.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>

namespace {

constexpr int handleSide = 6;
/// Rows or columns of a line's area on either side of the line.
constexpr int lineReach = 1;
/// Times further from the epoch are no times. Differences between times within fit 64 bits.
constexpr qint64 farTime = 4'000'000'000'000'000'000;

qint64 usableTime(qint64 time)
{
    return std::clamp(time, -farTime, farTime);
}

/// From a pixel to the segment between two others; nothing when the segment is shorter than a pixel.
std::optional<double> distance(const QPoint& pixel, const QPoint& from, const QPoint& to)
{
    const double dx = static_cast<double>(to.x()) - from.x();
    const double dy = static_cast<double>(to.y()) - from.y();
    const double length = std::hypot(dx, dy);
    if (length < 1.0)
        return std::nullopt;
    const double px = static_cast<double>(pixel.x()) - from.x();
    const double py = static_cast<double>(pixel.y()) - from.y();
    const double along = (px * dx + py * dy) / (length * length);
    if (along <= 0.0)
        return std::hypot(px, py);
    if (along >= 1.0)
        return std::hypot(px - dx, py - dy);
    return std::abs(px * dy - py * dx) / length;
}

} // namespace

DrawingGeometry::DrawingGeometry(const ChartView& view, std::span<const Candle> candles, qint64 timeframeMs)
    : m_view(view)
    , m_candles(candles)
    , m_timeframeMs(timeframeMs < 1 ? defaultTimeframeMs : timeframeMs)
{
}

std::optional<QPoint> DrawingGeometry::pixel(const DrawingPoint& point) const
{
    if (m_view.visible().isEmpty() || m_candles.empty() || !isUsablePrice(point.price))
        return std::nullopt;
    const qsizetype last = m_view.visible().last;
    const qint64 lastTime = usableTime(m_candles[static_cast<std::size_t>(last)].time);
    const qint64 bars = (usableTime(point.time) - lastTime) / m_timeframeMs;
    return QPoint(m_view.barPixel(last + bars), m_view.pricePixel(point.price));
}

std::optional<DrawingPoint> DrawingGeometry::anchor(const QPoint& pixel) const
{
    if (m_candles.empty())
        return std::nullopt;
    const auto newest = static_cast<qsizetype>(m_candles.size()) - 1;
    const qsizetype bar = std::clamp<qsizetype>(m_view.barAt(pixel.x()), 0, newest);
    return DrawingPoint{m_candles[static_cast<std::size_t>(bar)].time, m_view.priceAt(pixel.y())};
}

std::optional<DrawingGeometry::Shape> DrawingGeometry::shape(const Drawing& drawing) const
{
    const std::optional<DrawingKind> kind = drawingKind(drawing.type);
    if (!kind || drawing.points.size() < pointsNeeded(*kind))
        return std::nullopt;
    const DrawingPoint& first = drawing.points.first();
    const DrawingPoint& second = drawing.points.at(pointsNeeded(*kind) - 1);
    const std::optional<QPoint> from = pixel(first);
    const std::optional<QPoint> to = pixel(second);
    if (!from || !to)
        return std::nullopt;
    return Shape{*kind, first, second, *from, *to};
}

QRect DrawingGeometry::area(const Drawing& drawing) const
{
    const std::optional<Shape> shape = this->shape(drawing);
    if (!shape)
        return {};
    const QRect& plot = m_view.plot();
    if (shape->kind == DrawingKind::HorizontalLine)
        return lineArea(shape->first.price);
    if (shape->kind == DrawingKind::VerticalLine)
        return plot & QRect(shape->from.x() - lineReach, plot.top(), 2 * lineReach + 1, plot.height());
    const auto [left, right] = std::minmax(shape->from.x(), shape->to.x());
    const auto [top, bottom] = std::minmax(shape->from.y(), shape->to.y());
    return plot
        & QRect(QPoint(left - lineReach, top - lineReach), QPoint(right + lineReach, bottom + lineReach));
}

QRect DrawingGeometry::lineArea(double price) const
{
    if (!isUsablePrice(price) || !isShown(price))
        return {};
    const QRect& plot = m_view.plot();
    return plot & QRect(plot.left(), row(price) - lineReach, plot.width(), 2 * lineReach + 1);
}

bool DrawingGeometry::isHit(const Drawing& drawing, const QPoint& pixel) const
{
    const std::optional<Shape> shape = this->shape(drawing);
    if (!shape)
        return false;
    if (shape->kind == DrawingKind::HorizontalLine)
        return isShown(shape->first.price) && std::abs(pixel.y() - shape->from.y()) <= reach;
    if (shape->kind == DrawingKind::TrendLine) {
        const std::optional<double> away = distance(pixel, shape->from, shape->to);
        return away && *away <= reach;
    }
    return false;
}

qsizetype DrawingGeometry::topmostHit(std::span<const Drawing> drawings, const QPoint& pixel) const
{
    for (std::size_t i = drawings.size(); i > 0; --i) {
        if (isHit(drawings[i - 1], pixel))
            return static_cast<qsizetype>(i) - 1;
    }
    return -1;
}

QRect DrawingGeometry::handle(const QPoint& point)
{
    return {point.x() - handleSide / 2, point.y() - handleSide / 2, handleSide, handleSide};
}

QRect DrawingGeometry::horizontalLineHandle(int row) const
{
    return {m_view.plot().left() + 2, row - handleSide / 2, handleSide, handleSide};
}

QRect DrawingGeometry::verticalLineHandle(const QPoint& point) const
{
    const QRect& plot = m_view.plot();
    return handle(QPoint(point.x(), std::clamp(point.y(), plot.top(), plot.bottom())));
}

double DrawingGeometry::fibonacciPrice(const Shape& shape, double ratio)
{
    return shape.first.price + (shape.second.price - shape.first.price) * ratio;
}

QString DrawingGeometry::fibonacciText(double ratio, double price, int digits)
{
    //: %1 a share in per cent, %2 its price
    return QCoreApplication::translate("ChartWidget", "%1  %2")
        .arg(QString::number(ratio * 100.0, 'f', 1), formatPrice(price, digits));
}
