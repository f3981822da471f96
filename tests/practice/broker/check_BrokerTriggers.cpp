#include "BrokerFixture.h"

using namespace practice;

namespace {

/// Places the order, moves EURUSD there; the position it became, or nothing while it still waits.
std::optional<Trade> after(const char* kind, double price, Quote quote)
{
    Desk desk;
    const std::string id = desk.id(Desk::pending("demo", "EURUSD", kind, 1, price));
    desk.price(EurUsd, quote.bid, quote.ask);
    const Trade trade = desk.trade(id);
    return trade.status == TradeStatus::Open ? std::optional(trade) : std::nullopt;
}

std::string bought(Desk& desk, double stopLoss, double takeProfit)
{
    PlaceRequest request = Desk::market("demo", "EURUSD", "BUY", 1);
    request.stopLoss = stopLoss;
    request.takeProfit = takeProfit;
    return desk.id(request);
}

} // namespace

TEST_CASE("limit orders fill when the market comes to them, at the market's price")
{
    CHECK(!after("BUY_LIMIT", 1.08000, {1.07993, 1.08001}));
    CHECK(after("BUY_LIMIT", 1.08000, {1.07992, 1.08000})->entryPrice == 1.08000);
    CHECK(after("BUY_LIMIT", 1.08000, {1.07892, 1.07900})->entryPrice == 1.07900);
    CHECK(!after("SELL_LIMIT", 1.09000, {1.08999, 1.09007}));
    CHECK(after("SELL_LIMIT", 1.09000, {1.09000, 1.09008})->entryPrice == 1.09000);
    CHECK(after("SELL_LIMIT", 1.09000, {1.09100, 1.09108})->entryPrice == 1.09100);
}

TEST_CASE("stop orders fill when the market passes them, at the worse price after a jump")
{
    CHECK(!after("BUY_STOP", 1.09000, {1.08991, 1.08999}));
    CHECK(after("BUY_STOP", 1.09000, {1.08992, 1.09000})->entryPrice == 1.09000);
    CHECK(after("BUY_STOP", 1.09000, {1.09092, 1.09100})->entryPrice == 1.09100);
    CHECK(!after("SELL_STOP", 1.08000, {1.08001, 1.08009}));
    CHECK(after("SELL_STOP", 1.08000, {1.08000, 1.08008})->entryPrice == 1.08000);
    CHECK(after("SELL_STOP", 1.08000, {1.07900, 1.07908})->entryPrice == 1.07900);
}

TEST_CASE("a filled order is a position from that moment on and says so")
{
    Desk desk;
    const std::string id = desk.id(Desk::pending("demo", "EURUSD", "BUY_LIMIT", 1, 1.08));
    desk.now += 5000;
    const ChangeSet changes = desk.price(EurUsd, 1.07992, 1.08000);
    const Trade trade = tradeIn(changes, id);
    CHECK(trade.status == TradeStatus::Open);
    CHECK(trade.orderKind == OrderKind::BuyLimit);
    CHECK_EQ(trade.createdAt, desk.now);
    CHECK_EQ(trade.pendingPrice, 1.08);
    CHECK_EQ(trade.margin, 108'000);
    CHECK_EQ(trade.commission, 700);
    CHECK_EQ(trade.pnl, -800 - 700);
    CHECK(eventsOf<OrdersChanged>(changes)
        == std::vector<OrdersChanged>{{"demo", id, true, CloseReason::None}});
    CHECK(desk.broker.pendingOrders("demo").empty());
    CHECK_EQ(desk.broker.openTrades("demo").size(), std::size_t{1});
    CHECK_EQ(desk.broker.figures("demo").margin, 108'000);
}

TEST_CASE("a trigger that finds too little margin cancels the order and says why")
{
    Desk desk;
    const std::string id = desk.id(Desk::pending("demo", "EURUSD", "BUY_LIMIT", 90, 1.08));
    desk.buy("demo", "GBPUSD", 10);
    const ChangeSet changes = desk.price(EurUsd, 1.07992, 1.08000);
    CHECK(tradeIn(changes, id).status == TradeStatus::Cancelled);
    CHECK_EQ(tradeIn(changes, id).closeReason, CloseReason::NoMargin);
    const auto events = eventsOf<OrdersChanged>(changes);
    REQUIRE(events.size() == 1);
    CHECK_EQ(events[0].tradeId, id);
    CHECK_EQ(events[0].closeReason, CloseReason::NoMargin);
    CHECK(!events[0].filled);
    CHECK(changes.accounts.empty());
}

TEST_CASE("a stop loss closes a buy when the bid reaches it and a sell when the ask does")
{
    Desk desk;
    const std::string id = bought(desk, 1.08000, 0);
    CHECK(desk.price(EurUsd, 1.08001, 1.08009).empty());
    const ChangeSet changes = desk.price(EurUsd, 1.07950, 1.07958);
    const Trade closed = tradeIn(changes, id);
    CHECK_EQ(closed.closeReason, CloseReason::StopLoss);
    CHECK_EQ(closed.exitPrice, 1.07950);
    CHECK_EQ(closed.pnl, -55'800 - 700); // (1.07950 - 1.08508) x 100 000
    CHECK_EQ(closed.closedAt, desk.now);
    CHECK_EQ(desk.account("demo").balance, 10'000'000 - 56'500);
    CHECK(eventsOf<OrdersChanged>(changes)
        == std::vector<OrdersChanged>{{"demo", id, false, CloseReason::StopLoss}});

    PlaceRequest request = Desk::market("demo", "EURUSD", "SELL", 1);
    request.stopLoss = 1.08000;
    const std::string sold = desk.id(request);
    CHECK(desk.price(EurUsd, 1.07995, 1.07999).empty());
    CHECK_EQ(tradeIn(desk.price(EurUsd, 1.07992, 1.08000), sold).closeReason, CloseReason::StopLoss);
}

TEST_CASE("a take profit closes a buy when the bid reaches it and a sell when the ask does")
{
    Desk desk;
    const std::string id = bought(desk, 0, 1.09000);
    CHECK(desk.price(EurUsd, 1.08999, 1.09007).empty());
    const ChangeSet changes = desk.price(EurUsd, 1.09000, 1.09008);
    CHECK_EQ(tradeIn(changes, id).closeReason, CloseReason::TakeProfit);
    CHECK_EQ(tradeIn(changes, id).exitPrice, 1.09000);
    PlaceRequest request = Desk::market("demo", "EURUSD", "SELL", 1);
    request.takeProfit = 1.08000;
    const std::string sold = desk.id(request);
    CHECK(desk.price(EurUsd, 1.07999, 1.08001).empty());
    CHECK_EQ(tradeIn(desk.price(EurUsd, 1.07900, 1.07908), sold).exitPrice, 1.07908);
}

TEST_CASE("an order that a jump carries beyond its own take profit opens and closes in one step")
{
    Desk desk;
    PlaceRequest request = Desk::pending("demo", "EURUSD", "BUY_STOP", 1, 1.09000);
    request.takeProfit = 1.09100;
    const std::string id = desk.id(request);
    const ChangeSet changes = desk.price(EurUsd, 1.09200, 1.09208);
    REQUIRE(changes.trades.size() == 1);
    CHECK(tradeIn(changes, id).status == TradeStatus::Closed);
    CHECK_EQ(tradeIn(changes, id).entryPrice, 1.09208);
    CHECK_EQ(tradeIn(changes, id).exitPrice, 1.09200);
    CHECK_EQ(eventsOf<OrdersChanged>(changes).size(), std::size_t{2});
}

TEST_CASE("margin freed by a stop loss carries an order that the same price triggers")
{
    Desk desk;
    PlaceRequest request = Desk::market("demo", "EURUSD", "BUY", 80);
    request.stopLoss = 1.08400;
    const std::string closing = desk.id(request);
    const std::string filling = desk.id(Desk::pending("demo", "EURUSD", "SELL_STOP", 80, 1.08400));
    const ChangeSet changes = desk.price(EurUsd, 1.08400, 1.08408);
    CHECK(tradeIn(changes, closing).status == TradeStatus::Closed);
    CHECK(tradeIn(changes, filling).status == TradeStatus::Open);
}

TEST_CASE("unusable quotes change nothing")
{
    Desk desk;
    const std::string id = bought(desk, 1.08, 1.09);
    const BrokerState before = desk.broker.state();
    const double nan = std::nan("");
    for (const Quote quote : {Quote{nan, 1}, Quote{1, nan}, Quote{0, 1}, Quote{-1, 1}, Quote{1.1, 1.0},
             Quote{1, 1e300}, Quote{1e-9, 1.08}})
        CHECK(desk.price(EurUsd, quote.bid, quote.ask).empty());
    CHECK(desk.price(99, 1, 2).empty());
    CHECK(desk.broker.onPrices({}, desk.now).empty());
    CHECK(desk.broker.state() == before);
}

TEST_CASE("a price that moves nobody's levels has nothing to store")
{
    Desk desk;
    const std::string id = bought(desk, 1.08, 1.09);
    CHECK(desk.price(EurUsd, 1.08600, 1.08608).empty());
    CHECK_EQ(desk.trade(id).pnl, 9'200 - 700);
}

TEST_CASE("watched are the symbols of live trades and the pairs that turn their results into dollars")
{
    using Symbols = std::vector<std::size_t>;
    Desk desk;
    CHECK(desk.broker.watchedSymbols().empty());
    const std::string order = desk.id(Desk::pending("demo", "EURGBP", "BUY_LIMIT", 1, 0.85));
    CHECK(desk.broker.watchedSymbols() == Symbols({GbpUsd, EurGbp}));
    desk.buy("demo", "USDJPY", 1);
    CHECK(desk.broker.watchedSymbols() == Symbols({GbpUsd, UsdJpy, EurGbp}));
    REQUIRE(desk.broker.cancel(order, desk.now).accepted());
    CHECK(desk.broker.watchedSymbols() == Symbols({UsdJpy}));
}

CHECK_MAIN()
