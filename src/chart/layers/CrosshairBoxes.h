#pragma once

#include <QRegion>

class ChartView;
class QPoint;

/// Where the crosshair's texts stand; its price tag is priceTagBox().
namespace crosshair {

/// The time tag below the pointer.
[[nodiscard]] QRect timeTag(const ChartView& view, int x);
/// The line with the prices of the candle under the pointer.
[[nodiscard]] QRect priceLine(const ChartView& view);

/// All that the crosshair of a pointer in the plot covers: what a move of the pointer changes.
[[nodiscard]] QRegion area(const ChartView& view, const QPoint& pointer);

} // namespace crosshair
