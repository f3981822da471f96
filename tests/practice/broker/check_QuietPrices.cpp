#include "BrokerFixture.h"

// Prices that stay within spans during which nothing happens need not be played one by one. What is quiet by
// mistake would be a stop loss that nobody sees.

using namespace practice;

namespace {

using Spans = std::vector<std::optional<PriceSpan>>;

bool quiet(const Desk& desk, std::size_t symbol, PriceSpan span)
{
    Spans spans(instrumentCount);
    spans[symbol] = span;
    return desk.broker.staysQuiet(spans);
}

} // namespace

TEST_CASE("levels are reached by the bid of a long position, at the widest spread")
{
    Desk desk;
    PlaceRequest request = Desk::market("demo", "EURUSD", "BUY", 1);
    request.stopLoss = 1.08;
    request.takeProfit = 1.095;
    desk.id(request);
    CHECK(quiet(desk, EurUsd, {1.08010, 1.09490, 0.00008}));
    CHECK(!quiet(desk, EurUsd, {1.08010, 1.09490, 0.00012}));
    CHECK(!quiet(desk, EurUsd, {1.08010, 1.09510, 0.00008}));
}

TEST_CASE("orders are triggered by the ask, at the narrowest spread below and at the widest above")
{
    Desk limit;
    limit.id(Desk::pending("demo", "EURUSD", "BUY_LIMIT", 1, 1.08));
    CHECK(quiet(limit, EurUsd, {1.08010, 1.09, 0.00020}));
    CHECK(!quiet(limit, EurUsd, {1.07990, 1.09, 0.00020}));
    Desk stop;
    stop.id(Desk::pending("demo", "EURUSD", "BUY_STOP", 1, 1.09));
    CHECK(quiet(stop, EurUsd, {1.08, 1.08990, 0.00008}));
    CHECK(!quiet(stop, EurUsd, {1.08, 1.08990, 0.00012}));
}

TEST_CASE("a challenge is as near to its daily loss as the worst price of the span")
{
    Desk desk;
    desk.buy("challenge", "EURUSD", 3); // fails with a loss of 1 250, at 1.08508 - 1 229 / 300 000 = 1.08098
    CHECK(quiet(desk, EurUsd, {1.08110, 1.09, 0.00004}));
    CHECK(!quiet(desk, EurUsd, {1.08100, 1.09, 0.00004}));
    Desk opposite;
    opposite.sell("challenge", "EURUSD", 3); // at 1.085 + 1 229 / 300 000 = 1.08910
    CHECK(quiet(opposite, EurUsd, {1.08, 1.08900, 0.00004}));
    CHECK(!quiet(opposite, EurUsd, {1.08, 1.08908, 0.00004}));
}

TEST_CASE("opposite positions in one symbol are never both at their worst")
{
    Desk desk;
    desk.buy("tight", "EURUSD", 0.8);
    desk.sell("tight", "EURUSD", 0.8);
    CHECK(quiet(desk, EurUsd, {1.0, 1.2, 0.00004}));
}

TEST_CASE("a position in a symbol without a span counts with the result that it has")
{
    Desk gaining;
    gaining.buy("tight", "EURUSD", 1);
    gaining.price(EurUsd, 1.105, 1.10508); // 1 992 more than it was opened at
    CHECK(gaining.broker.staysQuiet(Spans(instrumentCount)));

    Desk losing;
    losing.buy("tight", "EURUSD", 0.5);
    losing.buy("tight", "GBPUSD", 0.5);
    losing.price(EurUsd, 1.075, 1.07508); // 507.50 less; half of the margin is 587.54
    CHECK(quiet(losing, GbpUsd, {1.255, 1.27, 0.00006}));
    CHECK(!quiet(losing, GbpUsd, {1.246, 1.27, 0.00006}));
}

CHECK_MAIN()
