#include "lab/core/account/EquityRecord.h"

#include <algorithm>
#include <utility>

namespace lab {

using practice::Cents;
using practice::TimeMs;

void DrawdownMeter::deepen(Cents value)
{
    const Cents fall = m_peak - value;
    m_deepest.money = std::max(m_deepest.money, fall);
    if (m_peak > 0)
        m_deepest.fraction
            = std::max(m_deepest.fraction, static_cast<double>(fall) / static_cast<double>(m_peak));
}

EquityRecord::EquityRecord(Cents balance)
    : m_balance(balance)
    , m_equity(balance)
{
    m_equityMeter.see(balance);
    m_balanceMeter.see(balance);
}

void EquityRecord::begin(TimeMs time)
{
    m_hasBegun = true;
    addPoint(time);
    beginDay(time, m_equity);
}

void EquityRecord::turnDay(TimeMs lastTime, TimeMs time, Cents firstEquity)
{
    endDay(lastTime);
    beginDay(time, firstEquity);
    seeEquity(firstEquity);
}

void EquityRecord::changeBalance(TimeMs time, Cents balance, Cents equity)
{
    m_balance = balance;
    m_balanceMeter.see(balance);
    seeEquity(equity);
    addPoint(time);
}

void EquityRecord::end(TimeMs lastTime)
{
    if (m_hasBegun)
        endDay(lastTime);
}

void EquityRecord::fill(RunResult& result)
{
    result.equity = std::move(m_points);
    result.days = std::move(m_days);
    result.equityDrawdown = m_equityMeter.deepest();
    result.balanceDrawdown = m_balanceMeter.deepest();
}

void EquityRecord::beginDay(TimeMs time, Cents firstEquity)
{
    const std::int64_t day = practice::floorDivide(time, practice::dayMs);
    m_dayEnd = (day + 1) * practice::dayMs;
    m_day = {static_cast<std::int32_t>(day), m_balance, firstEquity, firstEquity, firstEquity};
}

void EquityRecord::endDay(TimeMs lastTime)
{
    m_day.balance = m_balance;
    m_day.equity = m_equity;
    m_days.push_back(m_day);
    addPoint(lastTime);
}

// What is there already, as when the day's last price has changed the balance, is not written again.
void EquityRecord::addPoint(TimeMs time)
{
    if (!m_points.empty() && m_points.back().time == time && m_points.back().balance == m_balance
        && m_points.back().equity == m_equity)
        return;
    m_points.push_back({time, m_balance, m_equity});
}

} // namespace lab
