// At which price and moment levels are filled.

#include "lab/account/SessionFixture.h"

using namespace lab;

namespace {

// When a buy at ten o'clock is closed whose take profit is crossed on the way to 1.08696, so many
// milliseconds later.
TimeMs exitOffset(double takeProfit, TimeMs length)
{
    Session session;
    session.price(0, 108'500);
    session->order(Side::Buy, 1, none, takeProfit);
    session.price(length, 108'700);
    return session.finish().trades.at(0).closeTime - tenOClock;
}

} // namespace

TEST_CASE("a take profit on the way is filled at its level and not at the end of the way")
{
    Session session;
    session.price(0, 108'500);
    session->order(Side::Buy, 1, 1.08400, 1.08600);
    session.price(20 * second, 108'700);
    CHECK_EQ(session->view().positions, 0);
    const RunResult result = session.finish();
    REQUIRE(result.trades.size() == 1);
    const TradeRow& row = result.trades[0];
    CHECK_EQ(row.ticket, 1);
    CHECK_EQ(row.openPrice, 1.08504);
    CHECK_EQ(row.closePrice, 1.08600);
    CHECK_EQ(row.reason, ExitReason::TakeProfit);
    CHECK_EQ(row.profit, 9'600);
    CHECK_EQ(row.commission, 700);
    CHECK_EQ(row.swap, 0);
    CHECK_EQ(row.net(), 8'900);
    CHECK_EQ(row.openTime, tenOClock);
    // The bid goes from 1.08496 to 1.08696: 104 of 200 points.
    CHECK_EQ(row.closeTime, tenOClock + 10'400);
    CHECK_EQ(result.exposedMs, 10'400);
    CHECK_EQ(row.spreadCost, 800);
    CHECK_EQ(row.worst, -800);
    CHECK_EQ(row.best, 9'600);
}

TEST_CASE("a stop loss on the way is filled at its level")
{
    Session session;
    session.price(0, 108'500);
    session->order(Side::Buy, 1, 1.08400, 1.08600);
    session.price(20 * second, 108'304);
    const RunResult result = session.finish();
    REQUIRE(result.trades.size() == 1);
    CHECK_EQ(result.trades[0].closePrice, 1.08400);
    CHECK_EQ(result.trades[0].profit, -10'400);
    CHECK_EQ(result.trades[0].reason, ExitReason::StopLoss);
    CHECK_EQ(result.trades[0].worst, -10'400);
    CHECK_EQ(result.trades[0].best, 0);
}

TEST_CASE("a sell is closed by the ask")
{
    for (const bool falls : {true, false}) {
        Session session;
        session.price(0, 108'500);
        session->order(Side::Sell, 0.5, 1.08600, 1.08400);
        session.price(20 * second, falls ? 108'200 : 108'800);
        const RunResult result = session.finish();
        REQUIRE(result.trades.size() == 1);
        CHECK_EQ(result.trades[0].openPrice, 1.08496);
        CHECK_EQ(result.trades[0].closePrice, falls ? 1.08400 : 1.08600);
        CHECK_EQ(result.trades[0].profit, falls ? 4'800 : -5'200);
        CHECK_EQ(result.trades[0].commission, 350);
        CHECK_EQ(result.trades[0].reason, falls ? ExitReason::TakeProfit : ExitReason::StopLoss);
        // The ask goes from 1.08504 to 1.08204 or to 1.08804.
        CHECK_EQ(result.trades[0].closeTime, tenOClock + (falls ? 6'933 : 6'400));
    }
}

TEST_CASE("a level at the end of the way is filled there and then")
{
    Session session;
    session.price(0, 108'500);
    session->order(Side::Buy, 1, none, 1.08600);
    session.price(20 * second, 108'604);
    const RunResult result = session.finish();
    REQUIRE(result.trades.size() == 1);
    CHECK_EQ(result.trades[0].closePrice, 1.08600);
    CHECK_EQ(result.trades[0].closeTime, tenOClock + 20 * second);
}

TEST_CASE("a level that the other side alone has crossed is not filled")
{
    Session session;
    session.price(0, 108'500);
    session->order(Side::Buy, 1, none, 1.08600);
    session->order(Side::Sell, 1, none, 1.08400);
    session.price(20 * second, 108'603); // ask 1.08607
    session.price(40 * second, 108'397); // bid 1.08393
    CHECK_EQ(session->view().positions, 2);
}

TEST_CASE("after a gap levels are filled at the price after it, for better or worse")
{
    for (const bool rises : {true, false}) {
        Session session;
        session.price(0, 108'500);
        session->order(Side::Buy, 1, 1.08400, 1.08600);
        session.gap(20 * second, rises ? 108'700 : 108'300);
        const RunResult result = session.finish();
        REQUIRE(result.trades.size() == 1);
        CHECK_EQ(result.trades[0].closePrice, rises ? 1.08696 : 1.08296);
        CHECK_EQ(result.trades[0].closeTime, tenOClock + 20 * second);
        CHECK_EQ(result.trades[0].reason, rises ? ExitReason::TakeProfit : ExitReason::StopLoss);
    }
}

TEST_CASE("levels are filled in the order in which the way comes to them")
{
    Session session;
    session.price(0, 108'500);
    session->order(Side::Buy, 0.01, none, 1.08650);  // 1: at 77 % of the way
    session->order(Side::Sell, 0.01, 1.08560, none); // 2: at 28 %
    session->order(Side::Buy, 0.01, none, 1.08560);  // 3: at 32 %
    session->order(Side::Sell, 0.01, 1.08720, none); // 4: not reached
    session->order(Side::Buy, 0.01, none, 1.08560);  // 5: at 32 %
    session.price(20 * second, 108'700);
    CHECK_EQ(session->view().positions, 1);
    const RunResult result = session.finish();
    REQUIRE(result.trades.size() == 5);
    const std::vector<int> tickets{2, 3, 5, 1, 4};
    const std::vector<double> prices{1.08560, 1.08560, 1.08560, 1.08650, 1.08704};
    const std::vector<TimeMs> offsets{5'600, 6'400, 6'400, 15'400, 20'000};
    for (std::size_t i = 0; i < tickets.size(); ++i) {
        CHECK_EQ(result.trades[i].ticket, tickets[i]);
        CHECK_EQ(result.trades[i].closePrice, prices[i]);
        CHECK_EQ(result.trades[i].closeTime, tenOClock + offsets[i]);
    }
}

TEST_CASE("a spread that widens moves each side evenly along the way")
{
    // Ask 1.08504 to 1.08524, bid 1.08496 to 1.08476: the mid stands still.
    Session session;
    session.price(0, 108'500);
    session->order(Side::Sell, 1, 1.08514, none);
    session->order(Side::Buy, 1, 1.08491, none);
    session.price(20 * second, 108'500, 24);
    const RunResult result = session.finish();
    REQUIRE(result.trades.size() == 2);
    CHECK_EQ(result.trades[0].ticket, 2);
    CHECK_EQ(result.trades[0].closePrice, 1.08491);
    CHECK_EQ(result.trades[0].closeTime, tenOClock + 5'000);
    CHECK_EQ(result.trades[0].spreadCost, 400 + 900); // the ask stands at 1.08509 then
    CHECK_EQ(result.trades[1].closePrice, 1.08514);
    CHECK_EQ(result.trades[1].closeTime, tenOClock + 10'000);
    CHECK_EQ(result.trades[1].spreadCost, 400 + 1'400);
}

TEST_CASE("a price put in lies between its neighbours in time, when there is any time between")
{
    CHECK_EQ(exitOffset(1.08596, 1000), 500);
    CHECK_EQ(exitOffset(1.08497, 2), 1);
    CHECK_EQ(exitOffset(1.08695, 2), 1);
    CHECK_EQ(exitOffset(1.08600, 1), 1);
}

TEST_CASE("a minute that holds both levels makes its exit ambiguous, whichever comes first")
{
    std::vector<TradeRow> rows;
    for (const bool highFirst : {true, false}) {
        Session session;
        addMinute(session.history, tenOClock, {108'500, 108'500, 108'500, 108'500, 1});
        addMinute(session.history, tenOClock + practice::minuteMs, {108'500, 108'604, 108'404, 108'500, 9});
        session.price(0, 108'500);
        session->order(Side::Buy, 1, 1.08400, 1.08600);
        session.price(60 * second, 108'500);
        session.price(80 * second, highFirst ? 108'604 : 108'404);
        session.price(100 * second, highFirst ? 108'404 : 108'604);
        const RunResult result = session.finish();
        REQUIRE(result.trades.size() == 1);
        rows.push_back(result.trades[0]);
        CHECK(rows.back().ambiguous);
    }
    CHECK_EQ(rows[0].reason, ExitReason::TakeProfit);
    CHECK_EQ(rows[0].profit, 9'600);
    CHECK_EQ(rows[0].otherProfit, -10'400);
    CHECK_EQ(rows[1].reason, ExitReason::StopLoss);
    CHECK_EQ(rows[1].profit, -10'400);
    CHECK_EQ(rows[1].otherProfit, 9'600);
}

TEST_CASE("an exit is certain when a level lies a point beyond the minute")
{
    for (const bool isBuy : {true, false}) {
        for (const bool within : {true, false}) {
            Session session;
            // The ask comes from 1.08408 up to 1.08612 and the bid from 1.08400 up to 1.08604.
            addMinute(session.history, tenOClock, {108'500, 108'608, 108'404, 108'500, 9});
            session.price(0, 108'500);
            if (isBuy)
                session->order(Side::Buy, 1, within ? 1.08400 : 1.08399, 1.08604);
            else
                session->order(Side::Sell, 1, 1.08612, within ? 1.08408 : 1.08407);
            session.price(20 * second, 108'608);
            const RunResult result = session.finish();
            REQUIRE(result.trades.size() == 1);
            CHECK(result.trades[0].reason == (isBuy ? ExitReason::TakeProfit : ExitReason::StopLoss));
            CHECK_EQ(result.trades[0].ambiguous, within);
        }
    }
}

TEST_CASE("what the first price of a minute fills is certain, however far the minute goes then")
{
    for (const bool afterGap : {true, false}) {
        Session session;
        addMinute(session.history, tenOClock, {108'500, 108'500, 108'500, 108'500, 1});
        addMinute(session.history, tenOClock + practice::minuteMs, {108'650, 108'700, 108'300, 108'500, 9});
        session.price(0, 108'500);
        session->order(Side::Buy, 1, 1.08400, 1.08600);
        if (afterGap)
            session.gap(60 * second, 108'650);
        else
            session.price(60 * second, 108'650);
        const RunResult result = session.finish();
        REQUIRE(result.trades.size() == 1);
        CHECK_EQ(result.trades[0].closePrice, afterGap ? 1.08646 : 1.08600);
        CHECK(!result.trades[0].ambiguous);
    }
}

TEST_CASE("an exit in the minute of opening counts as ambiguous when the minute holds both levels")
{
    for (const bool held : {true, false}) {
        Session session;
        addMinute(session.history, tenOClock, {108'500, 108'700, 108'300, 108'600, 9});
        session.price(0, 108'500);
        session.price(20 * second, 108'400);
        session->order(Side::Buy, 1, held ? 1.08350 : 1.08250, 1.08600);
        session.price(40 * second, 108'700);
        CHECK_EQ(session.finish().trades.at(0).ambiguous, held);
    }
}

TEST_CASE("what the script closes is never ambiguous")
{
    Session session;
    addMinute(session.history, tenOClock, {108'500, 108'700, 108'300, 108'600, 9});
    session.price(0, 108'500);
    session->order(Side::Buy, 1, 1.08400, 1.08600);
    session.price(20 * second, 108'550);
    session->closeAll();
    const RunResult result = session.finish();
    REQUIRE(result.trades.size() == 1);
    CHECK_EQ(result.trades[0].reason, ExitReason::Script);
    CHECK(!result.trades[0].ambiguous);
}

CHECK_MAIN()
