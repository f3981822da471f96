#include "practice/core/broker/OrderCheck.h"

#include "practice/core/broker/PriceBoard.h"
#include "practice/core/broker/PriceGrid.h"
#include "practice/core/broker/RecordText.h"

#include <algorithm>
#include <cmath>

namespace practice {
namespace {

// Lots of any size print as exact hundredths.
std::string lotsText(double lots)
{
    return decimalText(std::llround(lots * 100));
}

Side sideOf(OrderKind kind)
{
    return kind == OrderKind::SellLimit || kind == OrderKind::SellStop ? Side::Sell : Side::Buy;
}

// One level, put on the grid; `name` begins the sentence of a refusal.
Checked<double> checkLevel(const SymbolSpec& spec, std::string_view name, std::optional<double> level)
{
    if (!level || *level == 0)
        return {0, {}};
    if (!std::isfinite(*level) || *level < 0 || *level >= priceLimit)
        return {0, badRequest(std::string(name) + " must be a price above 0.")};
    const double rounded = onGrid(*level, spec.digits);
    if (rounded <= 0)
        return {
            0, badRequest(std::string(name) + " is smaller than the smallest price of " + spec.name + ".")};
    return {rounded, {}};
}

// The three levels of a request, each put on the grid; the first that cannot be is the refusal.
Checked<Levels> checkEachLevel(const SymbolSpec& spec, std::optional<double> pendingPrice,
    std::optional<double> stopLoss, std::optional<double> takeProfit)
{
    const Checked<double> price = checkLevel(spec, "The price of the order", pendingPrice);
    const Checked<double> stop = checkLevel(spec, "The stop loss", stopLoss);
    const Checked<double> profit = checkLevel(spec, "The take profit", takeProfit);
    for (const auto* level : {&price, &stop, &profit}) {
        if (level->refusal)
            return {{}, level->refusal};
    }
    return {{price.value, stop.value, profit.value}, {}};
}

struct Reference {
    double price;
    std::string_view name;
};

Reference marketReference(Side side, const Quote& quote)
{
    return {closingPrice(side, quote), side == Side::Buy ? "the bid" : "the ask"};
}

std::optional<Refusal> checkStops(const SymbolSpec& spec, const Trade& trade, const Reference& reference)
{
    const bool isBuy = trade.side == Side::Buy;
    const auto refuse = [&](std::string_view name, double level, bool below) {
        return badRequest("The " + std::string(name) + " " + priceText(level, spec.digits) + " of a "
            + (isBuy ? "buy" : "sell") + " must be " + (below ? "below " : "above ")
            + std::string(reference.name) + ", " + priceText(reference.price, spec.digits) + ".");
    };
    if (trade.stopLoss > 0 && (isBuy ? trade.stopLoss >= reference.price : trade.stopLoss <= reference.price))
        return refuse("stop loss", trade.stopLoss, isBuy);
    if (trade.takeProfit > 0
        && (isBuy ? trade.takeProfit <= reference.price : trade.takeProfit >= reference.price))
        return refuse("take profit", trade.takeProfit, !isBuy);
    return std::nullopt;
}

std::optional<Refusal> checkTrigger(const SymbolSpec& spec, const Trade& order, const Quote& quote)
{
    const bool isBuy = order.side == Side::Buy;
    const bool isLimit = order.orderKind == OrderKind::BuyLimit || order.orderKind == OrderKind::SellLimit;
    const double price = order.pendingPrice;
    const double market = isBuy ? quote.ask : quote.bid;
    const bool mustBeBelow = isBuy == isLimit;
    if (mustBeBelow ? price < market : price > market)
        return std::nullopt;
    return badRequest("The price " + priceText(price, spec.digits) + " of a " + (isBuy ? "buy " : "sell ")
        + (isLimit ? "limit" : "stop") + " order must be " + (mustBeBelow ? "below " : "above ")
        + (isBuy ? "the ask, " : "the bid, ") + priceText(market, spec.digits) + ".");
}

} // namespace

Refusal badRequest(std::string message)
{
    return {400, std::move(message)};
}

Refusal notFound(std::string message)
{
    return {404, std::move(message)};
}

Checked<OrderShape> checkShape(std::string_view orderKind, std::string_view type)
{
    const std::optional<OrderKind> kind = orderKindFromText(orderKind);
    if (!kind || *kind == OrderKind::Balance) {
        return {
            {}, badRequest("The order kind must be MARKET, BUY_LIMIT, SELL_LIMIT, BUY_STOP or SELL_STOP.")};
    }
    const std::optional<Side> side = sideFromText(type);
    if (*kind == OrderKind::Market) {
        if (!side)
            return {{}, badRequest("A market order needs the type BUY or SELL.")};
        return {{*kind, *side}, {}};
    }
    if (!type.empty() && side != sideOf(*kind)) {
        return {{},
            badRequest("The type contradicts the order kind " + std::string(orderKind) + ": leave it out.")};
    }
    return {{*kind, sideOf(*kind)}, {}};
}

Checked<LotHundredths> checkLots(const SymbolSpec& spec, double lots)
{
    const std::string range = "from " + lotsText(spec.minLots) + " to " + lotsText(spec.maxLots);
    // A little tolerance, because 0.1 + 0.2 is not 0.3.
    constexpr double tolerance = 1e-9;
    if (!(lots >= spec.minLots - tolerance && lots <= spec.maxLots + tolerance))
        return {0, badRequest("The volume of " + spec.name + " must be " + range + " lots.")};
    const LotHundredths hundredths = std::llround(lots * 100);
    const LotHundredths step = std::max<LotHundredths>(1, std::llround(spec.lotStep * 100));
    if (std::abs(lots * 100 - static_cast<double>(hundredths)) > 1e-6 || hundredths % step != 0) {
        return {0,
            badRequest("The volume of " + spec.name + " must be a multiple of " + lotsText(spec.lotStep)
                + " lots.")};
    }
    return {hundredths, {}};
}

Checked<Levels> checkLevels(const SymbolSpec& spec, const PlaceRequest& request)
{
    const bool isMarket = request.orderKind == toText(OrderKind::Market);
    Checked<Levels> levels = checkEachLevel(spec, request.pendingPrice, request.stopLoss, request.takeProfit);
    if (levels.refusal)
        return levels;
    if (isMarket && levels.value.pendingPrice > 0)
        return {{}, badRequest("A market order has no price of its own: leave the price out.")};
    if (!isMarket && levels.value.pendingPrice <= 0)
        return {{}, badRequest("A pending order needs a price above 0.")};
    return levels;
}

std::optional<Refusal> checkPrices(const SymbolSpec& spec, const Trade& order, const Quote& quote)
{
    if (order.orderKind == OrderKind::Market)
        return checkStops(spec, order, marketReference(order.side, quote));
    if (auto refusal = checkTrigger(spec, order, quote))
        return refusal;
    return checkStops(spec, order, {order.pendingPrice, "the price of the order"});
}

Checked<Trade> checkModification(
    const SymbolSpec& spec, const Trade& trade, const ModifyRequest& request, const Quote& quote)
{
    const bool isPending = trade.status == TradeStatus::Pending;
    if (request.pendingPrice && !isPending)
        return {{}, badRequest("The price of an open position cannot be changed, only its levels.")};
    Checked<Levels> levels = checkEachLevel(spec, request.pendingPrice, request.stopLoss, request.takeProfit);
    if (levels.refusal)
        return {{}, std::move(levels.refusal)};
    if (request.pendingPrice && levels.value.pendingPrice <= 0)
        return {{}, badRequest("A pending order needs a price above 0.")};

    Trade result = trade;
    if (request.pendingPrice)
        result.pendingPrice = levels.value.pendingPrice;
    if (request.stopLoss)
        result.stopLoss = levels.value.stopLoss;
    if (request.takeProfit)
        result.takeProfit = levels.value.takeProfit;

    std::optional<Refusal> refusal;
    if (isPending) {
        if (result.pendingPrice != trade.pendingPrice)
            refusal = checkTrigger(spec, result, quote);
        if (!refusal)
            refusal = checkStops(spec, result, {result.pendingPrice, "the price of the order"});
    } else {
        Trade news = result;
        if (news.stopLoss == trade.stopLoss)
            news.stopLoss = 0;
        if (news.takeProfit == trade.takeProfit)
            news.takeProfit = 0;
        refusal = checkStops(spec, news, marketReference(trade.side, quote));
    }
    return {std::move(result), std::move(refusal)};
}

} // namespace practice
