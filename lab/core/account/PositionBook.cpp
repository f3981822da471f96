#include "lab/core/account/PositionBook.h"

#include "practice/core/broker/PriceBoard.h"
#include "practice/core/broker/Valuation.h"

#include <algorithm>
#include <utility>

namespace lab {

void PositionBook::add(Position position)
{
    addLevels(position);
    m_positions.push_back(std::move(position));
    sum();
}

std::optional<Position> PositionBook::take(std::string_view tradeId)
{
    const auto found = find(tradeId);
    if (found == m_positions.end())
        return std::nullopt;
    std::optional<Position> taken = std::move(*found);
    m_positions.erase(found);
    m_bid = m_ask = {};
    for (const Position& position : m_positions)
        addLevels(position);
    sum();
    return taken;
}

void PositionBook::setSwap(std::string_view tradeId, practice::Cents swap)
{
    if (const auto found = find(tradeId); found != m_positions.end())
        found->trade.swap = swap;
    sum();
}

void PositionBook::value(const PointQuote& quote, const practice::Rate& usdRate)
{
    const practice::Quote prices = quote.toPrices(m_spec.digits);
    for (Position& position : m_positions) {
        const practice::Trade& trade = position.trade;
        position.profit = practice::grossProfit(m_spec, trade.side, trade.lots, trade.entryPrice,
            practice::closingPrice(trade.side, prices), usdRate);
        position.worst = std::min(position.worst, position.profit);
        position.best = std::max(position.best, position.profit);
    }
    sum();
}

std::vector<Position>::iterator PositionBook::find(std::string_view tradeId)
{
    return std::ranges::find_if(
        m_positions, [tradeId](const Position& position) { return position.trade.id == tradeId; });
}

void PositionBook::addLevels(const Position& position)
{
    const bool isBuy = position.trade.side == practice::Side::Buy;
    const std::int64_t below = isBuy ? position.stopLoss : position.takeProfit;
    const std::int64_t above = isBuy ? position.takeProfit : position.stopLoss;
    Bounds& bounds = isBuy ? m_bid : m_ask;
    if (below > 0)
        bounds.low = std::max(bounds.low, below);
    if (above > 0)
        bounds.high = std::min(bounds.high, above);
}

void PositionBook::sum()
{
    m_result = 0;
    for (const Position& position : m_positions)
        m_result += position.profit + position.trade.swap - position.trade.commission;
}

} // namespace lab
