#include "chart/layers/OverlayAreas.h"

#include "chart/data/ChartView.h"
#include "chart/data/DrawingGeometry.h"
#include "chart/layers/CrosshairBoxes.h"
#include "chart/layers/PriceTag.h"
#include "chart/layers/TextPainter.h"

#include <algorithm>

namespace {

QRect boundsOf(const QPoint& a, const QPoint& b)
{
    return {QPoint(std::min(a.x(), b.x()), std::min(a.y(), b.y())),
        QPoint(std::max(a.x(), b.x()), std::max(a.y(), b.y()))};
}

} // namespace

bool overlays::marksPlaced(const QPoint& placed, const QPoint& pointer)
{
    return DrawingGeometry::handle(placed).contains(pointer);
}

QRegion overlays::preview(
    const ChartView& view, DrawingKind kind, const QPoint& placed, const QPoint& pointer)
{
    const QRect bounds = boundsOf(placed, pointer);
    if (marksPlaced(placed, pointer))
        return DrawingGeometry::handle(placed).united(bounds).intersected(view.plot());
    if (!isBox(kind))
        return bounds.intersected(view.plot());
    QRegion sides;
    sides += boundsOf(bounds.topLeft(), bounds.topRight()).intersected(view.plot());
    sides += boundsOf(bounds.bottomLeft(), bounds.bottomRight()).intersected(view.plot());
    sides += boundsOf(bounds.topLeft(), bounds.bottomLeft()).intersected(view.plot());
    sides += boundsOf(bounds.topRight(), bounds.bottomRight()).intersected(view.plot());
    return sides;
}

QRegion overlays::ruler(const ChartView& view, const Ruler::Span& span, int digits, TextPainter& texts)
{
    const QString text = Ruler::text(view, span, digits);
    return QRegion(boundsOf(span.start, span.end).intersected(view.plot()))
        + Ruler::box(view, span.end, texts.advance(text));
}

QRegion overlays::level(const ChartView& view, double price)
{
    if (!view.prices().contains(price))
        return {};
    const QRect& plot = view.plot();
    const int y = view.pricePixel(price);
    // The text may hang over the box that centres it by a few pixels.
    return QRegion(QRect(QPoint(plot.left(), y - 20), QPoint(plot.right(), y + 4))) + priceTagBox(view, y);
}

QRegion overlays::inHand(const ChartView& view, const ChartGestures& gestures, int digits, TextPainter& texts)
{
    QRegion area;
    if (gestures.ruler().span())
        area += ruler(view, *gestures.ruler().span(), digits, texts);
    if (gestures.level().isActive())
        area += level(view, gestures.level().price());
    return area;
}

QRegion overlays::pointer(
    const ChartGestures::Ground& ground, const DrawingTool& tool, const QPoint& position)
{
    const QRegion cross = crosshair::area(ground.view, position);
    if (!tool.placed())
        return cross;
    const std::optional<QPoint> placed
        = DrawingGeometry(ground.view, ground.candles, ground.timeframeMs).pixel(*tool.placed());
    return placed ? cross + preview(ground.view, *tool.kind(), *placed, position) : cross;
}
