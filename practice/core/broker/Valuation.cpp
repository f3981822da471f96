#include "practice/core/broker/Valuation.h"

#include "practice/core/PointScale.h"
#include "practice/core/broker/PriceGrid.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace practice {
namespace {

// Decimal numbers of a symbol's specification are taken in millionths.
constexpr std::int64_t millionth = 1'000'000;

std::int64_t millionths(double number)
{
    return std::llround(number * static_cast<double>(millionth));
}

std::int64_t wholePointsPerUnit(const SymbolSpec& spec)
{
    return static_cast<std::int64_t>(pointsPerUnit(spec.digits));
}

} // namespace

// Hundredths of a lot times units per lot are hundredths of a unit, and a hundredth of a USD is a cent: both
// factors of 100 cancel.
Cents grossProfit(
    const SymbolSpec& spec, Side side, LotHundredths lots, double entry, double exit, const Rate& usdRate)
{
    const std::int64_t risen = toPoints(exit, spec.digits) - toPoints(entry, spec.digits);
    return roundQuotient(
        {side == Side::Buy ? risen : -risen, lots, millionths(spec.contractSize), usdRate.over},
        {wholePointsPerUnit(spec), millionth, usdRate.under});
}

Cents swapPerNight(const SymbolSpec& spec, Side side, LotHundredths lots, const Rate& usdRate)
{
    const double points = side == Side::Buy ? spec.swapLong : spec.swapShort;
    return roundQuotient({millionths(points), lots, millionths(spec.contractSize), usdRate.over},
        {wholePointsPerUnit(spec), millionth, millionth, usdRate.under});
}

Cents commissionFor(const SymbolSpec& spec, LotHundredths lots)
{
    return std::max<Cents>(0, roundQuotient({lots, millionths(spec.commissionPerLot)}, {millionth}));
}

Cents marginFor(
    const SymbolSpec& spec, LotHundredths lots, double price, const Rate& usdRate, int accountLeverage)
{
    const std::int64_t leverage
        = millionths(std::max(1.0, std::min<double>(accountLeverage, spec.maxLeverage)));
    if (spec.baseCurrency == "USD")
        return roundQuotient({lots, millionths(spec.contractSize)}, {leverage});
    return roundQuotient({lots, millionths(spec.contractSize), toPoints(price, spec.digits), usdRate.over},
        {wholePointsPerUnit(spec), leverage, usdRate.under});
}

} // namespace practice
