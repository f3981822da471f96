#include "practice/core/broker/Triggers.h"

#include <utility>

namespace practice {
namespace {

void closeReached(TradeSteps& steps, std::size_t symbol, const Quote& quote)
{
    std::vector<std::pair<LiveTrade*, CloseReason>> reached;
    for (LiveTrade* position : steps.ledger().openOf(symbol)) {
        const CloseReason reason = reachedLevel(position->record, quote);
        if (reason != CloseReason::None)
            reached.emplace_back(position, reason);
    }
    for (const auto& [position, reason] : reached)
        steps.closePosition(*position, reason);
}

bool fillReached(TradeSteps& steps, std::size_t symbol, const Quote& quote)
{
    std::vector<LiveTrade*> reached;
    for (LiveTrade* order : steps.ledger().pendingOf(symbol)) {
        if (triggerReached(order->record, quote))
            reached.push_back(order);
    }
    for (LiveTrade* order : reached)
        steps.fillOrder(*order);
    return !reached.empty();
}

} // namespace

CloseReason reachedLevel(const Trade& position, const Quote& quote)
{
    const bool isBuy = position.side == Side::Buy;
    const double price = closingPrice(position.side, quote);
    if (position.stopLoss > 0 && (isBuy ? price <= position.stopLoss : price >= position.stopLoss))
        return CloseReason::StopLoss;
    if (position.takeProfit > 0 && (isBuy ? price >= position.takeProfit : price <= position.takeProfit))
        return CloseReason::TakeProfit;
    return CloseReason::None;
}

bool triggerReached(const Trade& order, const Quote& quote)
{
    switch (order.orderKind) {
    case OrderKind::BuyLimit:
        return quote.ask <= order.pendingPrice;
    case OrderKind::SellLimit:
        return quote.bid >= order.pendingPrice;
    case OrderKind::BuyStop:
        return quote.ask >= order.pendingPrice;
    case OrderKind::SellStop:
        return quote.bid <= order.pendingPrice;
    case OrderKind::Market:
    case OrderKind::Balance:
        break;
    }
    return false;
}

void runTriggers(TradeSteps& steps, std::size_t symbol)
{
    const std::optional<Quote> quote = steps.prices().quote(symbol);
    if (!quote)
        return;
    closeReached(steps, symbol, *quote);
    if (fillReached(steps, symbol, *quote))
        closeReached(steps, symbol, *quote);
}

} // namespace practice
