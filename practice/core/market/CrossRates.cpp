#include "practice/core/market/CrossRates.h"

#include <optional>

namespace practice {
namespace {

struct Leg {
    std::size_t symbol = 0;
    bool inverted = false; // USDXXX instead of XXXUSD
};

std::optional<Leg> legOf(const std::string& currency, const std::vector<SymbolSpec>& symbols)
{
    if (const auto direct = findSymbol(symbols, currency + "USD"))
        return Leg{*direct, false};
    if (const auto inverse = findSymbol(symbols, "USD" + currency))
        return Leg{*inverse, true};
    return std::nullopt;
}

} // namespace

bool isCrossRate(const SymbolSpec& spec, const std::vector<SymbolSpec>& symbols)
{
    return spec.name == spec.baseCurrency + spec.profitCurrency && spec.baseCurrency != "USD"
        && spec.profitCurrency != "USD" && legOf(spec.baseCurrency, symbols)
        && legOf(spec.profitCurrency, symbols);
}

DayWalk::CloseRule crossCloseRule(const SymbolSpec& spec, const std::vector<SymbolSpec>& symbols,
    const std::function<std::shared_ptr<DayWalk>(std::size_t)>& daysOf)
{
    const auto usdRate = [&](const std::string& currency) {
        const Leg leg = legOf(currency, symbols).value();
        const double unit = pointsPerUnit(symbols[leg.symbol].digits);
        return [days = daysOf(leg.symbol), unit, inverted = leg.inverted](std::int64_t day) {
            const double price = static_cast<double>(days->day(day).bar.close) / unit;
            return inverted ? 1 / price : price;
        };
    };
    return [base = usdRate(spec.baseCurrency), quoted = usdRate(spec.profitCurrency)](
               std::int64_t day) { return base(day) / quoted(day); };
}

} // namespace practice
