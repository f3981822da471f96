#pragma once

#include <QLineF>

#include <span>

class QPainter;
class QPen;
struct ChartFrame;

namespace strokes {

/// Single segments of an opaque pen of up to two pixels. A pen wider than one pixel begins its steps anew
/// where a segment enters the part of the frame that is painted, so a chart that is painted in parts would
/// keep stray pixels. Segments that cross the edge of the exposed part are therefore painted into a picture
/// and copied from there.
void withPen(QPainter& painter, const ChartFrame& frame, const QPen& pen, std::span<const QLineF> segments);

} // namespace strokes
