#pragma once

#include "practice/core/Types.h"
#include "practice/core/broker/ChangeSet.h"

#include <cstddef>
#include <optional>
#include <string>

namespace practice {

/// A new order as it came from outside; nothing in it is trusted.
struct PlaceRequest {
    std::string accountId;
    std::string symbol;
    std::string orderKind; ///< "MARKET", "BUY_LIMIT", "SELL_LIMIT", "BUY_STOP" or "SELL_STOP"
    std::string type;      ///< "BUY" or "SELL" for a market order; a pending order needs none
    double lots = 0;
    std::optional<double> pendingPrice; ///< required for a pending order; absent or 0 for a market order
    std::optional<double> stopLoss;     ///< absent or 0 = none
    std::optional<double> takeProfit;   ///< absent or 0 = none
    std::string comment;                ///< at most 256 bytes
};

/// New levels of a live trade: an absent one stays as it is, an explicit 0 removes a stop loss or a take
/// profit. A request that would change nothing is accepted.
struct ModifyRequest {
    std::optional<double> stopLoss;
    std::optional<double> takeProfit;
    std::optional<double> pendingPrice; ///< pending orders only, > 0
};

/// Why a command was not carried out. Nothing has changed then.
struct Refusal {
    int httpStatus = 400; ///< 400: change the request; 404: there is no such account or live trade
    std::string message;  ///< one English sentence or two that tell a person what to change
};

/// What became of a command: refused, and then `changes` is empty, or carried out.
struct CommandResult {
    std::optional<Refusal> refusal;
    std::string tradeId; ///< the trade that the command created or changed
    ChangeSet changes;

    [[nodiscard]] bool accepted() const { return !refusal.has_value(); }
};

/// A price for the symbol at this position of the broker's symbol list.
struct SymbolQuote {
    std::size_t symbol = 0;
    Quote quote;
};

} // namespace practice
