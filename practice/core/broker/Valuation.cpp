#include "practice/core/broker/Valuation.h"

#include "practice/core/PointScale.h"
#include "practice/core/broker/PriceGrid.h"

#include <algorithm>

namespace practice {
namespace {

// Hundredths of a lot times units per lot are hundredths of a unit, and a hundredth of a USD is a cent:
// both factors of 100 cancel, and for symbols quoted in USD the value is exact before it is rounded.
double centsForPoints(const SymbolSpec& spec, LotHundredths lots, double points, double usdRate)
{
    return points * static_cast<double>(lots) * spec.contractSize / pointsPerUnit(spec.digits) * usdRate;
}

} // namespace

Cents grossProfit(
    const SymbolSpec& spec, Side side, LotHundredths lots, double entry, double exit, double usdRate)
{
    const auto risen = static_cast<double>(toPoints(exit, spec.digits) - toPoints(entry, spec.digits));
    return roundToCents(centsForPoints(spec, lots, side == Side::Buy ? risen : -risen, usdRate));
}

Cents swapPerNight(const SymbolSpec& spec, Side side, LotHundredths lots, double usdRate)
{
    return roundToCents(
        centsForPoints(spec, lots, side == Side::Buy ? spec.swapLong : spec.swapShort, usdRate));
}

Cents commissionFor(const SymbolSpec& spec, LotHundredths lots)
{
    return std::max<Cents>(0, roundToCents(static_cast<double>(lots) * spec.commissionPerLot));
}

Cents marginFor(const SymbolSpec& spec, LotHundredths lots, double price, double usdRate, int accountLeverage)
{
    const double usdPerBaseUnit = spec.baseCurrency == "USD" ? 1.0 : price * usdRate;
    const double leverage = std::max(1.0, std::min<double>(accountLeverage, spec.maxLeverage));
    return roundToCents(static_cast<double>(lots) * spec.contractSize * usdPerBaseUnit / leverage);
}

} // namespace practice
