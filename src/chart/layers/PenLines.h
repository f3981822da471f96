#pragma once

#include <QLineF>

#include <span>

class QPainter;
class QPen;
struct ChartFrame;

namespace strokes {

/// Single segments of an opaque pen of up to two pixels. The steps of a pen wider than one pixel begin anew
/// where a segment leaves the part of the frame that is painted, which leaves pixels behind on a chart that
/// is painted in parts. So segments that cross the edge of the exposed part are taken from a picture of their
/// own.
void withPen(QPainter& painter, const ChartFrame& frame, const QPen& pen, std::span<const QLineF> segments);

} // namespace strokes
