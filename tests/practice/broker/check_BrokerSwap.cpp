#include "BrokerFixture.h"

using namespace practice;

TEST_CASE("one midnight costs one night, and the balance feels it only when the position closes")
{
    Desk desk;
    const std::string id = desk.buy("demo", "EURUSD", 1);
    desk.now = (fixtureDay + 1) * dayMs - 1;
    CHECK(desk.prices(fixtureQuotes()).empty());
    desk.now += 1;
    const ChangeSet changes = desk.prices(fixtureQuotes());
    CHECK_EQ(tradeIn(changes, id).swap, -720); // -7.2 points x 100 000
    CHECK_EQ(desk.trade(id).pnl, -800 - 700 - 720);
    CHECK_EQ(desk.account("demo").balance, 10'000'000);
    CHECK_EQ(desk.account("demo").dayIndex, fixtureDay + 1);
    CHECK_EQ(desk.account("demo").dayStartEquity, 10'000'000 - 2'220);
    CHECK_EQ(desk.broker.figures("demo").equity, 10'000'000 - 2'220);
    CHECK(desk.prices(fixtureQuotes()).empty()); // the same midnight is not charged twice
    const CommandResult closed = desk.broker.close(id, desk.now);
    CHECK_EQ(tradeIn(closed.changes, id).swap, -720);
    CHECK_EQ(desk.account("demo").balance, 10'000'000 - 2'220);
}

TEST_CASE("every account's day turns, also without positions")
{
    Desk desk;
    desk.now += dayMs;
    const ChangeSet changes = desk.prices(fixtureQuotes());
    CHECK_EQ(changes.accounts.size(), fixtureAccounts().size());
    CHECK(changes.trades.empty());
    CHECK(changes.events.empty());
}

TEST_CASE("nights that passed while nobody ran are charged one by one")
{
    Desk desk;
    const std::string id = desk.sell("demo", "USDJPY", 0.5);
    Desk later(desk.broker.state(), false);
    later.now = fixtureTime + 3 * dayMs;
    later.prices(fixtureQuotes());
    // -17.8 points x 50 000 = -890 JPY / 150 = -5.9333 a night, rounded each night
    CHECK_EQ(later.trade(id).swap, 3 * -593);
}

TEST_CASE("a favourable swap is paid out")
{
    Desk desk;
    const std::string id = desk.buy("demo", "USDJPY", 1);
    desk.now += dayMs;
    desk.prices(fixtureQuotes());
    CHECK_EQ(desk.trade(id).swap, 627); // 9.4 points x 100 000 = 940 JPY / 150
}

TEST_CASE("a position pays only for midnights after it was opened, an order for none")
{
    Desk desk;
    const std::string order = desk.id(Desk::pending("demo", "EURUSD", "BUY_LIMIT", 1, 1.08));
    desk.now += dayMs; // no price came between: the account's day still is the old one
    const std::string id = desk.buy("demo", "EURUSD", 1);
    desk.prices(fixtureQuotes());
    CHECK_EQ(desk.trade(id).swap, 0);
    CHECK_EQ(desk.trade(order).swap, 0);
    desk.price(EurUsd, 1.07992, 1.08000);
    desk.now += dayMs;
    desk.price(EurUsd, 1.07993, 1.08001);
    CHECK_EQ(desk.trade(id).swap, -720);
    CHECK_EQ(desk.trade(order).swap, -720);
}

TEST_CASE("a clock that goes back neither charges nor refunds")
{
    Desk desk;
    const std::string id = desk.buy("demo", "EURUSD", 1);
    desk.now += 2 * dayMs;
    desk.prices(fixtureQuotes());
    const Trade trade = desk.trade(id);
    const Account account = desk.account("demo");
    desk.now -= 2 * dayMs;
    CHECK(desk.prices(fixtureQuotes()).trades.empty());
    desk.now += 2 * dayMs;
    CHECK(desk.prices(fixtureQuotes()).trades.empty());
    CHECK(desk.trade(id) == trade);
    CHECK(desk.account("demo") == account);
    CHECK_EQ(trade.swap, -1'440);
}

TEST_CASE("the day of an account without a position follows a clock that was years ahead")
{
    Desk desk;
    const std::int64_t day = desk.account("challenge").dayIndex;
    desk.now += 1000 * dayMs;
    desk.prices(fixtureQuotes());
    desk.now -= 1000 * dayMs;
    desk.prices(fixtureQuotes());
    CHECK_EQ(desk.account("challenge").dayIndex, day);
    const std::string id = desk.buy("challenge", "EURUSD", 1);
    desk.price(EurUsd, 1.07508, 1.07516); // 1 000 down
    desk.now += dayMs;
    desk.price(EurUsd, 1.07509, 1.07517);
    CHECK_EQ(desk.account("challenge").dayIndex, day + 1);
    CHECK_EQ(desk.account("challenge").dayStartEquity, desk.broker.figures("challenge").equity);
    CHECK_EQ(desk.trade(id).swap, -720);
}

CHECK_MAIN()
