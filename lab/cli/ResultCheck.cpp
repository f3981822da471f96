#include "lab/cli/ResultCheck.h"

#include "lab/core/output/RunWords.h"
#include "practice/core/SymbolCatalog.h"
#include "practice/core/broker/Money.h"
#include "practice/core/broker/Valuation.h"

#include <cstddef>
#include <cstdlib>
#include <optional>

namespace lab {

namespace {

using practice::Cents;

/// What the prices alone make; nothing where contract, currency or digits of the symbol are not known.
std::optional<Cents> madeByPrices(const TradeRow& trade, const RunResult& result)
{
    const auto& symbols = practice::symbolCatalog();
    const auto found = practice::findSymbol(symbols, symbolOf(trade, result));
    if (!found || symbols[*found].profitCurrency != "USD" || digitsOf(trade, result) > symbols[*found].digits)
        return std::nullopt;
    return practice::grossProfit(
        symbols[*found], trade.side, trade.lots, trade.openPrice, trade.closePrice, {});
}

} // namespace

std::string contradictionText(const RunResult& result)
{
    constexpr Cents rounding = 1;
    std::size_t count = 0;
    std::string first;
    for (const TradeRow& trade : result.trades) {
        const auto made = madeByPrices(trade, result);
        if (!made || std::abs(trade.profit - *made) <= rounding)
            continue;
        if (++count == 1)
            first = std::to_string(trade.ticket) + ": its pnl of " + practice::moneyText(trade.net())
                + " is taken as net, after " + practice::moneyText(trade.commission - trade.swap)
                + " of costs, and its prices make " + practice::moneyText(*made) + " before them.";
    }
    if (count == 0)
        return {};
    return "Results do not fit their prices in " + std::to_string(count) + " of "
        + std::to_string(result.trades.size()) + " trades, first in ticket " + first;
}

} // namespace lab
