#pragma once

#include "practice/core/SymbolCatalog.h"
#include "practice/core/broker/Requests.h"

#include <optional>
#include <string_view>

namespace practice {

/// A value that passed its check, or why it did not.
template <typename T> struct Checked {
    T value{};
    std::optional<Refusal> refusal;
};

/// How an order is to be executed, and which way its position goes.
struct OrderShape {
    OrderKind kind = OrderKind::Market;
    Side side = Side::Buy;
};

/// Levels on the symbol's price grid; 0 = none.
struct Levels {
    double pendingPrice = 0;
    double stopLoss = 0;
    double takeProfit = 0;
};

/// A refusal with HTTP status 400: the request must change.
[[nodiscard]] Refusal badRequest(std::string message);
/// A refusal with HTTP status 404: what the request names does not exist.
[[nodiscard]] Refusal notFound(std::string message);

/// Kind and side from the texts of a request. A pending order may repeat its side, but not contradict it.
[[nodiscard]] Checked<OrderShape> checkShape(std::string_view orderKind, std::string_view type);

/// The volume in whole hundredths of a lot, within the symbol's limits and on its step.
[[nodiscard]] Checked<LotHundredths> checkLots(const SymbolSpec& spec, double lots);

/// The levels of a new order, each finite and above 0 or absent, put on the grid. A pending order must
/// have its price, a market order must not.
[[nodiscard]] Checked<Levels> checkLevels(const SymbolSpec& spec, const PlaceRequest& request);

/// A new order's levels against each other and the market: a limit order waits on the better side of the
/// market, a stop order on the worse one; stop loss and take profit lie on their sides of the price at
/// which the position would close, or, while it is pending, open.
[[nodiscard]] std::optional<Refusal> checkPrices(
    const SymbolSpec& spec, const Trade& order, const Quote& quote);

/// The trade as the request would leave it. Only levels that change are checked: at this moment the market
/// may stand on another one.
[[nodiscard]] Checked<Trade> checkModification(
    const SymbolSpec& spec, const Trade& trade, const ModifyRequest& request, const Quote& quote);

} // namespace practice
