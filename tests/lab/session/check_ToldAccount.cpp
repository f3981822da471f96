#include "practice/Check.h"

#include "lab/core/session/ToldAccount.h"

using namespace lab;

TEST_CASE("nothing is known before anything was told")
{
    const ToldAccount account("A");
    CHECK_EQ(account.balance(), practice::Cents(0));
    CHECK_EQ(account.equity(), practice::Cents(0));
    CHECK(account.positionsOn("EURUSD").empty());
    CHECK_EQ(account.toldAt(), practice::TimeMs(0));
}

TEST_CASE("positions count once the orders have been read too")
{
    ToldAccount account("A");
    CHECK(account.take({5, PositionsEvent{"A", {{"T", "EURUSD", -7}, {"U", "GBPUSD", 1}}}}));
    CHECK(account.positionsOn("EURUSD").empty());
    CHECK(!account.take({6, OrdersEvent{"B"}}));
    CHECK(account.positionsOn("EURUSD").empty());
    CHECK(account.take({7, OrdersEvent{"A"}}));
    CHECK_EQ(account.positionsOn("EURUSD").size(), std::size_t(1));
    CHECK_EQ(account.positionsOn("EURUSD").front(), std::string("T"));
    CHECK_EQ(account.toldAt(), practice::TimeMs(7));
}

TEST_CASE("the equity is the balance with the results that came last, which a list of accounts forgets")
{
    ToldAccount account("A");
    account.take({1, BalancesEvent{{{"B", 1}, {"A", 100}}}});
    account.take({2, PositionsEvent{"A", {{"T", "EURUSD", -7}, {"U", "GBPUSD", 1}}}});
    CHECK_EQ(account.equity(), practice::Cents(94));
    account.take({3, ResultsEvent{"A", {{"T", -9}}}});
    CHECK_EQ(account.equity(), practice::Cents(92));
    CHECK(!account.take({3, ResultsEvent{"B", {{"T", 50}}}}));
    CHECK_EQ(account.equity(), practice::Cents(92));
    account.take({4, BalancesEvent{{{"A", 90}}}});
    CHECK_EQ(account.balance(), practice::Cents(90));
    CHECK_EQ(account.equity(), practice::Cents(90));
    CHECK(!account.take({5, BalancesEvent{{{"B", 1}}}}));
}

CHECK_MAIN()
