#include "practice/core/broker/QuietCheck.h"

#include "practice/core/broker/PriceGrid.h"
#include "practice/core/broker/RiskRules.h"
#include "practice/core/broker/Triggers.h"
#include "practice/core/broker/Valuation.h"

#include <algorithm>
#include <array>
#include <vector>

namespace practice {
namespace {

using Spans = std::span<const std::optional<PriceSpan>>;

// Within a span the spread may be anything from nothing to the widest.
std::array<Quote, 2> outermost(const PriceSpan& span)
{
    return {Quote{span.low - span.halfSpread, span.low}, Quote{span.high, span.high + span.halfSpread}};
}

bool levelsAreFar(const Ledger& ledger, std::size_t symbol, const PriceSpan& span)
{
    const auto quotes = outermost(span);
    const auto touched = [&](const LiveTrade* trade, auto reached) {
        return std::ranges::any_of(quotes, [&](const Quote& quote) { return reached(trade->record, quote); });
    };
    return std::ranges::none_of(ledger.openOf(symbol), [&](const LiveTrade* position) {
        return touched(position, [](const Trade& trade, const Quote& quote) {
            return reachedLevel(trade, quote) != CloseReason::None;
        });
    }) && std::ranges::none_of(ledger.pendingOf(symbol), [&](const LiveTrade* order) {
        return touched(order, triggerReached);
    });
}

// The result of an account's positions in one symbol at both ends of the symbol's span, each at both ends of
// the rate that turns it into USD. All possible results lie between these four.
using Ends = std::array<Cents, 4>;

void addEnds(Ends& ends, const SymbolSpec& spec, const Trade& position, const PriceSpan& span,
    const std::array<Rate, 2>& rates)
{
    const double cost = position.side == Side::Buy ? -span.halfSpread : span.halfSpread;
    for (std::size_t i = 0; i < ends.size(); ++i) {
        const double exit = (i < 2 ? span.low : span.high) + cost;
        ends[i] += grossProfit(spec, position.side, position.lots, position.entryPrice, exit, rates[i % 2])
            + position.swap - position.commission;
    }
}

Cents worstEquity(const LiveAccount& account, const PriceBoard& prices, Spans spans)
{
    std::vector<std::optional<Ends>> bySymbol(spans.size());
    Cents equity = account.record.balance;
    for (const LiveTrade* trade : account.trades) {
        if (trade->record.status != TradeStatus::Open)
            continue;
        const auto rateAt = [&](double PriceSpan::*end) {
            return prices.usdRate(trade->symbol, [&](std::size_t pair) -> std::optional<std::int64_t> {
                if (!spans[pair])
                    return std::nullopt;
                return 2 * toPoints((*spans[pair]).*end, prices.symbols()[pair].digits);
            });
        };
        const bool known = trade->symbol < spans.size() && spans[trade->symbol];
        const std::optional<Rate> low = known ? rateAt(&PriceSpan::low) : std::nullopt;
        const std::optional<Rate> high = known ? rateAt(&PriceSpan::high) : std::nullopt;
        if (!low || !high) {
            equity += trade->record.pnl;
            continue;
        }
        std::optional<Ends>& ends = bySymbol[trade->symbol];
        if (!ends)
            ends.emplace(Ends{});
        addEnds(*ends, prices.symbols()[trade->symbol], trade->record, *spans[trade->symbol], {*low, *high});
    }
    for (const std::optional<Ends>& ends : bySymbol)
        equity += ends ? std::ranges::min(*ends) : 0;
    return equity;
}

bool limitsAreFar(const LiveAccount& account, const PriceBoard& prices, Spans spans)
{
    if (account.trades.empty())
        return true;
    const Account& record = account.record;
    if (record.kind == AccountKind::Plan && record.status != AccountStatus::Active)
        return false; // what could not be closed when the challenge ended is still to be closed
    const Cents equity = worstEquity(account, prices, spans);
    return !dailyLossReached(record, equity) && !totalLossReached(record, equity)
        && !stopOutReached(equity, account.margin);
}

} // namespace

bool staysQuiet(const Ledger& ledger, const PriceBoard& prices, Spans spans)
{
    for (std::size_t symbol = 0; symbol < spans.size(); ++symbol) {
        if (spans[symbol] && !levelsAreFar(ledger, symbol, *spans[symbol]))
            return false;
    }
    return std::ranges::all_of(
        ledger.accounts(), [&](const auto& account) { return limitsAreFar(*account, prices, spans); });
}

} // namespace practice
