#include "practice/core/broker/AccountGuard.h"

#include "practice/core/broker/RiskRules.h"
#include "practice/core/broker/Valuation.h"

#include <algorithm>

namespace practice {
namespace {

bool isOpen(const LiveTrade* trade)
{
    return trade->record.status == TradeStatus::Open;
}

void chargeSwap(TradeDesk& desk, LiveTrade& position, std::int64_t lastDay, std::int64_t today)
{
    const std::optional<Rate> rate = desk.prices().usdRate(position.symbol);
    const std::int64_t nights = today - std::max(lastDay, floorDivide(position.record.createdAt, dayMs));
    if (!rate || nights <= 0)
        return;
    const SymbolSpec& spec = desk.prices().symbols()[position.symbol];
    const Cents charge = swapPerNight(spec, position.record.side, position.record.lots, *rate) * nights;
    if (charge == 0)
        return;
    Trade& record = desk.ledger().change(position);
    record.swap += charge;
    record.updatedAt = desk.now();
    desk.ledger().revalue(position, record.pnl + charge);
}

LiveTrade* largestLoser(const LiveAccount& account, const PriceBoard& prices)
{
    LiveTrade* worst = nullptr;
    for (LiveTrade* trade : account.trades) {
        if (isOpen(trade) && prices.netProfit(trade->record, trade->symbol)
            && (!worst || trade->record.pnl < worst->record.pnl))
            worst = trade;
    }
    return worst;
}

} // namespace

void rollDay(TradeDesk& desk, LiveAccount& account)
{
    const std::int64_t today = floorDivide(desk.now(), dayMs);
    const std::int64_t lastDay = account.record.dayIndex;
    if (today < lastDay && std::none_of(account.trades.begin(), account.trades.end(), isOpen)) {
        Account& record = desk.ledger().change(account);
        record.dayIndex = today;
        record.dayStartEquity = account.equity();
    }
    if (today <= lastDay)
        return;
    for (LiveTrade* trade : account.trades) {
        if (isOpen(trade))
            chargeSwap(desk, *trade, lastDay, today);
    }
    Account& record = desk.ledger().change(account);
    record.dayIndex = today;
    record.dayStartEquity = account.equity();
}

void enforceLossLimits(TradeDesk& desk, LiveAccount& account)
{
    if (account.record.kind != AccountKind::Plan)
        return;
    if (account.record.status != AccountStatus::Active) {
        if (!account.trades.empty())
            desk.closeEverything(account, CloseReason::Risk);
        return;
    }
    if (!dailyLossReached(account.record, account.equity())
        && !totalLossReached(account.record, account.equity()))
        return;
    desk.closeEverything(account, CloseReason::Risk);
    desk.setStatus(account, AccountStatus::Failed);
}

void enforceStopOut(TradeDesk& desk, LiveAccount& account)
{
    while (stopOutReached(account.equity(), account.margin)) {
        LiveTrade* worst = largestLoser(account, desk.prices());
        if (!worst || !desk.closePosition(*worst, CloseReason::StopOut))
            return;
    }
}

void advancePhase(TradeDesk& desk, LiveAccount& account)
{
    if (!targetReached(account.record) || std::any_of(account.trades.begin(), account.trades.end(), isOpen))
        return;
    desk.closeEverything(account, CloseReason::Phase);
    if (account.record.phase >= account.record.plan.steps) {
        desk.setStatus(account, AccountStatus::Passed);
        return;
    }
    Account& record = desk.ledger().change(account);
    record.phase += 1;
    record.balance = record.dayStartEquity = record.initialBalance;
    desk.ledger().emit(AccountUpdated{record});
}

void clearDebt(TradeDesk& desk, LiveAccount& account, const IdSource& newId)
{
    if (account.record.balance < 0 && std::none_of(account.trades.begin(), account.trades.end(), isOpen))
        desk.setBalance(account, 0, newId, "The loss beyond the balance is written off.");
}

void startAnew(TradeDesk& desk, LiveAccount& account, const IdSource& newId)
{
    const std::vector<LiveTrade*> trades = account.trades; // cancelling takes them out of the list
    for (LiveTrade* trade : trades)
        desk.voidTrade(*trade, CloseReason::Reset);
    desk.setBalance(account, account.record.initialBalance, newId, "The account begins anew.");
    Account& record = desk.ledger().change(account);
    if (!record.isFunded)
        record.phase = 1;
    record.status = AccountStatus::Active;
    record.dayStartEquity = record.balance;
    record.dayIndex = floorDivide(desk.now(), dayMs);
    desk.ledger().emit(AccountUpdated{record});
}

} // namespace practice
