#pragma once

#include "lab/core/RunResult.h"

#include <optional>
#include <vector>

namespace lab {

/// Measures how far a curve has fallen from its highest value so far; the deepest fall in money and that as a
/// fraction of the peak need not be the same one.
class DrawdownMeter final {
public:
    void see(practice::Cents value)
    {
        if (value >= m_peak)
            m_peak = value;
        else if (m_peak - value > m_deepest.money)
            deepen(value);
    }
    [[nodiscard]] const Drawdown& deepest() const { return m_deepest; }

private:
    void deepen(practice::Cents value);

    practice::Cents m_peak = 0;
    Drawdown m_deepest;
};

/// The course of an account: the points of its curve, its days, its drawdowns.
class EquityRecord final {
public:
    explicit EquityRecord(practice::Cents balance);

    /// The first price comes at this moment.
    void begin(practice::TimeMs time);
    /// Whether this moment lies beyond the day at hand.
    [[nodiscard]] bool isNewDay(practice::TimeMs time) const { return time >= m_dayEnd; }
    /// The day at hand had its last price at `lastTime`; `time` lies in the next that has any, which begins
    /// with this equity.
    void turnDay(practice::TimeMs lastTime, practice::TimeMs time, practice::Cents firstEquity);

    /// The equity at a price.
    void seeEquity(practice::Cents equity)
    {
        m_equity = equity;
        m_equityMeter.see(equity);
        if (equity < m_day.lowestEquity)
            m_day.lowestEquity = equity;
    }
    void changeBalance(practice::TimeMs time, practice::Cents balance, practice::Cents equity);

    /// The run is over; `lastTime` is that of its last price.
    void end(practice::TimeMs lastTime);

    [[nodiscard]] bool hasBegun() const { return m_hasBegun; }
    /// Hands over what it has; to be called once, last.
    void fill(RunResult& result);

private:
    void beginDay(practice::TimeMs time, practice::Cents firstEquity);
    void endDay(practice::TimeMs lastTime);
    void addPoint(practice::TimeMs time);

    bool m_hasBegun = false;
    practice::Cents m_balance;
    practice::Cents m_equity;
    practice::TimeMs m_dayEnd = 0;
    DayRow m_day;
    DrawdownMeter m_equityMeter;
    DrawdownMeter m_balanceMeter;
    std::vector<EquityPoint> m_points;
    std::vector<DayRow> m_days;
};

} // namespace lab
