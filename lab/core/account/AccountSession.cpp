#include "lab/core/account/AccountSession.h"

#include "lab/core/market/PriceWalk.h"
#include "practice/core/broker/PriceGrid.h"
#include "practice/core/broker/RiskRules.h"
#include "practice/core/broker/Valuation.h"
#include "practice/core/market/HashRandom.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <limits>
#include <span>
#include <stdexcept>
#include <utility>

namespace lab {
namespace {

using practice::Cents;
using practice::CloseReason;
using practice::Side;
using practice::TimeMs;

constexpr std::size_t traded = 0; // place of the traded symbol

const char* const accountId = "lab";

// What the fingerprint of the decisions is made of.
enum Decision : std::uint64_t { Opened = 1, Refused, Closed };

practice::IdSource countedIds()
{
    return [last = 0]() mutable { return std::to_string(++last); };
}

// The day of one that begins is that of the first price that the broker sees.
practice::BrokerState stateFor(const RunSettings& settings)
{
    practice::Account account;
    account.id = accountId;
    account.balance = account.initialBalance = account.dayStartEquity = settings.balance;
    account.leverage = settings.leverage;
    if (settings.rules == AccountRules::Plan) {
        account.kind = practice::AccountKind::Plan;
        account.plan = {"Lab", 1}; // one phase: whoever reaches its target has passed
    }
    if (settings.course) {
        account.initialBalance = settings.course->initialBalance;
        account.dayStartEquity = settings.course->dayStartEquity;
        account.dayIndex = settings.course->dayIndex;
    }
    return {{account}, {}};
}

TimeMs timeBetween(TimeMs from, TimeMs to, double share)
{
    if (to - from < 2)
        return to;
    return std::clamp<TimeMs>(from + std::llround(share * static_cast<double>(to - from)), from + 1, to - 1);
}

std::optional<double> wantedLevel(double level)
{
    return level > 0 && std::isfinite(level) ? std::optional(level) : std::nullopt;
}

// There are many NaN and two zeros, which scripts do not tell apart.
std::uint64_t bitsOf(double number)
{
    if (std::isnan(number))
        return std::bit_cast<std::uint64_t>(std::numeric_limits<double>::quiet_NaN());
    return std::bit_cast<std::uint64_t>(number + 0.0);
}

std::uint64_t bitsOf(std::int64_t number)
{
    return static_cast<std::uint64_t>(number);
}

ExitReason exitReason(CloseReason reason, bool isEnding)
{
    switch (reason) {
    case CloseReason::StopLoss:
        return ExitReason::StopLoss;
    case CloseReason::TakeProfit:
        return ExitReason::TakeProfit;
    case CloseReason::StopOut:
    case CloseReason::NoMargin:
        return ExitReason::Margin;
    case CloseReason::Risk:
        return ExitReason::Rule;
    case CloseReason::None:
    case CloseReason::Manual:
    case CloseReason::Phase:
    case CloseReason::Reset:
        break;
    }
    return isEnding ? ExitReason::End : ExitReason::Script;
}

} // namespace

AccountSession::AccountSession(
    const RunSettings& settings, const std::vector<const MinuteHistory*>& histories)
    : m_settings(settings)
    , m_history(*histories.at(traded))
    , m_broker(specsOf(histories), countedIds(), stateFor(settings))
    , m_account(*m_broker.account(accountId))
    , m_rates(histories)
    , m_positions(m_history.spec)
    , m_record(settings.balance)
{
    takeView();
}

void AccountSession::advance(const Moment& moment)
{
    goTo(moment);
    if (!m_waiting.empty())
        carryOutDue();
    takeView();
}

void AccountSession::goTo(const Moment& moment)
{
    const bool isFirst = !m_record.hasBegun();
    const PointQuote quote = quoteAt(moment);
    m_withinMinute = !isFirst && moment.minute == m_moment.minute;
    m_moment = moment;
    if (isFirst)
        m_record.begin(moment.time);
    // What is crossed on the way is reached at its end.
    else if (!moment.afterGap && m_positions.reaches(quote))
        stopAtLevels({m_quote, quote}, moment.time);
    see(quote, moment.time);
}

void AccountSession::stopAtLevels(const PriceWay& way, TimeMs end)
{
    const TimeMs start = m_time;
    double share = 0;
    while (const std::optional<LevelCrossing> crossing = nextCrossing(m_positions.all(), way, share)) {
        share = crossing->share;
        see(crossing->quote, timeBetween(start, end, share));
    }
}

void AccountSession::see(const PointQuote& quote, TimeMs time)
{
    const TimeMs lastTime = std::exchange(m_time, time);
    m_quote = quote;
    m_brokerIsBehind = true;
    const bool isNewDay = m_record.isNewDay(time);
    if (m_positions.empty() && !isNewDay)
        return;
    valuePositions();
    if (isNewDay) {
        const practice::ChangeSet changes = showBroker();
        m_record.turnDay(lastTime, time, m_broker.account(accountId)->dayStartEquity);
        take(changes);
        return;
    }
    m_record.seeEquity(equity());
    if (m_positions.reaches(quote) || limitReached(equity()))
        take(showBroker());
}

void AccountSession::valuePositions()
{
    if (m_positions.empty())
        return;
    m_rates.moveTo(m_time);
    if (const std::optional<practice::Rate> rate = m_rates.rate(m_quote))
        m_positions.value(m_quote, *rate);
}

bool AccountSession::limitReached(Cents equity) const
{
    return practice::stopOutReached(equity, m_margin) || practice::dailyLossReached(m_account, equity)
        || practice::totalLossReached(m_account, equity);
}

practice::ChangeSet AccountSession::showBroker()
{
    m_rates.moveTo(m_time);
    std::array<practice::SymbolQuote, 2> quotes;
    std::size_t count = 0;
    if (const std::optional<practice::SymbolQuote> pair = m_rates.pairQuote())
        quotes[count++] = *pair;
    quotes[count++] = {traded, m_quote.toPrices(m_history.spec.digits)};
    m_brokerIsBehind = false;
    return m_broker.onPrices(std::span(quotes).first(count), m_time);
}

void AccountSession::beUpToDate()
{
    if (m_brokerIsBehind)
        take(showBroker());
}

void AccountSession::order(Side side, double lots, double stopLoss, double takeProfit)
{
    const Order order{side, lots, stopLoss, takeProfit};
    if (m_settings.delayMs <= 0)
        place(order);
    else if (m_waiting.size() >= mostWaiting)
        refuse(order, "Too many orders wait to be carried out.");
    else
        m_waiting.push_back({m_time + m_settings.delayMs, order, 0});
}

void AccountSession::closeAll()
{
    if (m_settings.delayMs <= 0) {
        closeUpTo(m_ticketSeen);
        return;
    }
    // A second request for the same positions would find them closed.
    if (m_view.positions == 0 || m_ticketSeen <= m_closingUpTo)
        return;
    m_closingUpTo = m_ticketSeen;
    m_waiting.push_back({m_time + m_settings.delayMs, {}, m_ticketSeen});
}

void AccountSession::noteRefusal(Side side, double lots, double stopLoss, double takeProfit)
{
    ++m_refusals;
    print({Decision::Refused, bitsOf(m_time), static_cast<std::uint64_t>(side), bitsOf(lots),
        bitsOf(stopLoss), bitsOf(takeProfit)});
}

void AccountSession::carryOutDue()
{
    while (!m_waiting.empty() && m_waiting.front().due <= m_time) {
        const Waiting next = m_waiting.front();
        m_waiting.pop_front();
        if (next.closeUpTo == 0)
            place(next.order);
        else
            closeUpTo(next.closeUpTo);
    }
}

void AccountSession::place(const Order& order)
{
    beUpToDate();
    practice::PlaceRequest request;
    request.accountId = accountId;
    request.symbol = m_history.spec.name;
    request.orderKind = "MARKET";
    request.type = order.side == Side::Buy ? "BUY" : "SELL";
    request.lots = order.lots;
    request.stopLoss = wantedLevel(order.stopLoss);
    request.takeProfit = wantedLevel(order.takeProfit);
    const practice::CommandResult result = m_broker.place(request, m_time);
    if (result.refusal) {
        refuse(order, result.refusal->message);
        return;
    }
    const practice::Trade& trade = *m_broker.trade(result.tradeId);
    open(trade);
    print({Decision::Opened, bitsOf(m_time), static_cast<std::uint64_t>(order.side), bitsOf(order.lots),
        bitsOf(order.stopLoss), bitsOf(order.takeProfit), bitsOf(trade.entryPrice)});
    take(result.changes);
}

void AccountSession::refuse(const Order& order, const std::string& reason)
{
    noteRefusal(order.side, order.lots, order.stopLoss, order.takeProfit);
    if (m_refusalSink)
        m_refusalSink(reason);
}

void AccountSession::open(const practice::Trade& trade)
{
    const int digits = m_history.spec.digits;
    Position position;
    position.trade = trade;
    position.ticket = ++m_ticket;
    position.stopLoss = practice::toPoints(trade.stopLoss, digits);
    position.takeProfit = practice::toPoints(trade.takeProfit, digits);
    position.spreadCost = halfSpreadCost(trade.lots);
    if (m_positions.empty())
        m_exposedSince = m_time;
    m_positions.add(std::move(position));
    valuePositions();
}

void AccountSession::closeUpTo(int ticket)
{
    if (ticket >= m_closingUpTo)
        m_closingUpTo = 0;
    beUpToDate();
    std::vector<std::string> ids;
    for (const Position& position : m_positions.all()) {
        if (position.ticket <= ticket)
            ids.push_back(position.trade.id);
    }
    for (const std::string& id : ids)
        take(m_broker.close(id, m_time).changes);
}

void AccountSession::take(const practice::ChangeSet& changes)
{
    if (changes.empty())
        return;
    for (const practice::Trade& trade : changes.trades) {
        if (trade.orderKind == practice::OrderKind::Balance)
            m_writtenOff += trade.pnl;
        else if (trade.status == practice::TradeStatus::Closed)
            book(trade);
        else
            m_positions.setSwap(trade.id, trade.swap);
    }
    const Cents balanceBefore = m_account.balance;
    m_account = *m_broker.account(accountId);
    m_margin = m_broker.figures(accountId).margin;
    if (m_account.balance != balanceBefore)
        m_record.changeBalance(m_time, m_account.balance, equity());
    else
        m_record.seeEquity(equity());
    noteOutcome();
}

void AccountSession::book(const practice::Trade& closed)
{
    const std::optional<Position> position = m_positions.take(closed.id);
    TradeRow row;
    row.profit = closed.pnl - closed.swap + closed.commission;
    if (!position || position->profit != row.profit)
        throw std::logic_error("A position was closed at another price than the lab has seen.");
    row.ticket = position->ticket;
    row.side = closed.side;
    row.lots = closed.lots;
    row.openTime = closed.createdAt;
    row.openPrice = closed.entryPrice;
    row.closeTime = closed.closedAt;
    row.closePrice = closed.exitPrice;
    row.stopLoss = closed.stopLoss;
    row.takeProfit = closed.takeProfit;
    row.commission = closed.commission;
    row.swap = closed.swap;
    row.reason = exitReason(closed.closeReason, m_isEnding);
    row.worst = position->worst;
    row.best = position->best;
    row.spreadCost = position->spreadCost + halfSpreadCost(closed.lots);
    if (isAmbiguous(*position, row.reason)) {
        row.ambiguous = true;
        const double other = row.reason == ExitReason::StopLoss ? row.takeProfit : row.stopLoss;
        row.otherProfit = practice::grossProfit(
            m_history.spec, row.side, row.lots, row.openPrice, other, *m_rates.rate(m_quote));
    }
    if (row.reason == ExitReason::Script)
        print({Decision::Closed, bitsOf(m_time), bitsOf(std::int64_t{row.ticket}), bitsOf(row.closePrice)});
    m_trades.push_back(row);
    if (m_positions.empty())
        m_exposedMs += m_time - m_exposedSince;
}

// The first price of a minute comes before all others of it, that much is known. Whether both levels were
// within reach after a position had been opened in the same minute is not: it is taken to be so.
bool AccountSession::isAmbiguous(const Position& position, ExitReason reason) const
{
    if (reason != ExitReason::StopLoss && reason != ExitReason::TakeProfit)
        return false;
    if (!m_withinMinute || position.stopLoss == 0 || position.takeProfit == 0)
        return false;
    const MinuteView minute = m_history.at(m_moment.minute);
    const practice::HalfSpreads spreads = halfSpreadsIn(minute, m_history, m_settings);
    const std::int64_t toSide = position.trade.side == Side::Buy ? -1 : 1;
    const auto [below, above] = std::minmax(position.stopLoss, position.takeProfit);
    return minute.bar.low + toSide * spreads.low <= below && above <= minute.bar.high + toSide * spreads.high;
}

Cents AccountSession::halfSpreadCost(practice::LotHundredths lots) const
{
    std::optional<practice::Rate> rate = m_rates.rate(m_quote);
    if (!rate)
        return 0;
    rate->under *= 2;
    const practice::Quote prices = m_quote.toPrices(m_history.spec.digits);
    return practice::grossProfit(m_history.spec, Side::Buy, lots, prices.bid, prices.ask, *rate);
}

// An account that has lost too much in both ways has failed for good.
void AccountSession::noteOutcome()
{
    const bool counts = !m_isEnding || m_settings.goesOn;
    if (m_outcome != PlanOutcome::None || !counts || m_account.status == practice::AccountStatus::Active)
        return;
    if (m_account.status == practice::AccountStatus::Passed)
        m_outcome = PlanOutcome::Passed;
    else if (practice::totalLossReached(m_account, equity()))
        m_outcome = PlanOutcome::TotalLoss;
    else
        m_outcome = PlanOutcome::DailyLoss;
    m_outcomeTime = m_time;
}

void AccountSession::print(std::initializer_list<std::uint64_t> decision)
{
    m_decisionPrint = practice::hashKey({m_decisionPrint, practice::hashKey(decision)});
}

void AccountSession::takeView()
{
    const practice::Quote prices = m_quote.toPrices(m_history.spec.digits);
    m_view
        = {m_account.balance, equity(), static_cast<int>(m_positions.all().size()), prices.bid, prices.ask};
    m_ticketSeen = m_ticket;
}

void AccountSession::finish(RunResult& result)
{
    m_isEnding = true;
    m_waiting.clear();
    closeUpTo(m_ticket);
    if (m_account.balance < 0)
        take(showBroker()); // which writes it off
    m_record.end(m_time);
    m_record.fill(result);
    Cents total = m_settings.balance + m_writtenOff;
    for (const TradeRow& row : m_trades)
        total += row.net();
    if (total != m_account.balance)
        throw std::logic_error("The trades do not add up to the balance.");
    result.startBalance = m_settings.balance;
    const practice::Account& account = *m_broker.account(accountId);
    result.course = {account.initialBalance, account.dayStartEquity, account.dayIndex};
    result.trades = std::move(m_trades);
    result.exposedMs = m_exposedMs;
    result.refusals = m_refusals;
    result.outcome = m_outcome;
    result.outcomeTime = m_outcomeTime;
    result.decisionPrint = m_decisionPrint;
    if (m_writtenOff != 0) {
        result.warnings.push_back("The loss beyond the balance was written off: "
            + practice::moneyText(m_writtenOff) + " USD that no trade accounts for.");
    }
}

} // namespace lab
