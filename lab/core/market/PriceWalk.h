#pragma once

#include "lab/core/Moment.h"
#include "lab/core/RunSettings.h"
#include "lab/core/market/MinuteHistory.h"

#include <cstddef>
#include <vector>

namespace lab {

/// Distances of bid and ask from the mid in a minute: half of what the settings say, else as recorded, else
/// as usual for the symbol; at least 1 and below the mid.
[[nodiscard]] practice::HalfSpreads halfSpreadsIn(
    const MinuteView& minute, const MinuteHistory& history, const RunSettings& settings);

/// The prices of some minutes of a history, one moment after the other. Each minute's moments follow from
/// the history and the settings alone, whichever minute the walk begins with. Where a minute opens with
/// another spread than the one before has closed with, the prices jump.
///
/// Ohlc: open, both extremes and close at 0, 20, 40 and 59.999 seconds, even where some are equal. Open: the
/// same, and the script is called at the first moment of each bar of the chart only. Path: the open and each
/// change of price on practice::TickPath's way with a step each 200 ms. Feed: the price of that way every
/// 250 ms for the script, and for the broker alone what changes and changes again between two of those.
/// Each of the four prices has its own spread; along a path it is practice::halfSpreadAt.
class PriceWalk final {
public:
    /// The minutes firstMinute..endMinute without the last; `history` outlives this.
    PriceWalk(const MinuteHistory& history, const RunSettings& settings, std::size_t firstMinute,
        std::size_t endMinute);

    /// The next moment; false at the end.
    [[nodiscard]] bool next(Moment& moment)
    {
        if (m_next == m_moments.size() && !enterMinute())
            return false;
        moment = m_moments[m_next++];
        return true;
    }

private:
    [[nodiscard]] bool enterMinute();
    void addExtremes(const practice::GridBar& bar, const practice::HalfSpreads& spreads);
    void addPath(const practice::GridBar& bar, const practice::HalfSpreads& spreads);
    void add(practice::TimeMs offset, std::int64_t mid, std::int64_t halfSpread, bool forScript);

    const MinuteHistory& m_history;
    RunSettings m_settings;
    std::size_t m_minute; // the one that comes next
    std::size_t m_endMinute;
    std::uint64_t m_pathKey;
    Moment m_first;                // of the minute at hand
    std::vector<Moment> m_moments; // all of it
    std::size_t m_next = 0;
};

} // namespace lab
