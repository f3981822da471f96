#include "chart/data/GridSteps.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int pixelsPerPriceLine = 46;
constexpr int fewestPriceLines = 2;
constexpr double pixelsPerTimeLine = 90.0;

} // namespace

double niceStep(double raw)
{
    if (!(raw > 0.0) || !std::isfinite(raw))
        return 1.0;
    const double magnitude = std::pow(10.0, std::floor(std::log10(raw)));
    const double ratio = raw / magnitude;
    if (ratio <= 1.0)
        return magnitude;
    if (ratio <= 2.0)
        return 2.0 * magnitude;
    if (ratio <= 5.0)
        return 5.0 * magnitude;
    return 10.0 * magnitude;
}

QVarLengthArray<double, 32> priceGridLines(const PriceRange& prices, int plotHeight)
{
    QVarLengthArray<double, 32> lines;
    const int wanted = std::max(plotHeight / pixelsPerPriceLine, fewestPriceLines);
    const double step = niceStep((prices.max - prices.min) / wanted);
    const double first = std::ceil(prices.min / step);
    // Counted rather than summed up: steps may be too small to move a price of this size.
    for (int i = 0; i <= wanted; ++i) {
        const double price = (first + i) * step;
        if (!(price < prices.max))
            break;
        lines.append(price);
    }
    return lines;
}

qsizetype timeGridStep(double barWidth)
{
    return std::max<qsizetype>(static_cast<qsizetype>(pixelsPerTimeLine / barWidth), 1);
}
