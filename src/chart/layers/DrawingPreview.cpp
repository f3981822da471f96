#include "chart/data/DrawingGeometry.h"
#include "chart/layers/ChartFrame.h"
#include "chart/layers/Layers.h"
#include "chart/layers/LineStrokes.h"
#include "chart/layers/OverlayAreas.h"
#include "chart/layers/Strokes.h"

#include <QColor>

void layers::paintDrawingPreview(QPainter& painter, const ChartFrame& frame)
{
    if (!frame.preview || !frame.crosshair)
        return;
    const DrawingGeometry geometry(frame.view, frame.candles, frame.timeframeMs);
    const std::optional<QPoint> placed = geometry.pixel(frame.preview->placed);
    if (!placed)
        return;
    constexpr QColor color(0xe0, 0xe0, 0xe0);
    // Where keys place it, the crosshair still stands on the point and nothing else would show it.
    if (overlays::marksPlaced(*placed, frame.pointer)) {
        const QRect handle = DrawingGeometry::handle(*placed);
        Strokes(painter).box(handle.intersected(frame.view.plot()), color);
    }
    const strokes::LineStyle dashed{1, Qt::DashLine};
    if (overlays::isBox(frame.preview->kind))
        strokes::boxBetween(painter, *placed, frame.pointer, frame.view.plot(), color, dashed);
    else
        strokes::between(painter, *placed, frame.pointer, frame.view.plot(), color, dashed);
}
