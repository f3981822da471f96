#include "lab/core/account/LevelCrossing.h"

#include <array>
#include <cmath>
#include <cstdint>

namespace lab {
namespace {

// How far along the way this side stands on the level.
std::optional<double> shareAt(std::int64_t from, std::int64_t to, std::int64_t level)
{
    const bool crossed = from < to ? from < level && level < to : to < level && level < from;
    if (!crossed)
        return std::nullopt;
    return static_cast<double>(level - from) / static_cast<double>(to - from);
}

// Never beyond a level of that side that is not yet reached there, since levels are whole points too.
std::int64_t pointsAt(std::int64_t from, std::int64_t to, double share)
{
    return from + std::llround(share * static_cast<double>(to - from));
}

} // namespace

std::optional<LevelCrossing> nextCrossing(
    const std::vector<Position>& positions, const PriceWay& way, double after)
{
    std::optional<LevelCrossing> next;
    for (const Position& position : positions) {
        const bool isBuy = position.trade.side == practice::Side::Buy;
        std::int64_t PointQuote::*const side = isBuy ? &PointQuote::bid : &PointQuote::ask;
        std::int64_t PointQuote::*const other = isBuy ? &PointQuote::ask : &PointQuote::bid;
        for (const std::int64_t level : std::array{position.stopLoss, position.takeProfit}) {
            if (level <= 0)
                continue;
            const std::optional<double> share = shareAt(way.from.*side, way.to.*side, level);
            if (!share || *share <= after || (next && *share >= next->share))
                continue;
            LevelCrossing crossing{*share, {}};
            crossing.quote.*side = level;
            crossing.quote.*other = pointsAt(way.from.*other, way.to.*other, *share);
            next = crossing;
        }
    }
    return next;
}

} // namespace lab
