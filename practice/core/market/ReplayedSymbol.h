#pragma once

#include "practice/core/SymbolCatalog.h"
#include "practice/core/market/ReplayLoop.h"
#include "practice/core/market/SimulatedSymbol.h"
#include "practice/core/market/SymbolPrices.h"
#include "practice/core/market/TickPath.h"

#include <memory>

namespace practice {

/// One symbol that plays recorded minutes from a given moment on. What lies before that moment is
/// simulated and scaled so that it ends where the record begins.
class ReplayedSymbol final : public SymbolPrices {
public:
    /// The record begins to play at `playFrom` (moved back to a whole minute), `speed` recorded minutes in
    /// each minute. `spec` describes the simulated past.
    ReplayedSymbol(
        const SymbolSpec& spec, MinuteTable minutes, TimeMs playFrom, double speed, std::uint64_t seed);

    [[nodiscard]] std::int64_t mid(TimeMs now) override;
    [[nodiscard]] std::int64_t halfSpread(TimeMs now) override;
    [[nodiscard]] std::int64_t widestHalfSpread() const override { return m_widestHalfSpread; }
    [[nodiscard]] TimeMs nextChange(TimeMs now) override;
    [[nodiscard]] GridBar between(TimeMs from, TimeMs to) override;
    void appendTicks(TimeMs from, TimeMs to, std::vector<Tick>& ticks) override;
    [[nodiscard]] GridBar barUntil(Timeframe timeframe, TimeMs start, TimeMs now) override;
    [[nodiscard]] TimeMs firstMoment() const override { return m_past.firstMoment(); }
    [[nodiscard]] TimeMs lastMoment() const override { return m_past.lastMoment(); }

private:
    // A place in the endless record.
    struct Place {
        std::int64_t minute;
        std::size_t step;
        friend bool operator==(const Place&, const Place&) = default;
    };

    [[nodiscard]] std::int64_t positionAt(TimeMs now) const;
    [[nodiscard]] Place placeOf(std::int64_t position) const;
    [[nodiscard]] std::int64_t volumeUntil(std::int64_t position) const;
    [[nodiscard]] GridBar steps(std::int64_t minute, std::size_t first, std::size_t last);
    [[nodiscard]] GridBar played(std::int64_t from, std::int64_t to);
    [[nodiscard]] std::int64_t scaled(std::int64_t pastPoints) const;
    [[nodiscard]] const TickPath& pathOf(std::int64_t minute);

    SimulatedSymbol m_past;
    std::int64_t m_widestHalfSpread;
    ReplayLoop m_loop;
    TimeMs m_playFrom;
    double m_speed;
    std::uint64_t m_key;
    std::size_t m_steps; // in a recorded minute
    double m_phase;      // of a step, keeps the symbols from all moving in the same instant
    double m_scale = 1;
    std::int64_t m_pathMinute = -1;
    TickPath m_path;
};

} // namespace practice
