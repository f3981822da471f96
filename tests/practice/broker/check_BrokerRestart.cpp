#include "BrokerFixture.h"

#include <stdexcept>

using namespace practice;

namespace {

/// A desk with a bit of everything.
std::vector<std::string> populate(Desk& desk)
{
    PlaceRequest guarded = Desk::market("demo", "EURUSD", "BUY", 1);
    guarded.stopLoss = 1.08;
    return {desk.id(guarded), desk.sell("demo", "EURGBP", 0.4),
        desk.id(Desk::pending("demo", "XAUUSD", "SELL_STOP", 0.2, 2300)), desk.buy("challenge", "USDJPY", 1)};
}

} // namespace

TEST_CASE("a broker restored from its state is the same broker")
{
    Desk desk;
    const std::vector<std::string> ids = populate(desk);
    Desk later(desk.broker.state(), false);
    CHECK(later.broker.state() == desk.broker.state());
    CHECK(later.broker.figures("demo") == desk.broker.figures("demo")); // before any price
    later.prices(fixtureQuotes());
    CHECK(later.broker.state() == desk.broker.state());
    CHECK_EQ(tradeIn(later.price(EurUsd, 1.079, 1.07908), ids[0]).closeReason, CloseReason::StopLoss);
}

TEST_CASE("a level that the market passed while nobody ran closes at the first price")
{
    Desk desk;
    const std::vector<std::string> ids = populate(desk);
    Desk later(desk.broker.state(), false);
    const Trade closed = tradeIn(later.price(EurUsd, 1.05, 1.05008), ids[0]);
    CHECK_EQ(closed.closeReason, CloseReason::StopLoss);
    CHECK_EQ(closed.exitPrice, 1.05);
}

TEST_CASE("a position whose symbol is gone stays, keeps its value and can wait")
{
    Desk desk;
    const std::string id = desk.buy("demo", "EURUSD", 1);
    const std::string order = desk.id(Desk::pending("demo", "EURUSD", "BUY_LIMIT", 1, 1.08));
    std::vector<SymbolSpec> symbols = fixtureSymbols();
    symbols.erase(symbols.begin() + EurUsd);
    Broker broker(symbols, UuidSource(1), desk.broker.state());
    const std::vector<SymbolQuote> quotes{{0, {1.2, 1.3}}};
    static_cast<void>(broker.onPrices(quotes, fixtureTime + dayMs));
    REQUIRE(broker.trade(id) != nullptr);
    CHECK_EQ(broker.trade(id)->pnl, -1'500);
    CHECK(!broker.close(id, fixtureTime).accepted());
    CHECK(!broker.modify(id, {0.0, {}, {}}, fixtureTime).accepted());
    CHECK(broker.cancel(order, fixtureTime).accepted());
}

TEST_CASE("a state that contradicts itself is refused")
{
    Desk desk;
    populate(desk);
    const BrokerState good = desk.broker.state();
    const auto restore = [](const BrokerState& state) { Broker(fixtureSymbols(), UuidSource(1), state); };
    BrokerState twice = good;
    twice.liveTrades.push_back(twice.liveTrades.front());
    CHECK_THROWS((restore(twice), 0), std::invalid_argument);
    BrokerState orphan = good;
    orphan.liveTrades.front().accountId = "nobody";
    CHECK_THROWS((restore(orphan), 0), std::invalid_argument);
    BrokerState finished = good;
    finished.liveTrades.front().status = TradeStatus::Closed;
    CHECK_THROWS((restore(finished), 0), std::invalid_argument);
    BrokerState account = good;
    account.accounts.push_back(account.accounts.front());
    CHECK_THROWS((restore(account), 0), std::invalid_argument);
}

TEST_CASE("every command that could not be stored can be taken back completely")
{
    Desk desk;
    const std::vector<std::string> ids = populate(desk);
    const BrokerState before = desk.broker.state();
    const AccountFigures figures = desk.broker.figures("demo");
    const auto undone = [&](const CommandResult& result) {
        CHECK(result.accepted());
        CHECK(desk.broker.state() != before);
        desk.broker.undo(result.changes);
        CHECK(desk.broker.state() == before);
        CHECK(desk.broker.figures("demo") == figures);
    };
    undone(desk.place(Desk::market("demo", "BTCUSD", "BUY", 0.5)));
    undone(desk.place(Desk::pending("demo", "EURUSD", "BUY_STOP", 0.5, 1.2)));
    undone(desk.broker.close(ids[0], desk.now));
    undone(desk.broker.cancel(ids[2], desk.now));
    undone(desk.broker.modify(ids[0], {1.07, 1.1, {}}, desk.now + 1));
}

TEST_CASE("what a price caused happens again with the next price when it could not be stored")
{
    Desk desk;
    const std::vector<std::string> ids = populate(desk);
    desk.now += dayMs;
    std::vector<Quote> quotes = fixtureQuotes();
    quotes[EurUsd] = {1.07900, 1.07908};
    quotes[Gold] = {2290.00, 2290.24};
    const ChangeSet first = desk.prices(quotes);
    CHECK(first.trades.size() >= 3 && first.accounts.size() == fixtureAccounts().size());
    desk.broker.undo(first);
    CHECK(desk.trade(ids[0]).status == TradeStatus::Open);
    CHECK(desk.trade(ids[2]).status == TradeStatus::Pending);
    CHECK_EQ(desk.trade(ids[0]).swap, 0);
    CHECK_EQ(desk.account("demo").balance, 10'000'000);
    const ChangeSet second = desk.prices(quotes); // the same prices again
    CHECK(second.accounts == first.accounts);
    CHECK(second.trades == first.trades);
    CHECK(second.events == first.events);
}

CHECK_MAIN()
