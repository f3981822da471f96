#include "practice/core/market/HalfSpreads.h"

#include <cmath>

namespace practice {

std::int64_t halfSpreadAt(
    const GridBar& bar, const HalfSpreads& spreads, const TickPath& path, std::size_t step)
{
    if (step == 0)
        return spreads.open;
    if (step + 1 >= path.steps())
        return spreads.close;
    if (spreads.high == spreads.low || bar.high == bar.low)
        return std::max(spreads.high, spreads.low);
    // Rounded up: neither side is better than it would be.
    const double way = static_cast<double>(path.mid(step) - bar.low);
    const double change = static_cast<double>(spreads.high - spreads.low);
    return spreads.low + std::llround(std::ceil(way * change / static_cast<double>(bar.high - bar.low)));
}

} // namespace practice
