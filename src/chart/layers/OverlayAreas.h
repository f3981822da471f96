#pragma once

#include "chart/data/DrawingKind.h"
#include "chart/gestures/ChartGestures.h"

#include <QRegion>

class ChartView;
class TextPainter;

/// The areas that the layers of a gesture cover, which a step of the gesture must paint anew.
namespace overlays {

/// Whether the preview of a drawing is the box between its points rather than a line.
[[nodiscard]] constexpr bool isBox(DrawingKind kind)
{
    return kind == DrawingKind::Rectangle || kind == DrawingKind::Fibonacci;
}

/// Whether a preview is so short that a handle marks its placed point.
[[nodiscard]] bool marksPlaced(const QPoint& placed, const QPoint& pointer);

/// The preview from a placed point to the pointer, in pixels.
[[nodiscard]] QRegion preview(
    const ChartView& view, DrawingKind kind, const QPoint& placed, const QPoint& pointer);

/// The line and the box of a ruler.
[[nodiscard]] QRegion ruler(const ChartView& view, const Ruler::Span& span, int digits, TextPainter& texts);

/// A level line at a price with its label and its price tag, whether or not it is dragged.
[[nodiscard]] QRegion level(const ChartView& view, double price);

/// The ruler that is shown and the dragged level.
[[nodiscard]] QRegion inHand(
    const ChartView& view, const ChartGestures& gestures, int digits, TextPainter& texts);

/// What moves with a pointer in the plot: the crosshair, and the preview of the drawing that is being placed.
[[nodiscard]] QRegion pointer(
    const ChartGestures::Ground& ground, const DrawingTool& tool, const QPoint& position);

} // namespace overlays
