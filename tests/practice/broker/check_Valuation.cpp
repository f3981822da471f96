#include "BrokerFixture.h"
#include "practice/core/broker/Valuation.h"

// Every expected number below was worked out by hand; the sums stand beside them.

using namespace practice;

TEST_CASE("one lot of EURUSD: margin, spread, commission and a close in profit")
{
    Desk desk;
    const std::string id = desk.buy("demo", "EURUSD", 1.0);
    const Trade open = desk.trade(id);
    CHECK_EQ(open.entryPrice, 1.08508);
    CHECK_EQ(open.margin, 108'508); // 100 000 x 1.08508 / 100 = 1 085.08
    CHECK_EQ(open.commission, 700); // 7.00 a lot
    CHECK_EQ(open.pnl, -800 - 700); // -0.00008 x 100 000 = -8.00, and the commission
    const AccountFigures figures = desk.broker.figures("demo");
    CHECK_EQ(figures.balance, 10'000'000);
    CHECK_EQ(figures.equity, 9'998'500);
    CHECK_EQ(figures.margin, 108'508);
    CHECK_EQ(figures.freeMargin, 9'889'992);

    desk.price(EurUsd, 1.08600, 1.08608);
    const CommandResult result = desk.broker.close(id, desk.now);
    REQUIRE(result.accepted());
    const Trade closed = tradeIn(result.changes, id);
    CHECK_EQ(closed.exitPrice, 1.08600);
    CHECK_EQ(closed.pnl, 9'200 - 700); // 0.00092 x 100 000 = 92.00
    CHECK_EQ(desk.account("demo").balance, 10'008'500);
}

TEST_CASE("a short USDJPY earns yen, which are paid in dollars at the rate of that moment")
{
    Desk desk;
    const std::string id = desk.sell("demo", "USDJPY", 0.5);
    CHECK_EQ(desk.trade(id).entryPrice, 149.995);
    CHECK_EQ(desk.trade(id).margin, 50'000); // 50 000 units of USD / 100, whatever the price
    CHECK_EQ(desk.trade(id).commission, 350);
    desk.price(UsdJpy, 149.000, 149.010);
    // (149.995 - 149.010) x 50 000 = 49 250 JPY; / 149.005 = 330.5258 USD
    CHECK_EQ(desk.trade(id).pnl, 33'053 - 350);
}

TEST_CASE("a cross pair's margin and profit go through the pound's rate and follow it alone")
{
    Desk desk;
    const std::string id = desk.buy("demo", "EURGBP", 2.0);
    CHECK_EQ(desk.trade(id).margin, 216'846); // 200 000 x 0.85710 x 1.265 / 100 = 2 168.463
    desk.price(EurGbp, 0.85800, 0.85810);
    CHECK_EQ(desk.trade(id).pnl, 22'770 - 1'400); // 0.00090 x 200 000 = 180 GBP x 1.265 = 227.70
    desk.price(GbpUsd, 1.27494, 1.27506);
    CHECK_EQ(desk.trade(id).pnl, 22'950 - 1'400); // 180 GBP x 1.275 = 229.50
    CHECK_EQ(desk.broker.figures("demo").openProfit, 21'550);
}

TEST_CASE("half a cent of a commission with decimals counts as a whole one")
{
    SymbolSpec spec = fixtureSymbols()[EurUsd];
    spec.commissionPerLot = 7.75;
    CHECK_EQ(commissionFor(spec, 2), 16); // 0.02 x 775 cents = 15.5
    CHECK_EQ(commissionFor(spec, 1), 8);
    CHECK_EQ(commissionFor(spec, 100), 775);
}

TEST_CASE("half a cent of a converted amount counts as a whole one")
{
    Desk desk;
    desk.price(GbpUsd, 1.00499, 1.00501); // mid 1.005, which is less in binary
    const std::string id = desk.buy("demo", "EURGBP", 0.1);
    desk.price(EurGbp, 0.85720, 0.85730);
    CHECK_EQ(desk.trade(id).pnl, 101 - 70); // 0.00010 x 10 000 = 1 GBP x 1.005 = 1.005
}

TEST_CASE("gold uses its own, lower leverage")
{
    Desk desk;
    const std::string id = desk.buy("demo", "XAUUSD", 0.10);
    CHECK_EQ(desk.trade(id).margin, 47'005); // 10 x 2 350.24 / 50 = 470.048
    CHECK_EQ(desk.trade(id).commission, 70);
    desk.price(Gold, 2360.00, 2360.24);
    CHECK_EQ(desk.trade(id).pnl, 9'760 - 70); // 9.76 x 10
}

TEST_CASE("bitcoin has no commission, and half a cent counts as a whole one on both sides")
{
    Desk desk;
    const std::string shortId = desk.sell("demo", "BTCUSD", 0.03);
    CHECK_EQ(desk.trade(shortId).margin, 38'400); // 0.03 x 64 000 / 5
    const std::string longId = desk.buy("demo", "BTCUSD", 0.01);
    desk.price(Bitcoin, 64018.50, 64030.00);
    CHECK_EQ(desk.trade(longId).pnl, 1); // 0.50 x 0.01 = 0.005
    desk.price(Bitcoin, 64017.50, 64030.00);
    CHECK_EQ(desk.trade(longId).pnl, -1);
    desk.price(Bitcoin, 62990.00, 63000.00);
    CHECK_EQ(desk.trade(shortId).pnl, 3'000); // 1 000 x 0.03
}

TEST_CASE("without a rate for the profit's currency nothing can be opened")
{
    Desk desk({fixtureAccounts(), {}}, false);
    desk.price(EurGbp, 0.85700, 0.85710);
    const CommandResult result = desk.place(Desk::market("demo", "EURGBP", "BUY", 1));
    REQUIRE(result.refusal.has_value());
    CHECK(result.refusal->message.find("no price") != std::string::npos);
    desk.price(GbpUsd, 1.26494, 1.26506);
    CHECK(desk.place(Desk::market("demo", "EURGBP", "BUY", 1)).accepted());
}

CHECK_MAIN()
