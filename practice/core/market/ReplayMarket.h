#pragma once

#include "practice/core/market/MinuteFile.h"
#include "practice/core/market/SimulatedMarket.h"

#include <cstdint>
#include <filesystem>

namespace practice {

/// A market that plays recorded minutes: every file SYMBOL-1m.csv of a folder (SYMBOL made of letters,
/// digits, '.' and '_'; format: readMinuteFile) becomes a symbol; the built-in symbols without a file are
/// simulated.
///
/// The recorded minutes lie end to end: nights and weekends without a record are skipped, so the market never
/// stands still, and a price may leap where the record leaps over such a hole. Two fifths of them lie before
/// `startedAt`, the rest plays on from there, then the record runs backwards, forwards and so on without end.
/// Older bars are simulated in the record's own volatility and end where it begins. Symbols missing from the
/// built-in list are quoted and settled in the currency their name ends with, if that can be turned into USD.
/// Cross rates without a record follow their legs, recorded or not. From a recorded cross rate follows that
/// of its legs which has no record, or the later one in the list if neither has.
class ReplayMarket final : public SymbolMarket {
public:
    /// `startedAt` is the moment of the very first start: keep it and pass it again, and a restart finds
    /// the same past and future. `speed` is clamped to 0.1 .. 1000. Throws MarketDataError.
    ReplayMarket(
        const std::filesystem::path& folder, TimeMs startedAt, double speed = 1, std::uint64_t seed = 1);

    /// A digest of every recorded symbol's name, decimals, prices, spreads and volumes. Line ends, byte-order
    /// marks and blank lines of a file make no difference.
    [[nodiscard]] std::uint64_t digest() const { return m_digest; }

private:
    std::uint64_t m_digest = 0;
};

} // namespace practice
