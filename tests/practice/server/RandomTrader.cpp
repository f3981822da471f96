#include "practice/server/RandomTrader.h"

#include "practice/core/SymbolCatalog.h"
#include "practice/core/broker/RecordText.h"

#include <algorithm>
#include <cmath>

using namespace practice;

RandomTrader::RandomTrader(std::mt19937& random, const SecondBooks& books)
    : m_random(random)
    , m_books(books)
{
}

int RandomTrader::pick(int count)
{
    return std::uniform_int_distribution<int>(0, count - 1)(m_random);
}

double RandomTrader::between(double low, double high)
{
    return std::uniform_real_distribution<double>(low, high)(m_random);
}

RandomTrader::Points RandomTrader::away(Points from, int direction)
{
    if (pick(25) == 0)
        direction = -direction;
    const auto distance = std::llround(static_cast<double>(from) * between(0.0002, 0.008));
    return std::max<Points>(1, from + direction * std::max(1LL, distance));
}

std::int64_t RandomTrader::someLots(const Line& order)
{
    const int size = pick(12) == 0 ? 1000 : order.account <= 2 ? 300 : 60;
    const std::int64_t lots = pick(3) == 0 ? 10 * (1 + pick(size / 10)) : 1 + pick(size);
    if (order.account != 2 || order.kind != OrderKind::Market || pick(4) == 0)
        return lots;
    // Two or three of these, and the next bad hour ends in a stop-out.
    Line wanted = order;
    wanted.lots = lots;
    const auto free = static_cast<double>(m_books.equity(2) - m_books.margin(2));
    const double share = free * between(0.3, 0.7) / static_cast<double>(m_books.marginNeeded(wanted));
    return std::clamp(
        static_cast<std::int64_t>(static_cast<double>(lots) * share), std::int64_t{1}, std::int64_t{1000});
}

RandomTrader::Line RandomTrader::newOrder(const Prices& prices)
{
    constexpr std::size_t accounts[] = {0, 1, 1, 1, 1, 1, 2, 2, 2, 2, 2, 2, 3, 3, 3, 4, 4, 4, 5, 5};
    constexpr OrderKind kinds[] = {OrderKind::Market, OrderKind::Market, OrderKind::Market,
        OrderKind::BuyLimit, OrderKind::SellLimit, OrderKind::BuyStop, OrderKind::SellStop};
    Line order;
    order.account = accounts[pick(20)];
    order.symbol = static_cast<std::size_t>(pick(static_cast<int>(prices.size())));
    order.kind = kinds[pick(7)];
    order.buys = order.kind == OrderKind::Market
        ? pick(2) == 0
        : order.kind == OrderKind::BuyLimit || order.kind == OrderKind::BuyStop;
    order.lots = someLots(order);
    const int direction = order.buys ? 1 : -1;
    Points reference = order.buys ? prices[order.symbol].ask : prices[order.symbol].bid;
    if (order.kind != OrderKind::Market) {
        const bool limit = order.kind == OrderKind::BuyLimit || order.kind == OrderKind::SellLimit;
        reference = order.trigger = away(reference, limit ? -direction : direction);
    }
    if (pick(3) == 0)
        order.stop = away(reference, -direction);
    if (pick(3) == 0)
        order.target = away(reference, direction);
    return order;
}

PlaceRequest RandomTrader::requestOf(const Line& order) const
{
    PlaceRequest request;
    request.accountId = m_books.books()[order.account].terms.id;
    request.symbol = symbolCatalog()[order.symbol].name;
    request.orderKind = toText(order.kind);
    request.type = order.kind == OrderKind::Market ? toText(order.buys ? Side::Buy : Side::Sell) : "";
    request.lots = static_cast<double>(order.lots) / 100;
    if (order.trigger > 0)
        request.pendingPrice = m_books.priceOf(order.trigger, order.symbol);
    request.stopLoss = m_books.priceOf(order.stop, order.symbol);
    request.takeProfit = m_books.priceOf(order.target, order.symbol);
    return request;
}

RandomTrader::Change RandomTrader::changeOf(Line line, const Prices& prices)
{
    const int direction = line.buys ? 1 : -1;
    const bool waits = line.status == TradeStatus::Pending;
    ModifyRequest request;
    if (waits && pick(2) == 0) {
        line.trigger = away(line.trigger, pick(2) == 0 ? 1 : -1);
        request.pendingPrice = m_books.priceOf(line.trigger, line.symbol);
    }
    const Points reference = waits ? line.trigger : prices[line.symbol].bid;
    if (pick(3) > 0) {
        line.stop = pick(5) == 0 ? 0 : away(reference, -direction);
        request.stopLoss = m_books.priceOf(line.stop, line.symbol);
    }
    if (pick(3) > 0) {
        line.target = pick(5) == 0 ? 0 : away(reference, direction);
        request.takeProfit = m_books.priceOf(line.target, line.symbol);
    }
    return {std::move(line), request};
}
