#include "BrokerFixture.h"

#include <cmath>
#include <limits>

using namespace practice;

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

/// The refusal's text; the books must be untouched.
std::string refusal(Desk& desk, const CommandResult& result, const BrokerState& before, int status = 400)
{
    CHECK(desk.broker.state() == before);
    CHECK(result.changes.empty());
    REQUIRE(result.refusal.has_value());
    CHECK_EQ(result.refusal->httpStatus, status);
    return result.refusal->message;
}

std::string refusedPlace(Desk& desk, const PlaceRequest& request, int status = 400)
{
    const BrokerState before = desk.broker.state();
    return refusal(desk, desk.place(request), before, status);
}

std::string refusedModify(Desk& desk, const std::string& id, const ModifyRequest& request, int status = 400)
{
    const BrokerState before = desk.broker.state();
    return refusal(desk, desk.broker.modify(id, request, desk.now), before, status);
}

bool contains(const std::string& text, const std::string& part)
{
    if (text.find(part) != std::string::npos)
        return true;
    std::cout << "  \"" << text << "\" lacks \"" << part << "\"\n";
    return false;
}

PlaceRequest withStops(PlaceRequest request, double stopLoss, double takeProfit)
{
    request.stopLoss = stopLoss;
    request.takeProfit = takeProfit;
    return request;
}

} // namespace

TEST_CASE("a market order fills at once, a buy at the ask and a sell at the bid")
{
    Desk desk;
    PlaceRequest request = withStops(Desk::market("demo", "EURUSD", "BUY", 0.1), 1.08, 1.09);
    request.comment = "first";
    const CommandResult result = desk.place(request);
    REQUIRE(result.accepted());
    REQUIRE(result.changes.trades.size() == 1);
    const Trade trade = result.changes.trades[0];
    CHECK_EQ(trade.id, result.tradeId);
    CHECK(trade.status == TradeStatus::Open && trade.side == Side::Buy);
    CHECK(trade.orderKind == OrderKind::Market);
    CHECK_EQ(trade.entryPrice, 1.08508);
    CHECK_EQ(trade.stopLoss, 1.08);
    CHECK_EQ(trade.takeProfit, 1.09);
    CHECK_EQ(trade.lots, 10);
    CHECK_EQ(trade.createdAt, desk.now);
    CHECK_EQ(trade.comment, std::string("first"));
    CHECK(result.changes.accounts.empty()); // opening realises nothing
    CHECK(eventsOf<OrdersChanged>(result.changes)
        == std::vector<OrdersChanged>{{"demo", trade.id, false, CloseReason::None}});
    CHECK_EQ(desk.trade(desk.sell("demo", "EURUSD", 0.1)).entryPrice, 1.08500);
}

TEST_CASE("a pending order waits without margin, commission or profit and is listed apart")
{
    Desk desk;
    const std::string id = desk.id(Desk::pending("demo", "EURUSD", "BUY_LIMIT", 0.5, 1.08000));
    const Trade order = desk.trade(id);
    CHECK(order.status == TradeStatus::Pending && order.side == Side::Buy);
    CHECK_EQ(order.pendingPrice, 1.08);
    CHECK_EQ(order.margin, 0);
    CHECK_EQ(order.commission, 0);
    CHECK_EQ(order.pnl, 0);
    CHECK_EQ(desk.broker.pendingOrders("demo").size(), std::size_t{1});
    CHECK(desk.broker.openTrades("demo").empty());
    CHECK_EQ(desk.broker.figures("demo").freeMargin, 10'000'000);
    CHECK(desk.trade(desk.id(Desk::pending("demo", "EURUSD", "SELL_STOP", 0.5, 1.08000))).side == Side::Sell);
}

TEST_CASE("orders for accounts that cannot trade are refused")
{
    Desk desk;
    CHECK(contains(refusedPlace(desk, Desk::market("nobody", "EURUSD", "BUY", 1), 404), "no such account"));
    CHECK(contains(refusedPlace(desk, Desk::market("wallet", "EURUSD", "BUY", 0.01)), "wallet cannot trade"));
    std::vector<Account> accounts = fixtureAccounts();
    accounts[2].status = AccountStatus::Failed;
    Desk later({accounts, {}});
    CHECK(contains(refusedPlace(later, Desk::market("challenge", "EURUSD", "BUY", 1)), "FAILED"));
}

TEST_CASE("symbol, kind and side must make sense")
{
    Desk desk;
    CHECK(contains(refusedPlace(desk, Desk::market("demo", "eurusd", "BUY", 1)), "no such symbol"));
    CHECK(contains(refusedPlace(desk, Desk::market("demo", "EURUSD", "buy", 1)), "BUY or SELL"));
    CHECK(contains(refusedPlace(desk, Desk::market("demo", "EURUSD", "", 1)), "BUY or SELL"));
    CHECK(contains(refusedPlace(desk, Desk::pending("demo", "EURUSD", "BUY_STOP_LIMIT", 1, 1.09)),
        "must be MARKET, BUY_LIMIT"));
    PlaceRequest twisted = Desk::pending("demo", "EURUSD", "BUY_LIMIT", 1, 1.08);
    twisted.type = "SELL";
    CHECK(contains(refusedPlace(desk, twisted), "contradicts"));
    twisted.type = "BUY";
    CHECK(desk.place(twisted).accepted());
    PlaceRequest priced = Desk::market("demo", "EURUSD", "BUY", 1);
    priced.pendingPrice = 1.08;
    CHECK(contains(refusedPlace(desk, priced), "leave the price out"));
    priced.pendingPrice = 0;
    CHECK(desk.place(priced).accepted());
    PlaceRequest chatty = Desk::market("demo", "EURUSD", "BUY", 1);
    chatty.comment.assign(257, 'x');
    CHECK(contains(refusedPlace(desk, chatty), "comment is too long"));
    chatty.comment.pop_back();
    CHECK(desk.place(chatty).accepted());
    chatty.comment.clear();
    for (int i = 0; i < 256; ++i)
        chatty.comment += "\xE2\x82\xAC"; // characters count, not their bytes
    CHECK(desk.place(chatty).accepted());
    chatty.comment += 'x';
    CHECK(contains(refusedPlace(desk, chatty), "comment is too long"));
}

TEST_CASE("volumes outside the limits or off the step are refused")
{
    Desk desk;
    for (const double lots : {0.0, -1.0, 0.005, 1000.01, 1e300, notANumber, infinity, -infinity})
        CHECK(contains(
            refusedPlace(desk, Desk::market("demo", "EURUSD", "BUY", lots)), "from 0.01 to 1000.00 lots"));
    for (const double lots : {0.015, 0.123, 1.001})
        CHECK(contains(
            refusedPlace(desk, Desk::market("demo", "EURUSD", "BUY", lots)), "multiple of 0.01 lots"));
    CHECK_EQ(desk.trade(desk.buy("demo", "EURUSD", 0.01)).lots, 1);
    CHECK_EQ(desk.trade(desk.buy("demo", "EURUSD", 0.1 + 0.2)).lots, 30);
    CHECK_EQ(desk.trade(desk.buy("demo", "EURUSD", 0.07 * 100 / 100 + 0.0)).lots, 7);
}

TEST_CASE("an order that the free margin cannot carry is refused with both amounts")
{
    Desk desk;
    const std::string text = refusedPlace(desk, Desk::market("demo", "EURUSD", "BUY", 93));
    CHECK(contains(text, "93.00 lots of EURUSD need 100,912.44 USD")); // 93 x 1 085.08
    CHECK(contains(text, "100,000.00 USD are free"));
    desk.buy("demo", "EURUSD", 92); // 99 827.36
    CHECK(contains(refusedPlace(desk, Desk::market("demo", "EURUSD", "BUY", 1)), "Not enough free margin"));
}

TEST_CASE("a position's levels must lie on their sides of the price at which it would close")
{
    Desk desk;
    const auto buy = Desk::market("demo", "EURUSD", "BUY", 1);
    const auto sell = Desk::market("demo", "EURUSD", "SELL", 1);
    CHECK(contains(refusedPlace(desk, withStops(buy, 1.08500, 0)),
        "The stop loss 1.08500 of a buy must be below the bid, 1.08500."));
    CHECK(contains(refusedPlace(desk, withStops(buy, 0, 1.08500)),
        "The take profit 1.08500 of a buy must be above the bid, 1.08500."));
    CHECK(contains(refusedPlace(desk, withStops(sell, 1.08508, 0)),
        "The stop loss 1.08508 of a sell must be above the ask, 1.08508."));
    CHECK(contains(refusedPlace(desk, withStops(sell, 0, 1.08508)), "must be below the ask, 1.08508."));
    CHECK(desk.place(withStops(buy, 1.08499, 1.08501)).accepted());
    CHECK(desk.place(withStops(sell, 1.08509, 1.08507)).accepted());
    for (const double level : {notANumber, infinity, -1.0, 1e300}) {
        CHECK(contains(refusedPlace(desk, withStops(buy, level, 0)), "stop loss must be a price above 0"));
        CHECK(contains(refusedPlace(desk, withStops(buy, 0, level)), "take profit must be a price above 0"));
    }
    CHECK(contains(refusedPlace(desk, withStops(buy, 1e-9, 0)), "smallest price of EURUSD"));
}

TEST_CASE("a pending price must lie where the market has not been yet")
{
    Desk desk;
    const auto place
        = [](const char* kind, double price) { return Desk::pending("demo", "EURUSD", kind, 1, price); };
    CHECK(contains(refusedPlace(desk, place("BUY_LIMIT", 1.08508)),
        "The price 1.08508 of a buy limit order must be below the ask, 1.08508."));
    CHECK(contains(refusedPlace(desk, place("BUY_STOP", 1.08508)), "above the ask"));
    CHECK(contains(refusedPlace(desk, place("SELL_LIMIT", 1.08500)), "above the bid"));
    CHECK(contains(refusedPlace(desk, place("SELL_STOP", 1.08500)), "below the bid"));
    CHECK(desk.place(place("BUY_LIMIT", 1.08507)).accepted());
    CHECK(desk.place(place("BUY_STOP", 1.08509)).accepted());
    CHECK(desk.place(place("SELL_LIMIT", 1.08501)).accepted());
    CHECK(desk.place(place("SELL_STOP", 1.08499)).accepted());
    for (const double price : {0.0, -1.0, notANumber, infinity})
        CHECK(contains(refusedPlace(desk, place("BUY_LIMIT", price)), "price"));
    PlaceRequest missing = place("BUY_LIMIT", 1);
    missing.pendingPrice.reset();
    CHECK(contains(refusedPlace(desk, missing), "needs a price"));
    CHECK(contains(refusedPlace(desk, withStops(place("BUY_LIMIT", 1.08), 1.08, 0)),
        "below the price of the order, 1.08000"));
    CHECK(desk.place(withStops(place("BUY_LIMIT", 1.08), 1.07999, 1.08001)).accepted());
}

TEST_CASE("levels are put on the symbol's price grid")
{
    Desk desk;
    PlaceRequest request = withStops(Desk::market("demo", "EURUSD", "BUY", 1), 1.0800049, 1.0912351);
    const Trade trade = desk.trade(desk.id(request));
    CHECK_EQ(trade.stopLoss, 1.08);
    CHECK_EQ(trade.takeProfit, 1.09124);
}

TEST_CASE("modify sets the levels it names, removes those it names as 0 and leaves the others alone")
{
    Desk desk;
    const std::string id = desk.id(withStops(Desk::market("demo", "EURUSD", "BUY", 1), 1.08, 1.09));
    desk.now += 1000;
    CommandResult result = desk.broker.modify(id, {1.081, {}, {}}, desk.now);
    REQUIRE(result.accepted());
    CHECK_EQ(desk.trade(id).stopLoss, 1.081);
    CHECK_EQ(desk.trade(id).takeProfit, 1.09);
    CHECK_EQ(desk.trade(id).updatedAt, desk.now);
    CHECK_EQ(eventsOf<OrdersChanged>(result.changes).size(), std::size_t{1});
    REQUIRE(desk.broker.modify(id, {{}, 0.0, {}}, desk.now).accepted());
    CHECK_EQ(desk.trade(id).stopLoss, 1.081);
    CHECK_EQ(desk.trade(id).takeProfit, 0.0);
}

TEST_CASE("a modification that changes nothing is accepted and stores nothing")
{
    Desk desk;
    const std::string id = desk.id(withStops(Desk::market("demo", "EURUSD", "BUY", 1), 1.08, 0));
    const BrokerState before = desk.broker.state();
    desk.now += 1000;
    for (const ModifyRequest& request : {ModifyRequest{}, ModifyRequest{1.08, 0.0, {}}}) {
        const CommandResult result = desk.broker.modify(id, request, desk.now);
        CHECK(result.accepted());
        CHECK(result.changes.empty());
        CHECK(desk.broker.state() == before);
    }
}

TEST_CASE("a level that stays is not held against a modification of the other one")
{
    Desk desk;
    const std::string id = desk.id(withStops(Desk::market("demo", "EURUSD", "BUY", 1), 1.08, 1.09));
    Desk moved(desk.broker.state(), false);
    // Another broker that has not looked at the levels yet stands beyond the stop loss.
    moved.price(EurUsd, 1.08100, 1.08108);
    CHECK(moved.broker.modify(id, {1.08, 1.085, {}}, moved.now).accepted());
    CHECK(contains(refusedModify(moved, id, {1.0811, {}, {}}), "must be below the bid, 1.08100"));
}

TEST_CASE("a pending order's price can be moved within its side, a position's cannot at all")
{
    Desk desk;
    const std::string order
        = desk.id(withStops(Desk::pending("demo", "EURUSD", "BUY_LIMIT", 1, 1.08), 1.07, 1.09));
    CHECK(contains(refusedModify(desk, order, {{}, {}, 1.09}), "must be below the ask"));
    CHECK(contains(refusedModify(desk, order, {{}, {}, 1.06}), "must be below the price of the order"));
    CHECK(contains(refusedModify(desk, order, {{}, {}, 0.0}), "needs a price above 0"));
    CHECK(contains(refusedModify(desk, order, {{}, {}, notANumber}), "price above 0"));
    CHECK(desk.broker.modify(order, {1.05, {}, 1.06}, desk.now).accepted());
    CHECK_EQ(desk.trade(order).pendingPrice, 1.06);
    const std::string position = desk.buy("demo", "EURUSD", 1);
    CHECK(contains(refusedModify(desk, position, {{}, {}, 1.09}), "open position cannot be changed"));
    CHECK(contains(refusedModify(desk, position, {notANumber, {}, {}}), "price above 0"));
}

TEST_CASE("close and cancel find only what is live, and each its own kind")
{
    Desk desk;
    const std::string position = desk.buy("demo", "EURUSD", 1);
    const std::string order = desk.id(Desk::pending("demo", "EURUSD", "SELL_STOP", 1, 1.08));
    const BrokerState before = desk.broker.state();
    CHECK(contains(refusal(desk, desk.broker.close(order, desk.now), before), "Cancel it instead"));
    CHECK(contains(refusal(desk, desk.broker.cancel(position, desk.now), before), "Close the position"));
    for (const std::string id : {"", "..", "no-such-id"}) {
        CHECK(contains(refusal(desk, desk.broker.close(id, desk.now), before, 404), "Refresh the list"));
        CHECK(contains(refusal(desk, desk.broker.cancel(id, desk.now), before, 404), "Refresh the list"));
        CHECK(contains(refusedModify(desk, id, {}, 404), "Refresh the list"));
    }
    const CommandResult closed = desk.broker.close(position, desk.now);
    CHECK(eventsOf<OrdersChanged>(closed.changes)
        == std::vector<OrdersChanged>{{"demo", position, false, CloseReason::Manual}});
    CHECK_EQ(closed.changes.accounts.size(), std::size_t{1});
    CHECK(!desk.broker.close(position, desk.now).accepted());
    const CommandResult cancelled = desk.broker.cancel(order, desk.now);
    CHECK(tradeIn(cancelled.changes, order).status == TradeStatus::Cancelled);
    CHECK(cancelled.changes.accounts.empty());
    CHECK(eventsOf<OrdersChanged>(cancelled.changes)
        == std::vector<OrdersChanged>{{"demo", order, false, CloseReason::None}});
    CHECK(!desk.broker.cancel(order, desk.now).accepted());
    CHECK(desk.broker.state().liveTrades.empty());
}

TEST_CASE("an account holds five hundred positions and orders and takes another when one has gone")
{
    Desk desk;
    std::string position;
    std::string order;
    for (int i = 0; i < 250; ++i) {
        position = desk.buy("demo", "EURUSD", 0.01);
        order = desk.id(Desk::pending("demo", "EURUSD", "BUY_LIMIT", 0.01, 1.08));
    }
    const std::string full
        = "This account has 500 open positions and pending orders; 500 are the most it may "
          "have. Close a position or cancel an order first.";
    const PlaceRequest market = Desk::market("demo", "EURUSD", "BUY", 0.01);
    const PlaceRequest waiting = Desk::pending("demo", "EURUSD", "SELL_STOP", 0.01, 1.08);
    CHECK_EQ(refusedPlace(desk, market), full);
    CHECK_EQ(refusedPlace(desk, waiting), full);
    desk.buy("tight", "EURUSD", 0.01); // another account has a limit of its own
    CHECK(desk.broker.cancel(order, desk.now).accepted());
    CHECK(desk.place(market).accepted());
    CHECK_EQ(refusedPlace(desk, waiting), full);
    CHECK(desk.broker.close(position, desk.now).accepted());
    CHECK(desk.place(waiting).accepted());
    CHECK_EQ(refusedPlace(desk, market), full);

    desk.price(EurUsd, 1.07990, 1.07998); // every order fills: a limit and a stop at this price
    CHECK_EQ(desk.broker.openTrades("demo").size(), std::size_t{500});
    CHECK_EQ(refusedPlace(desk, market), full);
}

TEST_CASE("an account that has more from earlier days keeps them and takes no more")
{
    BrokerState state{fixtureAccounts(), {}};
    for (int i = 0; i < 501; ++i) {
        Trade order;
        order.id = "old " + std::to_string(i);
        order.accountId = "demo";
        order.symbol = "EURUSD";
        order.orderKind = OrderKind::BuyLimit;
        order.status = TradeStatus::Pending;
        order.lots = 1;
        order.pendingPrice = 1.0;
        state.liveTrades.push_back(order);
    }
    Desk desk(state);
    CHECK_EQ(desk.broker.pendingOrders("demo").size(), std::size_t{501});
    CHECK(contains(refusedPlace(desk, Desk::market("demo", "EURUSD", "BUY", 0.01)), "has 501 open"));
    CHECK(desk.broker.cancel("old 0", desk.now).accepted());
    CHECK(contains(refusedPlace(desk, Desk::market("demo", "EURUSD", "BUY", 0.01)), "has 500 open"));
    CHECK(desk.broker.cancel("old 1", desk.now).accepted());
    CHECK(desk.place(Desk::market("demo", "EURUSD", "BUY", 0.01)).accepted());
}

TEST_CASE("nothing is traded while there is no price")
{
    Desk desk({fixtureAccounts(), {}}, false);
    CHECK(contains(refusedPlace(desk, Desk::market("demo", "EURUSD", "BUY", 1)), "no price for EURUSD"));
    CHECK(contains(
        refusedPlace(desk, Desk::pending("demo", "EURUSD", "BUY_LIMIT", 1, 1.08)), "no price for EURUSD"));
}

TEST_CASE("an id that is taken is not given to another trade")
{
    int calls = 0;
    const IdSource stuttering = [&calls] { return std::to_string(calls++ / 2); };
    Broker broker(fixtureSymbols(), stuttering, {fixtureAccounts(), {}});
    const std::vector<SymbolQuote> quotes{{EurUsd, fixtureQuotes()[EurUsd]}};
    static_cast<void>(broker.onPrices(quotes, fixtureTime));
    const PlaceRequest request = Desk::market("demo", "EURUSD", "BUY", 1);
    CHECK_EQ(broker.place(request, fixtureTime).tradeId, std::string("0"));
    CHECK_EQ(broker.place(request, fixtureTime).tradeId, std::string("1"));
    CHECK_EQ(broker.openTrades("demo").size(), std::size_t{2});
}

CHECK_MAIN()
