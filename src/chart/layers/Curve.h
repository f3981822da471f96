#pragma once

#include <QColor>

#include <functional>
#include <span>

class ChartView;
class QPainter;
class QPoint;
class QRect;
class QRegion;
struct BarRange;

/// Slanting lines of one pixel, in boxes of whole pixels: they look the same whatever part of a frame is
/// painted, whereas a pen's line takes other steps once one of its ends lies outside that part.
namespace curve {

/// From one pixel to another in the same or a later column, both included; only what lies `within` is
/// painted.
void slope(QPainter& painter, const QPoint& from, const QPoint& to, const QRect& within, const QColor& color);

/// Where a value lies, as a row of pixels.
using Row = std::function<int(double)>;

/// Joins the values of neighbouring `bars`; a bar whose value is no number breaks the line. Where `values` is
/// too short there are gaps. What lies outside `exposed` may be left out.
void join(QPainter& painter, const ChartView& view, std::span<const double> values, const BarRange& bars,
    const Row& row, const QRect& within, const QRegion& exposed, const QColor& color);

} // namespace curve
