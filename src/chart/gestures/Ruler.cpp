#include "chart/gestures/Ruler.h"

#include "app/base/NumberFormat.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

constexpr int boxHeight = 18;
/// Larger numbers of points are told as this one, which fits an integer.
constexpr double mostPoints = 9e18;

qint64 pointsBetween(double from, double to, int digits)
{
    const double points = std::pow(10.0, clampDigits(digits)) * (to - from);
    return std::llround(std::clamp(points, -mostPoints, mostPoints));
}

} // namespace

void Ruler::setArmed(bool armed)
{
    m_armed = armed;
    clear();
}

void Ruler::begin(const QPoint& position)
{
    m_span = Span{position, position};
    m_stretching = true;
}

void Ruler::stretch(const ChartView& view, const QPoint& position)
{
    if (!m_stretching || !m_span)
        return;
    const QRect& plot = view.plot();
    m_span->end = QPoint(std::clamp(position.x(), plot.left(), plot.right()),
        std::clamp(position.y(), plot.top(), plot.bottom()));
}

void Ruler::clear()
{
    m_stretching = false;
    m_span.reset();
}

QString Ruler::text(const ChartView& view, const Span& span, int digits)
{
    const qint64 bars = std::abs(view.barAt(span.end.x()) - view.barAt(span.start.x()));
    const double from = view.priceAt(span.start.y());
    const double to = view.priceAt(span.end.y());
    const double percent = from == 0.0 ? 0.0 : (to - from) / from * 100.0;
    const qint64 points = pointsBetween(from, to, digits);
    //: the plural is that of the points
    return QCoreApplication::translate(
        "ChartWidget", "%1 bars,  %2 points  (%3%)", nullptr, pluralCount(points))
        .arg(QString::number(bars), QString::number(points), formatPrice(percent, 2));
}

QRect Ruler::box(const ChartView& view, const QPoint& end, int advance)
{
    const QRect& plot = view.plot();
    QRect box(end.x() + 8, end.y() - 22, advance + 10, boxHeight);
    if (box.right() > plot.right())
        box.moveLeft(end.x() - box.width() - 8);
    if (box.top() < plot.top())
        box.moveTop(end.y() + 8);
    return box;
}
