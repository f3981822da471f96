#include "practice/Check.h"
#include "practice/storage/TemporaryFolder.h"

#include "practice/storage/Database.h"
#include "practice/storage/DrawingStore.h"
#include "practice/storage/StorageError.h"
#include "practice/storage/TradeStore.h"
#include "practice/storage/UserStore.h"

#include <limits>

using namespace practice;

namespace {

struct Fixture {
    TemporaryFolder folder;
    Database database{folder / "x.db"};
    UserStore users{database};
    TradeStore trades{database};
    DrawingStore drawings{database};

    Fixture()
    {
        users.add({"u1", "Trader@Example.test", "T", "hash"});
        users.add({"u2", "other@example.test", "O", "hash"});
        trades.addAccounts("u1", {account("a1"), account("a2")});
        trades.addAccounts("u2", {account("b1")});
    }

    static Account account(const std::string& id)
    {
        Account made;
        made.id = id;
        made.kind = AccountKind::Plan;
        made.plan = {"Two Steps", 2};
        made.phase = 2;
        made.isFunded = true;
        made.status = AccountStatus::Passed;
        made.balance = -123;
        made.initialBalance = 2'500'000;
        made.leverage = 50;
        made.dayStartEquity = 77;
        made.dayIndex = 19'000;
        return made;
    }

    static Trade trade(const std::string& id, TradeStatus status, TimeMs closedAt)
    {
        Trade made;
        made.id = id;
        made.accountId = "a1";
        made.symbol = "EURUSD";
        made.side = Side::Sell;
        made.orderKind = OrderKind::SellStop;
        made.status = status;
        made.lots = 123;
        made.entryPrice = 0.1 + 0.2;
        made.exitPrice = 1.0851234567890123;
        made.pendingPrice = 1.07;
        made.stopLoss = 1.5;
        made.takeProfit = 0.5;
        made.pnl = std::numeric_limits<Cents>::min();
        made.margin = 4;
        made.swap = -5;
        made.commission = 6;
        made.createdAt = 1000;
        made.updatedAt = 2000;
        made.closedAt = closedAt;
        made.closeReason = CloseReason::StopLoss;
        made.comment = "it's \"mine\"";
        return made;
    }

    void store(const std::vector<Trade>& rows)
    {
        ChangeSet changes;
        changes.trades = rows;
        Transaction transaction(database);
        trades.store(changes);
        transaction.commit();
    }
};

} // namespace

TEST_CASE("accounts and live trades come back as they were, in their order")
{
    Fixture f;
    const Trade open = Fixture::trade("t1", TradeStatus::Open, 0);
    const Trade pending = Fixture::trade("t2", TradeStatus::Pending, 0);
    f.store({pending, open, Fixture::trade("t3", TradeStatus::Closed, 9),
        Fixture::trade("t4", TradeStatus::Cancelled, 9)});
    const BrokerState state = f.trades.load();
    CHECK(state.accounts
        == std::vector<Account>({Fixture::account("a1"), Fixture::account("a2"), Fixture::account("b1")}));
    CHECK(state.liveTrades == std::vector<Trade>({pending, open}));
}

TEST_CASE("storing a trade again changes it and adds no second one")
{
    Fixture f;
    Trade trade = Fixture::trade("t1", TradeStatus::Pending, 0);
    f.store({trade});
    trade.status = TradeStatus::Closed;
    trade.entryPrice = 2;
    trade.pendingPrice = 3;
    trade.createdAt = 5;
    trade.closedAt = 10;
    trade.closeReason = CloseReason::TakeProfit;
    f.store({trade});
    CHECK(f.trades.load().liveTrades.empty());
    CHECK(f.trades.history("a1", 10) == std::vector<Trade>({trade}));
}

TEST_CASE("a stored account takes over everything that can change")
{
    Fixture f;
    ChangeSet changes;
    Account account = Fixture::account("a1");
    account.phase = 1;
    account.isFunded = false;
    account.status = AccountStatus::Failed;
    account.balance = 5;
    account.dayStartEquity = 6;
    account.dayIndex = 7;
    changes.accounts = {account};
    f.trades.store(changes);
    CHECK(f.trades.load().accounts.front() == account);
    CHECK_EQ(f.trades.accountOwners().at("b1"), std::string("u2"));
}

TEST_CASE("history is what ended in the account, the last first, but no order that its trader cancelled")
{
    Fixture f;
    Trade foreign = Fixture::trade("t9", TradeStatus::Closed, 99);
    foreign.accountId = "a2";
    const auto cancelled = [](const char* id, TimeMs time, CloseReason reason) {
        Trade trade = Fixture::trade(id, TradeStatus::Cancelled, time);
        trade.closeReason = reason;
        return trade;
    };
    f.store({Fixture::trade("t1", TradeStatus::Closed, 10), Fixture::trade("t2", TradeStatus::Closed, 30),
        Fixture::trade("t3", TradeStatus::Closed, 20), cancelled("t4", 40, CloseReason::Manual),
        cancelled("t5", 25, CloseReason::NoMargin), foreign});
    const auto ids = [&](int limit) {
        std::string text;
        for (const Trade& trade : f.trades.history("a1", limit))
            text += trade.id + ' ';
        return text;
    };
    CHECK_EQ(ids(10), std::string("t2 t5 t3 t1 "));
    CHECK_EQ(ids(2), std::string("t2 t5 "));
}

TEST_CASE("the latest moment is a trade's or the beginning of an account's day, whichever is later")
{
    Fixture f;
    const TimeMs day = 19'000 * dayMs;
    CHECK_EQ(f.trades.latestMoment(), day);
    Trade trade = Fixture::trade("t1", TradeStatus::Open, 0);
    f.store({trade});
    CHECK_EQ(f.trades.latestMoment(), day);
    trade.updatedAt = day + 5;
    f.store({trade});
    CHECK_EQ(f.trades.latestMoment(), day + 5);

    TemporaryFolder folder;
    Database empty(folder / "x.db");
    CHECK_EQ(TradeStore(empty).latestMoment(), TimeMs(0));
}

TEST_CASE("a trade of an account that does not exist is refused")
{
    Fixture f;
    Trade trade = Fixture::trade("t1", TradeStatus::Open, 0);
    trade.accountId = "nobody";
    CHECK_THROWS(f.store({trade}), StorageError);
    CHECK(f.trades.load().liveTrades.empty());
}

TEST_CASE("an unreadable word in a row is an error, not a guess")
{
    Fixture f;
    f.store({Fixture::trade("t1", TradeStatus::Open, 0)});
    f.database.execute("UPDATE trades SET side = 'SIDEWAYS'");
    CHECK_THROWS(f.trades.load(), StorageError);
}

TEST_CASE("users are found by their address in any case")
{
    Fixture f;
    CHECK(f.users.byEmail("TRADER@example.TEST").has_value());
    CHECK(!f.users.byEmail("trader@example"));
    CHECK(!f.users.byEmail("%"));
    CHECK_THROWS(f.users.add({"u3", "trader@EXAMPLE.test", "", ""}), StorageError);
}

TEST_CASE("old sessions end when there are too many, only those of that user, and no others")
{
    Fixture f;
    f.users.addToken("other", "u2", 0);
    for (int i = 0; i < UserStore::sessionsPerUser + 5; ++i)
        f.users.addToken("token" + std::to_string(i), "u1", 100 + i);
    CHECK(f.users.userOfToken("token0") == "u1");
    f.users.addToken("late", "u1", UserStore::oldAge + 1000);
    CHECK(!f.users.userOfToken("token5"));
    CHECK(f.users.userOfToken("token6") == "u1");
    CHECK(f.users.userOfToken("token" + std::to_string(UserStore::sessionsPerUser + 4)) == "u1");
    CHECK(f.users.userOfToken("late") == "u1");
    CHECK(f.users.userOfToken("other") == "u2");
    // A clock that was set back must not make the newest session the oldest.
    f.users.addToken("fromThePast", "u1", 1);
    CHECK(f.users.userOfToken("fromThePast") == "u1");
}

TEST_CASE("drawings are kept per user, symbol and account in the order of their making")
{
    Fixture f;
    f.drawings.add("u1", {"d2", "a1", "EURUSD", "hline", "#ffffff", "[1]"});
    f.drawings.add("u1", {"d1", "a1", "EURUSD", "vline", "#ffffff", "[2]"});
    f.drawings.add("u1", {"d3", "", "EURUSD", "hline", "#ffffff", "[]"});
    f.drawings.add("u2", {"d4", "a1", "EURUSD", "hline", "#ffffff", "[]"});
    const auto found = f.drawings.list("u1", "EURUSD", "a1");
    CHECK_EQ(found.size(), std::size_t(2));
    CHECK(found.front().id == "d2" && found.back().points == "[2]");
    CHECK_EQ(f.drawings.list("u1", "EURUSD", "").size(), std::size_t(1));
    CHECK(f.drawings.list("u1", "GBPUSD", "a1").empty());
    CHECK(!f.drawings.remove("u1", "d4"));
    CHECK(!f.drawings.find("u1", "d4"));
    CHECK(f.drawings.remove("u1", "d2"));
    CHECK(!f.drawings.remove("u1", "d2"));
}

TEST_CASE("a drawing comes back with all that it was made of, and with what its trader changed")
{
    Fixture f;
    f.drawings.add("u1", {"d1", "a1", "EURUSD", "hline", "#112233", "[1]"});
    f.drawings.add("u1", {"d2", "a1", "EURUSD", "vline", "#445566", "[2]"});
    f.drawings.update("u1", {"d1", "", "", "", "#778899", "[3]"});
    f.drawings.update("u2", {"d2", "", "", "", "#000000", "[4]"});
    const auto whole = [](const Drawing& drawing) {
        return drawing.id + ' ' + drawing.accountId + ' ' + drawing.symbol + ' ' + drawing.tool + ' '
            + drawing.color + ' ' + drawing.points;
    };
    const auto found = f.drawings.list("u1", "EURUSD", "a1");
    REQUIRE(found.size() == 2);
    CHECK_EQ(whole(found[0]), std::string("d1 a1 EURUSD hline #778899 [3]"));
    CHECK_EQ(whole(found[1]), std::string("d2 a1 EURUSD vline #445566 [2]"));
    const auto second = f.drawings.find("u1", "d2");
    REQUIRE(second.has_value());
    CHECK_EQ(whole(*second), std::string("d2 a1 EURUSD vline #445566 [2]"));
}

CHECK_MAIN()
