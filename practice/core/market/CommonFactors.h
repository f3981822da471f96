#pragma once

#include "practice/core/SymbolCatalog.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace practice {

/// The part of a symbol's random steps that it shares with other symbols: what happens to the dollar, to the
/// appetite for risk and to coins moves many prices at once. At the same place in time all symbols get the
/// same events; each takes as much of them as its shares say, and its own random numbers add the rest.
class CommonFactors final {
public:
    /// Nothing in common with anybody.
    CommonFactors() = default;

    CommonFactors(std::uint64_t seed, const FactorShares& shares);

    /// Fills `steps` with the common part of steps at this place, each of the variance 1 - ownWeight()^2.
    void draw(std::uint64_t kind, std::int64_t number, std::span<double> steps) const;
    [[nodiscard]] double draw(std::uint64_t kind, std::int64_t number) const;

    /// The same events, of which everybody takes this share.
    [[nodiscard]] CommonFactors sharedAlike(double share) const { return {m_seed, {share, 0, 0}}; }

    /// The factor of the symbol's own standard normal number in a step.
    [[nodiscard]] double ownWeight() const { return m_ownWeight; }

private:
    std::uint64_t m_seed = 0;
    FactorShares m_shares;
    double m_ownWeight = 1;
};

} // namespace practice
