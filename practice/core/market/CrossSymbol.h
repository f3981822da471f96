#pragma once

#include "practice/core/SymbolCatalog.h"
#include "practice/core/market/SymbolPrices.h"

#include <cstdint>
#include <vector>

namespace practice {

/// A symbol without a path of its own: at every moment its mid is the product of its legs' mids, rounded to a
/// point. It has a spread of its own, which widens and narrows with theirs.
///
/// A bar's high and low are looked for where the legs' bars leave room for them, from the longest bars down
/// to single ticks. That is exact, and visits a few dozen bars however long the wanted one is.
class CrossSymbol final : public SymbolPrices {
public:
    /// Another symbol's prices, which outlive this one.
    struct Leg {
        SymbolPrices* prices = nullptr;
        const SymbolSpec* spec = nullptr; ///< read by the constructor only
        bool inverted = false;
    };

    /// `legs` holds at least one.
    CrossSymbol(const SymbolSpec& spec, const std::vector<Leg>& legs);

    [[nodiscard]] std::int64_t mid(TimeMs now) override;
    [[nodiscard]] std::int64_t halfSpread(TimeMs now) override;
    [[nodiscard]] std::int64_t widestHalfSpread() const override;
    [[nodiscard]] TimeMs nextChange(TimeMs now) override;
    [[nodiscard]] GridBar between(TimeMs from, TimeMs to) override;
    void appendTicks(TimeMs from, TimeMs to, std::vector<Tick>& ticks) override;
    [[nodiscard]] GridBar barUntil(Timeframe timeframe, TimeMs start, TimeMs now) override;
    [[nodiscard]] TimeMs firstMoment() const override { return m_first; }
    [[nodiscard]] TimeMs lastMoment() const override { return m_last; }

private:
    struct Source {
        SymbolPrices* prices;
        double pointsPerUnit;
        double usualHalfSpread;
        bool inverted;
    };
    // A stretch of time and what the legs' bars say about it.
    struct Stretch {
        TimeMs from;
        TimeMs to;
        std::int64_t open;
        std::int64_t close;
        std::int64_t highest; // no mid lies above it
        std::int64_t lowest;
        bool exact; // `highest` and `lowest` are reached by a mid
    };
    struct Known {
        GridBar bar;
        std::int64_t number = INT64_MIN;
    };

    template <typename PointsOf> [[nodiscard]] double price(const PointsOf& pointsOf) const;
    template <typename PointsOf> [[nodiscard]] std::int64_t combine(const PointsOf& pointsOf) const;
    template <typename HalfOf> [[nodiscard]] std::int64_t spreadFrom(const HalfOf& halfOf) const;
    [[nodiscard]] Stretch stretch(TimeMs from, TimeMs to);
    void search(const Stretch& whole, bool upwards, GridBar& found);
    void searchTicks(const Stretch& within, GridBar& found);

    std::vector<Source> m_legs;
    double m_pointsPerUnit;
    double m_usualHalfSpread;
    TimeMs m_first;
    TimeMs m_last;
    std::vector<GridBar> m_bars;            // of each leg, while a stretch is looked at
    std::vector<std::vector<Tick>> m_ticks; // of each leg, while they are searched
    std::vector<std::size_t> m_nextTick;
    std::vector<std::vector<Known>> m_known; // [timeframe]: finished bars, by their number
};

} // namespace practice
