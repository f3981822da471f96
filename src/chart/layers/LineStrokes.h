#pragma once

#include <Qt>

class QColor;
class QPainter;
class QPoint;
class QRect;

/// Lines in any direction. Each pixel depends on the line alone: where a frame is painted in parts, neither
/// the clip nor the bounds shift a step or a dash, as they would with a pen. Ends may lie far away; only what
/// is within the bounds costs time.
namespace strokes {

struct LineStyle {
    int width = 1; ///< in pixels, at least 1
    Qt::PenStyle pen = Qt::SolidLine;
};

/// From one pixel to another, both included, as far as it lies within `bounds`.
void between(QPainter& painter, const QPoint& from, const QPoint& to, const QRect& bounds,
    const QColor& color, const LineStyle& style = {});

/// The four sides of the box that two opposite corner pixels span, as far as they lie within `bounds`.
void boxBetween(QPainter& painter, const QPoint& a, const QPoint& b, const QRect& bounds, const QColor& color,
    const LineStyle& style = {});

} // namespace strokes
