#pragma once

#include "experts/ExpertCandles.h"

#include <QtGlobal>

#include <array>
#include <optional>

/// Sums over the closing prices of a run of candles. Scripts ask for the same runs at every tick, so the sums
/// are remembered, without the newest candle, for as long as no other changes: a tick then costs the same
/// for a long run as for a short one. The additions go from old to new in either case, and the result is
/// the same to the last bit.
class WindowSums final {
public:
    /// The sums of the differences from each close to the next: of those upwards and of those downwards, both
    /// positive.
    struct Moves {
        double gains = 0.0;
        double losses = 0.0;
    };

    /// `revision` changes whenever a candle other than the newest does; without one nothing is remembered.
    /// `first` and `last` are indices of candles, and so is `first - 1` for the moves.
    [[nodiscard]] double closes(
        const ExpertCandles& candles, std::optional<quint64> revision, std::size_t first, std::size_t last);
    [[nodiscard]] Moves moves(
        const ExpertCandles& candles, std::optional<quint64> revision, std::size_t first, std::size_t last);

private:
    enum class Kind { None, Closes, Moves };

    struct Entry {
        Kind kind = Kind::None;
        std::size_t first = 0;
        std::size_t end = 0; ///< after the last candle that was added
        Moves sums;          ///< of closes: in `gains` alone
    };

    template <Kind kind>
    Moves sum(
        const ExpertCandles& candles, std::optional<quint64> revision, std::size_t first, std::size_t last);
    template <Kind kind> static void add(Moves& sums, const ExpertCandles& candles, std::size_t index);

    std::array<Entry, 16> m_entries;
    std::size_t m_oldest = 0; ///< the entry that gives way next
    quint64 m_revision = 0;
};
