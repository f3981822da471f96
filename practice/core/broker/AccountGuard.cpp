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

void chargeSwap(TradeSteps& steps, LiveTrade& position, std::int64_t lastDay, std::int64_t today)
{
    const std::optional<Rate> rate = steps.prices().usdRate(position.symbol);
    const std::int64_t nights = today - std::max(lastDay, floorDivide(position.record.createdAt, dayMs));
    if (!rate || nights <= 0)
        return;
    const SymbolSpec& spec = steps.prices().symbols()[position.symbol];
    const Cents charge = swapPerNight(spec, position.record.side, position.record.lots, *rate) * nights;
    if (charge == 0)
        return;
    Trade& record = steps.ledger().change(position);
    record.swap += charge;
    record.updatedAt = steps.now();
    steps.ledger().revalue(position, record.pnl + charge);
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

void rollDay(TradeSteps& steps, LiveAccount& account)
{
    const std::int64_t today = floorDivide(steps.now(), dayMs);
    const std::int64_t lastDay = account.record.dayIndex;
    if (today < lastDay && std::none_of(account.trades.begin(), account.trades.end(), isOpen)) {
        Account& record = steps.ledger().change(account);
        record.dayIndex = today;
        record.dayStartEquity = account.equity();
    }
    if (today <= lastDay)
        return;
    for (LiveTrade* trade : account.trades) {
        if (isOpen(trade))
            chargeSwap(steps, *trade, lastDay, today);
    }
    Account& record = steps.ledger().change(account);
    record.dayIndex = today;
    record.dayStartEquity = account.equity();
}

void enforceLossLimits(TradeSteps& steps, LiveAccount& account)
{
    if (account.record.kind != AccountKind::Plan)
        return;
    if (account.record.status != AccountStatus::Active) {
        if (!account.trades.empty())
            steps.closeEverything(account, CloseReason::Risk);
        return;
    }
    if (!dailyLossReached(account.record, account.equity())
        && !totalLossReached(account.record, account.equity()))
        return;
    steps.closeEverything(account, CloseReason::Risk);
    steps.setStatus(account, AccountStatus::Failed);
}

void enforceStopOut(TradeSteps& steps, LiveAccount& account)
{
    while (stopOutReached(account.equity(), account.margin)) {
        LiveTrade* worst = largestLoser(account, steps.prices());
        if (!worst || !steps.closePosition(*worst, CloseReason::StopOut))
            return;
    }
}

void advancePhase(TradeSteps& steps, LiveAccount& account)
{
    if (!targetReached(account.record) || std::any_of(account.trades.begin(), account.trades.end(), isOpen))
        return;
    steps.closeEverything(account, CloseReason::Phase);
    if (account.record.phase >= account.record.plan.steps) {
        steps.setStatus(account, AccountStatus::Passed);
        return;
    }
    Account& record = steps.ledger().change(account);
    record.phase += 1;
    record.balance = record.dayStartEquity = record.initialBalance;
    steps.ledger().emit(AccountUpdated{record});
}

void clearDebt(TradeSteps& steps, LiveAccount& account, const IdSource& newId)
{
    if (account.record.balance < 0 && std::none_of(account.trades.begin(), account.trades.end(), isOpen))
        steps.setBalance(account, 0, newId, "The loss beyond the balance is written off.");
}

void startAnew(TradeSteps& steps, LiveAccount& account, const IdSource& newId)
{
    const std::vector<LiveTrade*> trades = account.trades; // cancelling takes them out of the list
    for (LiveTrade* trade : trades)
        steps.voidTrade(*trade, CloseReason::Reset);
    steps.setBalance(account, account.record.initialBalance, newId, "The account begins anew.");
    Account& record = steps.ledger().change(account);
    if (!record.isFunded)
        record.phase = 1;
    record.status = AccountStatus::Active;
    record.dayStartEquity = record.balance;
    record.dayIndex = floorDivide(steps.now(), dayMs);
    steps.ledger().emit(AccountUpdated{record});
}

} // namespace practice
