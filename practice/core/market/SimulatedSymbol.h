#pragma once

#include "practice/core/SymbolCatalog.h"
#include "practice/core/market/BarTree.h"
#include "practice/core/market/SymbolPrices.h"
#include "practice/core/market/TickPath.h"

#include <cstdint>
#include <memory>

namespace practice {

/// One symbol whose prices are a pure function of seed, speed, the symbol's name and time.
class SimulatedSymbol final : public SymbolPrices {
public:
    SimulatedSymbol(const SymbolSpec& spec, std::uint64_t seed, double speed);

    [[nodiscard]] std::int64_t mid(TimeMs now) override;
    [[nodiscard]] std::int64_t halfSpread(TimeMs now) override;
    [[nodiscard]] std::int64_t widestHalfSpread() const override;
    [[nodiscard]] TimeMs nextChange(TimeMs now) override;
    [[nodiscard]] GridBar between(TimeMs from, TimeMs to) override;
    void appendTicks(TimeMs from, TimeMs to, std::vector<Tick>& ticks) override;
    [[nodiscard]] GridBar barUntil(Timeframe timeframe, TimeMs start, TimeMs now) override;
    [[nodiscard]] TimeMs firstMoment() const override { return DayWalk::firstDay * dayMs; }
    [[nodiscard]] TimeMs lastMoment() const override { return (DayWalk::lastDay + 1) * dayMs - 1; }

    /// Milliseconds between two possible price changes: 200 at speed 1 and below, down to 50.
    [[nodiscard]] static TimeMs tickLength(double speed);

private:
    void enterMinute(std::int64_t minute);
    [[nodiscard]] std::size_t stepAt(TimeMs now) const;
    [[nodiscard]] TimeMs stepStart(std::size_t step) const;

    std::uint64_t m_key;
    TimeMs m_tickLength;
    TimeMs m_phase; // keeps the symbols from all moving in the same instant
    double m_usualHalfSpread;
    double m_usualMinuteDeviation;
    BarTree m_tree;

    std::int64_t m_minute = INT64_MIN; // the minute that m_path describes
    TickPath m_path;
    double m_restlessness = 1; // of that minute, relative to a usual one
    // What halfSpread() has said last, of the tick that began then; who searches asks again and again.
    TimeMs m_spreadSince = INT64_MIN;
    std::int64_t m_halfSpread = 0;
    // Between which two moods of the spread that was.
    std::int64_t m_knotNumber = INT64_MIN;
    double m_knot = 0;
    double m_nextKnot = 0;
};

} // namespace practice
