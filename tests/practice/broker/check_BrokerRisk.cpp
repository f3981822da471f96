#include "BrokerFixture.h"

#include "practice/core/broker/RecordText.h"
#include "practice/core/broker/RiskRules.h"

using namespace practice;

TEST_CASE("the limits are reached at the cent, not before")
{
    Account account = makeAccount("a", AccountKind::Plan, 10'000, 100);
    account.dayStartEquity = 10'000'00;
    CHECK(!dailyLossReached(account, 9'500'01));
    CHECK(dailyLossReached(account, 9'500'00));
    account.dayStartEquity = 9'400'00;
    CHECK(!dailyLossReached(account, 9'000'00)); // 95 % of 9 400 is 8 930
    CHECK(!totalLossReached(account, 9'000'01));
    CHECK(totalLossReached(account, 9'000'00));
    account.balance = 10'999'99;
    CHECK(!targetReached(account));
    account.balance = 11'000'00;
    CHECK(targetReached(account));
    account.isFunded = true;
    CHECK(!targetReached(account));
    CHECK(!stopOutReached(500'01, 1'000'00));
    CHECK(stopOutReached(500'00, 1'000'00));
    CHECK(!stopOutReached(-1, 0));
}

TEST_CASE("a daily loss of five percent fails the challenge, closes and cancels everything")
{
    Desk desk;
    // 25 000: the limit is a loss of 1 250.00. Three lots lose 3.00 a point; opening cost 24 + 21.
    const std::string id = desk.buy("challenge", "EURUSD", 3);
    const std::string other = desk.sell("challenge", "GBPUSD", 0.01);
    const std::string order = desk.id(Desk::pending("challenge", "EURUSD", "BUY_LIMIT", 1, 1.05));
    CHECK(desk.price(EurUsd, 1.08101, 1.08109).empty()); // -1 221.00 - 21.00 - 0.12 - 0.07
    CHECK(desk.account("challenge").status == AccountStatus::Active);
    const ChangeSet changes = desk.price(EurUsd, 1.08098, 1.08106); // -1 230.00 - 21.00 - 0.19
    CHECK_EQ(tradeIn(changes, id).closeReason, CloseReason::Risk);
    CHECK_EQ(tradeIn(changes, id).pnl, -123'000 - 2'100);
    CHECK_EQ(tradeIn(changes, other).closeReason, CloseReason::Risk);
    CHECK(tradeIn(changes, order).status == TradeStatus::Cancelled);
    for (const OrdersChanged& event : eventsOf<OrdersChanged>(changes))
        CHECK_EQ(event.closeReason, CloseReason::Risk);
    CHECK_EQ(desk.account("challenge").balance, 2'500'000 - 125'100 - 19);
    CHECK(desk.account("challenge").status == AccountStatus::Failed);
    const auto updates = eventsOf<AccountUpdated>(changes);
    REQUIRE(updates.size() == 1);
    CHECK(updates[0].account == desk.account("challenge"));
    CHECK(std::holds_alternative<AccountUpdated>(changes.events.back()));
    CHECK(!desk.place(Desk::market("challenge", "EURUSD", "BUY", 0.01)).accepted());
}

TEST_CASE("what a challenge that has failed still holds is closed with the first prices for it")
{
    Desk before;
    const std::string id = before.sell("challenge", "GBPUSD", 0.01);
    const std::string order = before.id(Desk::pending("challenge", "GBPUSD", "BUY_LIMIT", 1, 1.2));
    BrokerState state = before.broker.state();
    state.accounts[2].status = AccountStatus::Failed;
    Desk desk(state, false);
    const ChangeSet changes = desk.prices(fixtureQuotes());
    REQUIRE(changes.trades.size() == 2);
    CHECK(tradeIn(changes, id).status == TradeStatus::Closed);
    CHECK_EQ(tradeIn(changes, id).closeReason, CloseReason::Risk);
    CHECK(tradeIn(changes, order).status == TradeStatus::Cancelled);
    CHECK(desk.prices(fixtureQuotes()).empty());
}

TEST_CASE("losses of several days fail the account at ten percent of the initial balance")
{
    std::vector<Account> accounts = fixtureAccounts();
    accounts[4].balance = accounts[4].dayStartEquity = 45'100'00; // yesterday's losses
    Desk desk({accounts, {}});
    desk.buy("funded", "EURUSD", 1);                                // -15.00
    CHECK(desk.price(EurUsd, 1.08424, 1.08432).empty());            // -84.00 - 7.00
    const ChangeSet changes = desk.price(EurUsd, 1.08415, 1.08423); // -93.00 - 7.00: 45 000.00
    CHECK_EQ(changes.trades.size(), std::size_t{1});
    CHECK(desk.account("funded").status == AccountStatus::Failed);
    CHECK_EQ(desk.account("funded").balance, 45'000'00);
}

TEST_CASE("demo accounts may lose as much as they like")
{
    Desk desk;
    desk.buy("demo", "EURUSD", 50);
    CHECK(desk.price(EurUsd, 1.08208, 1.08216).empty()); // 300 points at 50.00, commission 350.00
    CHECK_EQ(desk.broker.figures("demo").equity, 10'000'000 - 1'500'000 - 35'000);
    CHECK(desk.account("demo").status == AccountStatus::Active);
}

TEST_CASE("a new day starts a new daily limit")
{
    Desk desk;
    desk.buy("challenge", "EURUSD", 3);
    CHECK(desk.price(EurUsd, 1.08200, 1.08208).empty()); // -945.00
    desk.now += dayMs;
    desk.price(EurUsd, 1.08200, 1.08208);
    // Swap 3 x -7.20: the day starts at 25 000 - 945.00 - 21.60.
    CHECK_EQ(desk.account("challenge").dayStartEquity, 2'403'340);
    desk.price(EurUsd, 1.08100, 1.08108);
    CHECK(desk.account("challenge").status == AccountStatus::Active); // -1 266.60 in all, -300.00 today
}

TEST_CASE("the target counts once the positions are closed, and the next phase starts afresh")
{
    Desk desk;
    const std::string id = desk.buy("challenge", "EURUSD", 5);
    const std::string order = desk.id(Desk::pending("challenge", "EURUSD", "BUY_LIMIT", 1, 1.05));
    CHECK(desk.price(EurUsd, 1.09100, 1.09108).empty()); // 2 960.00 - 35.00 open
    CHECK_EQ(desk.account("challenge").phase, 1);
    const CommandResult result = desk.broker.close(id, desk.now);
    REQUIRE(result.accepted());
    const Account account = desk.account("challenge");
    CHECK_EQ(account.phase, 2);
    CHECK(account.status == AccountStatus::Active);
    CHECK_EQ(account.balance, 2'500'000);
    CHECK_EQ(account.dayStartEquity, 2'500'000);
    CHECK_EQ(tradeIn(result.changes, id).pnl, 292'500);
    CHECK_EQ(tradeIn(result.changes, order).closeReason, CloseReason::Phase);
    const auto told = eventsOf<OrdersChanged>(result.changes);
    REQUIRE(told.size() == 2);
    CHECK_EQ(told[1].tradeId, order);
    CHECK_EQ(told[1].closeReason, CloseReason::Phase);
    const auto updates = eventsOf<AccountUpdated>(result.changes);
    REQUIRE(updates.size() == 1);
    CHECK(updates[0].account == account);
}

TEST_CASE("the target waits while another position is open")
{
    Desk desk;
    const std::string first = desk.buy("challenge", "EURUSD", 5);
    const std::string second = desk.buy("challenge", "GBPUSD", 0.01);
    desk.price(EurUsd, 1.09100, 1.09108);
    REQUIRE(desk.broker.close(first, desk.now).accepted());
    CHECK_EQ(desk.account("challenge").phase, 1);
    REQUIRE(desk.broker.close(second, desk.now).accepted());
    CHECK_EQ(desk.account("challenge").phase, 2);
}

TEST_CASE("a take profit that reaches the target of the last phase passes the challenge")
{
    Desk desk;
    PlaceRequest request = Desk::market("single", "EURUSD", "BUY", 2);
    request.takeProfit = 1.09100;
    const std::string id = desk.id(request);
    const ChangeSet changes = desk.price(EurUsd, 1.09100, 1.09108); // 1 184.00 - 14.00
    CHECK_EQ(tradeIn(changes, id).closeReason, CloseReason::TakeProfit);
    CHECK(desk.account("single").status == AccountStatus::Passed);
    CHECK_EQ(desk.account("single").balance, 1'117'000);
    CHECK(!desk.place(Desk::market("single", "EURUSD", "BUY", 0.01)).accepted());
}

TEST_CASE("a funded account has no target")
{
    Desk desk;
    const std::string id = desk.buy("funded", "EURUSD", 10);
    desk.price(EurUsd, 1.10000, 1.10008);
    REQUIRE(desk.broker.close(id, desk.now).accepted());
    CHECK(desk.account("funded").balance > 55'000'00);
    CHECK(desk.account("funded").status == AccountStatus::Active);
    CHECK_EQ(desk.account("funded").phase, 2);
}

TEST_CASE("a stop-out closes the largest loser first and stops when the level is above the limit")
{
    Desk desk;
    const std::string large = desk.buy("demo", "EURUSD", 60);  // margin 65 104.80
    const std::string small = desk.sell("demo", "GBPUSD", 20); // margin 25 298.80
    // Margin 90 403.60, limit 45 201.80. Equity = 100 000 - 420 - 140 - 240 (GBPUSD's spread) - 60 a point.
    CHECK(desk.price(EurUsd, 1.07609, 1.07617).empty()); // 899 points: 45 260.00
    CHECK_EQ(desk.broker.figures("demo").equity, 4'526'000);
    const ChangeSet changes = desk.price(EurUsd, 1.07608, 1.07616); // 900 points: 45 200.00
    REQUIRE(changes.trades.size() == 1);
    CHECK_EQ(tradeIn(changes, large).closeReason, CloseReason::StopOut);
    CHECK_EQ(tradeIn(changes, large).pnl, -5'400'000 - 42'000);
    CHECK_EQ(desk.trade(small).pnl, -24'000 - 14'000);
    CHECK_EQ(desk.broker.figures("demo").balance, 10'000'000 - 5'442'000);
    CHECK(eventsOf<OrdersChanged>(changes)
        == std::vector<OrdersChanged>{{"demo", large, false, CloseReason::StopOut}});
}

TEST_CASE("a stop-out goes on until nothing is left when it must")
{
    Desk desk;
    desk.buy("demo", "EURUSD", 45);
    desk.buy("demo", "EURUSD", 46);
    const ChangeSet changes = desk.price(EurUsd, 1.07500, 1.07508);
    CHECK_EQ(changes.trades.size(), std::size_t{2});
    CHECK_EQ(desk.broker.figures("demo").margin, 0);
    CHECK(desk.account("demo").status == AccountStatus::Active);
}

TEST_CASE("an account that a gap takes below zero is set to zero, with a line of its own")
{
    Desk desk;
    const std::string id = desk.buy("tight", "EURUSD", 1);
    const BrokerState before = desk.broker.state();
    const ChangeSet changes = desk.price(EurUsd, 1.05, 1.0501); // 3 500 of 2 000 USD
    const Trade lost = tradeIn(changes, id);
    CHECK_EQ(lost.closeReason, CloseReason::StopOut);
    CHECK_EQ(lost.pnl, -351'500);
    CHECK_EQ(desk.account("tight").balance, 0);
    REQUIRE(changes.trades.size() == 2);
    const Trade& line = changes.trades.back();
    CHECK(line.id != id && !line.id.empty());
    CHECK_EQ(line.accountId, std::string("tight"));
    CHECK_EQ(line.pnl, 151'500);
    CHECK(line.status == TradeStatus::Closed);
    CHECK_EQ(toText(line.orderKind), std::string_view("BALANCE"));
    CHECK_EQ(line.closedAt, desk.now);
    CHECK(!line.comment.empty());
    CHECK(!eventsOf<OrdersChanged>(changes).empty()
        && eventsOf<OrdersChanged>(changes).back() == OrdersChanged{"tight", line.id});

    // What could not be stored happens again, once.
    desk.broker.undo(changes);
    CHECK(desk.broker.state().accounts == before.accounts);
    CHECK_EQ(desk.price(EurUsd, 1.05, 1.0501).trades.size(), std::size_t{2});
    CHECK_EQ(desk.account("tight").balance, 0);
    CHECK(desk.price(EurUsd, 1.04, 1.0401).empty());
}

TEST_CASE("a balance below zero waits for the positions that may make up for it")
{
    Desk desk;
    const std::string loser = desk.buy("tight", "EURUSD", 1);
    const std::string winner = desk.buy("tight", "GBPUSD", 0.5);
    desk.prices({{1.05, 1.0501}, {1.33, 1.3301}}); // -3 500 and +3 247 USD
    CHECK(desk.broker.close(loser, desk.now).accepted());
    CHECK(desk.account("tight").balance < 0);
    CHECK_EQ(desk.broker.close(winner, desk.now).changes.trades.size(), std::size_t{1});
    CHECK(desk.account("tight").balance > 0);
}

TEST_CASE("a gap that takes several positions leaves one line")
{
    Desk desk;
    const std::string small = desk.buy("tight", "EURUSD", 0.01);
    const std::string big = desk.buy("tight", "GBPUSD", 1);
    const ChangeSet gap = desk.prices({{1.0, 1.0001}, {1.2, 1.2001}});
    CHECK(tradeIn(gap, small).status == TradeStatus::Closed);
    CHECK(tradeIn(gap, big).status == TradeStatus::Closed);
    REQUIRE(gap.trades.size() == 3);
    CHECK_EQ(200'000 + tradeIn(gap, small).pnl + tradeIn(gap, big).pnl + gap.trades.back().pnl, 0);
    CHECK_EQ(desk.account("tight").balance, 0);
}

TEST_CASE("a challenge that failed begins anew, with nothing left of what it had open")
{
    Desk desk;
    BrokerState state = desk.broker.state();
    state.accounts[2].phase = 2;
    state.accounts[2].dayStartEquity = 2'600'000;
    Desk failed(state);
    failed.buy("challenge", "EURUSD", 3);
    failed.price(EurUsd, 1.08, 1.08008);
    REQUIRE(failed.account("challenge").status == AccountStatus::Failed);
    const Cents left = failed.account("challenge").balance;
    const Account other = failed.account("demo");
    failed.now += dayMs;
    const ChangeSet changes = failed.broker.reset("challenge", failed.now);
    const Account account = failed.account("challenge");
    CHECK(account.status == AccountStatus::Active);
    CHECK_EQ(account.phase, 1);
    CHECK_EQ(account.balance, 2'500'000);
    CHECK_EQ(account.dayStartEquity, 2'500'000);
    CHECK_EQ(account.dayIndex, fixtureDay + 1);
    REQUIRE(changes.trades.size() == 1);
    CHECK_EQ(changes.trades[0].pnl, 2'500'000 - left);
    CHECK(failed.account("demo") == other);
    failed.broker.undo(changes);
    CHECK_EQ(failed.account("challenge").balance, left);
    CHECK(failed.broker.reset("nobody", failed.now).empty());
}

TEST_CASE("a reset cancels positions and orders at no cost, and needs no price")
{
    Desk desk;
    const std::string position = desk.buy("funded", "EURUSD", 1);
    const std::string order = desk.id(Desk::pending("funded", "EURUSD", "BUY_LIMIT", 1, 1.05));
    Desk unpriced(desk.broker.state(), false);
    const ChangeSet changes = unpriced.broker.reset("funded", unpriced.now);
    for (const std::string& id : {position, order}) {
        CHECK(tradeIn(changes, id).status == TradeStatus::Cancelled);
        CHECK_EQ(tradeIn(changes, id).closeReason, CloseReason::Reset);
        CHECK_EQ(tradeIn(changes, id).pnl, 0);
        CHECK_EQ(tradeIn(changes, id).commission, 0);
    }
    CHECK_EQ(changes.trades.size(), std::size_t{2}); // the balance was never another
    CHECK(unpriced.account("funded").isFunded);
    CHECK_EQ(unpriced.account("funded").phase, 2);
    CHECK_EQ(unpriced.broker.figures("funded").margin, 0);
    CHECK_EQ(unpriced.broker.figures("funded").equity, 5'000'000);
}

TEST_CASE("nobody places an order that only changes a balance")
{
    Desk desk;
    PlaceRequest request = Desk::market("demo", "EURUSD", "BUY", 1);
    request.orderKind = "BALANCE";
    CHECK(!desk.place(request).accepted());
    request.type = "";
    request.pendingPrice = 1.0;
    CHECK(!desk.place(request).accepted());
}

CHECK_MAIN()
