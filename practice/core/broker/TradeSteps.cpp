#include "practice/core/broker/TradeSteps.h"

#include "practice/core/broker/Valuation.h"

#include <utility>

namespace practice {

TradeSteps::TradeSteps(Ledger& ledger, const PriceBoard& prices, TimeMs now)
    : m_ledger(ledger)
    , m_prices(prices)
    , m_now(now)
{
}

LiveTrade& TradeSteps::accept(Trade trade)
{
    LiveTrade& live = m_ledger.add(std::move(trade));
    m_ledger.emit(OrdersChanged{live.record.accountId, live.record.id, false, CloseReason::None});
    return live;
}

bool TradeSteps::fillOrder(LiveTrade& order)
{
    const std::optional<Quote> quote = m_prices.quote(order.symbol);
    const std::optional<Rate> rate = m_prices.usdRate(order.symbol);
    if (!quote || !rate)
        return false;
    const SymbolSpec& spec = m_prices.symbols()[order.symbol];
    Trade position = order.record;
    position.status = TradeStatus::Open;
    position.entryPrice = openingPrice(position.side, *quote);
    position.margin
        = marginFor(spec, position.lots, position.entryPrice, *rate, order.owner->record.leverage);
    if (position.margin > order.owner->freeMargin()) {
        cancelOrder(order, CloseReason::NoMargin);
        return true;
    }
    position.commission = commissionFor(spec, position.lots);
    position.createdAt = position.updatedAt = m_now;
    position.pnl = m_prices.netProfit(position, order.symbol).value_or(0);
    m_ledger.replace(order, std::move(position));
    m_ledger.emit(OrdersChanged{order.record.accountId, order.record.id, true, CloseReason::None});
    return true;
}

bool TradeSteps::closePosition(LiveTrade& position, CloseReason reason)
{
    const std::optional<Quote> quote = m_prices.quote(position.symbol);
    const std::optional<Cents> result = m_prices.netProfit(position.record, position.symbol);
    if (!quote || !result)
        return false;
    Trade closed = position.record;
    closed.status = TradeStatus::Closed;
    closed.exitPrice = closingPrice(closed.side, *quote);
    closed.pnl = *result;
    closed.updatedAt = closed.closedAt = m_now;
    closed.closeReason = reason;
    m_ledger.change(*position.owner).balance += closed.pnl;
    m_ledger.emit(OrdersChanged{closed.accountId, closed.id, false, reason});
    m_ledger.finish(position, std::move(closed));
    return true;
}

void TradeSteps::cancelOrder(LiveTrade& order, CloseReason reason)
{
    Trade cancelled = order.record;
    cancelled.status = TradeStatus::Cancelled;
    cancelled.updatedAt = cancelled.closedAt = m_now;
    cancelled.closeReason = reason;
    if (reason == CloseReason::Manual)
        m_ledger.emit(OrdersChanged{cancelled.accountId, cancelled.id});
    else
        m_ledger.emit(OrdersChanged{cancelled.accountId, cancelled.id, false, reason, true});
    m_ledger.finish(order, std::move(cancelled));
}

void TradeSteps::voidTrade(LiveTrade& trade, CloseReason reason)
{
    Trade cancelled = trade.record;
    cancelled.status = TradeStatus::Cancelled;
    cancelled.pnl = cancelled.swap = cancelled.commission = 0;
    cancelled.updatedAt = cancelled.closedAt = m_now;
    cancelled.closeReason = reason;
    m_ledger.emit(OrdersChanged{cancelled.accountId, cancelled.id, false, reason, true});
    m_ledger.finish(trade, std::move(cancelled));
}

void TradeSteps::setBalance(LiveAccount& account, Cents balance, const IdSource& newId, std::string comment)
{
    Trade line;
    line.pnl = balance - account.record.balance;
    if (line.pnl == 0)
        return;
    line.id = newId();
    line.accountId = account.record.id;
    line.orderKind = OrderKind::Balance;
    line.status = TradeStatus::Closed;
    line.createdAt = line.updatedAt = line.closedAt = m_now;
    line.comment = std::move(comment);
    m_ledger.change(account).balance = balance;
    m_ledger.emit(OrdersChanged{line.accountId, line.id});
    m_ledger.addFinished(std::move(line));
}

void TradeSteps::closeEverything(LiveAccount& account, CloseReason reason)
{
    const std::vector<LiveTrade*> trades = account.trades; // closing takes them out of the list
    for (LiveTrade* trade : trades) {
        if (trade->record.status == TradeStatus::Open)
            closePosition(*trade, reason);
        else
            cancelOrder(*trade, reason);
    }
}

void TradeSteps::setStatus(LiveAccount& account, AccountStatus status)
{
    m_ledger.change(account).status = status;
    m_ledger.emit(AccountUpdated{account.record});
}

} // namespace practice
