#pragma once

#include "practice/core/broker/Broker.h"
#include "practice/core/market/PriceSource.h"

#include <functional>
#include <span>
#include <vector>

namespace practice {

/// Shows a broker every price between two moments, in the order of time, as if somebody had watched each
/// tick. A stretch whose prices reach no level and no limit is passed over whole; any other is looked at in
/// ever shorter parts, and in the end tick by tick. So a day is played exactly, and in almost no time.
/// Midnights are always shown, because the day turns there.
class PathPlayer final {
public:
    /// Hands prices over; true when they caused anything. An exception ends the playing.
    using Step = std::function<bool(std::span<const SymbolQuote> quotes, TimeMs now)>;

    PathPlayer(PriceSource& market, const Broker& broker, Step step);

    /// The moments after `from`, up to and including `to`.
    void play(TimeMs from, TimeMs to);

private:
    void playWithinDay(TimeMs first, TimeMs last);
    void playTicks(TimeMs first, TimeMs last);
    [[nodiscard]] bool isQuiet(TimeMs first, TimeMs last);
    bool showAll(TimeMs now);

    PriceSource& m_market;
    const Broker& m_broker;
    Step m_step;
};

} // namespace practice
