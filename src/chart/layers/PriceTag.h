#pragma once

#include <QRect>

class ChartView;

/// The box of a price tag on the price axis beside pixel row `y`.
[[nodiscard]] QRect priceTagBox(const ChartView& view, int y);
