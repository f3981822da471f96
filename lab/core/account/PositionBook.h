#pragma once

#include "lab/core/account/PointQuote.h"
#include "practice/core/SymbolCatalog.h"
#include "practice/core/broker/Records.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>
#include <vector>

namespace lab {

/// An open position as the broker holds it, with what its prices have brought so far.
struct Position {
    practice::Trade trade; ///< as it was opened, its swap as charged so far
    int ticket = 0;
    std::int64_t stopLoss = 0;      ///< in points; 0: none
    std::int64_t takeProfit = 0;    ///< likewise
    practice::Cents profit = 0;     ///< of the prices alone, at the last price
    practice::Cents worst = 0;      ///< lowest of it, at most 0
    practice::Cents best = 0;       ///< highest, at least 0
    practice::Cents spreadCost = 0; ///< of opening
};

/// The open positions of one symbol, oldest first, and what they are worth. Knows enough of their levels to
/// tell at once that a price reaches none.
class PositionBook final {
public:
    explicit PositionBook(const practice::SymbolSpec& spec)
        : m_spec(spec)
    {
    }

    [[nodiscard]] const std::vector<Position>& all() const { return m_positions; }
    [[nodiscard]] bool empty() const { return m_positions.empty(); }

    void add(Position position);
    /// Takes it out; nothing when there is none with this id.
    [[nodiscard]] std::optional<Position> take(std::string_view tradeId);
    void setSwap(std::string_view tradeId, practice::Cents swap);

    /// Values each position at the price at which it would close.
    void value(const PointQuote& quote, const practice::Rate& usdRate);
    /// Of all positions together, commission and swap included.
    [[nodiscard]] practice::Cents result() const { return m_result; }

    /// Some level is reached at this price.
    [[nodiscard]] bool reaches(const PointQuote& quote) const
    {
        return quote.bid <= m_bid.low || quote.bid >= m_bid.high || quote.ask <= m_ask.low
            || quote.ask >= m_ask.high;
    }

private:
    /// The nearest levels of the positions that close at one side of the price.
    struct Bounds {
        std::int64_t low = std::numeric_limits<std::int64_t>::min();
        std::int64_t high = std::numeric_limits<std::int64_t>::max();
    };

    [[nodiscard]] std::vector<Position>::iterator find(std::string_view tradeId);
    void addLevels(const Position& position);
    void sum();

    practice::SymbolSpec m_spec;
    std::vector<Position> m_positions;
    Bounds m_bid;
    Bounds m_ask;
    practice::Cents m_result = 0;
};

} // namespace lab
