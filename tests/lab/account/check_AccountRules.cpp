// What the broker's rules do to a lab account: margin, swap, days, the plan's limits, rates, refusals, delay.

#include "lab/account/SessionFixture.h"

#include <array>
#include <cmath>
#include <limits>

using namespace lab;

namespace {

RunSettings demoOf(Cents dollars)
{
    RunSettings settings;
    settings.balance = dollars * 100;
    return settings;
}

RunSettings planOf(Cents dollars)
{
    RunSettings settings = demoOf(dollars);
    settings.rules = AccountRules::Plan;
    return settings;
}

RunSettings delayed(TimeMs delay)
{
    RunSettings settings;
    settings.delayMs = delay;
    return settings;
}

MinuteHistory pairHistory(TimeMs first, const std::vector<practice::GridBar>& bars)
{
    MinuteHistory history;
    history.spec = usdJpy();
    for (std::size_t i = 0; i < bars.size(); ++i)
        addMinute(history, first + static_cast<TimeMs>(i) * practice::minuteMs, bars[i]);
    return history;
}

constexpr TimeMs toMidnight = 14 * practice::hourMs;

} // namespace

TEST_CASE("a position is stopped out when its margin level has fallen to half")
{
    // Margin 1 085.04; equity 2 000 - 7 - 1 451 = 542 is below half of it, 543 is not.
    for (const bool reached : {true, false}) {
        Session session(demoOf(2'000));
        session.price(0, 108'500);
        session->order(Side::Buy, 1, none, none);
        session.price(20 * second, reached ? 107'057 : 107'058);
        CHECK_EQ(session->view().positions, reached ? 0 : 1);
        CHECK_EQ(session->view().equity, reached ? 54'200 : 54'300);
        const RunResult result = session.finish();
        REQUIRE(result.trades.size() == 1);
        CHECK_EQ(result.trades[0].reason, reached ? ExitReason::Margin : ExitReason::End);
        CHECK_EQ(result.trades[0].profit, reached ? -145'100 : -145'000);
        CHECK(!session->isOver());
    }
}

TEST_CASE("an order without the margin that it needs is refused, told and counted")
{
    Session session(demoOf(1'085));
    session.price(0, 108'500);
    session->order(Side::Buy, 1, none, none);
    REQUIRE(session.refused.size() == 1);
    CHECK_EQ(session.refused[0],
        "Not enough free margin: 1.00 lots of EURUSD need 1,085.04 USD, but 1,085.00 USD are free. Lower the "
        "volume or close a position first.");
    const RunResult result = session.finish();
    CHECK_EQ(result.refusals, 1u);
    CHECK(result.trades.empty());
}

TEST_CASE("free margin is what is left at the last price, though the broker was not shown it before")
{
    // 2 000 - 7 - 8 - 1 085.04 are free at first, 100 less ten points per lot later.
    Session session(demoOf(2'000));
    session.price(0, 108'500);
    session->order(Side::Buy, 1, none, none);
    session.price(20 * second, 108'400);
    session->order(Side::Buy, 0.75, none, none); // needs 813.03
    CHECK_EQ(session.refused.size(), 1u);
    session.price(40 * second, 108'450);
    session->order(Side::Buy, 0.75, none, none); // needs 813.41, and 849.96 are free
    CHECK_EQ(session.refused.size(), 1u);
}

TEST_CASE("what is no usable order is refused")
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinite = std::numeric_limits<double>::infinity();
    Session session;
    session.price(0, 108'500);
    session->order(Side::Buy, 0.005, none, none);
    session->order(Side::Buy, -1, none, none);
    session->order(Side::Buy, nan, none, none);
    session->order(Side::Buy, 1, 1.08496, none);  // the stop loss of a buy is below the bid
    session->order(Side::Sell, 1, none, 1.08504); // the take profit of a sell is below the ask
    session->order(Side::Buy, 1, 2e9, none);
    CHECK_EQ(session.refused.size(), 6u);
    session->noteRefusal(Side::Buy, infinite, nan, none);
    CHECK_EQ(session.refused.size(), 6u);
    CHECK_EQ(session.finish().refusals, 7u);
}

TEST_CASE("levels that are no numbers above 0 are none")
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinite = std::numeric_limits<double>::infinity();
    Session session;
    session.price(0, 108'500);
    session->order(Side::Buy, 1, -1.5, nan);
    session->order(Side::Sell, 1, infinite, none);
    session.price(20 * second, 108'000);
    const RunResult result = session.finish();
    REQUIRE(result.trades.size() == 2);
    for (const TradeRow& row : result.trades) {
        CHECK_EQ(row.stopLoss, 0.0);
        CHECK_EQ(row.takeProfit, 0.0);
        CHECK_EQ(row.reason, ExitReason::End);
    }
    CHECK_EQ(result.refusals, 0u);
}

TEST_CASE("without a price an order is refused")
{
    Session session;
    session->order(Side::Buy, 1, none, none);
    session->closeAll();
    CHECK_EQ(session.refused.size(), 1u);
    const RunResult result = session.finish();
    CHECK(result.trades.empty());
    CHECK(result.equity.empty());
    CHECK(result.days.empty());
    CHECK_EQ(result.startBalance, 10'000'000);
}

TEST_CASE("an order shows with the next price at the earliest")
{
    Session session;
    session.price(0, 108'500);
    session->order(Side::Buy, 1, none, none);
    CHECK_EQ(session->view().positions, 0);
    CHECK_EQ(session->view().equity, 10'000'000);
    session.price(20 * second, 108'500);
    CHECK_EQ(session->view().positions, 1);
    CHECK_EQ(session->view().balance, 10'000'000);
    CHECK_EQ(session->view().equity, 10'000'000 - 800 - 700);
    CHECK_EQ(session->view().bid, 1.08496);
    CHECK_EQ(session->view().ask, 1.08504);
    session->closeAll();
    CHECK_EQ(session->view().positions, 1);
    session.price(40 * second, 108'500);
    CHECK_EQ(session->view().positions, 0);
    CHECK_EQ(session->view().balance, 10'000'000 - 800 - 700);
}

TEST_CASE("closing closes the positions that the view shows, oldest first, and no others")
{
    Session session;
    session.price(0, 108'500);
    session->order(Side::Buy, 0.01, none, none);
    session->order(Side::Sell, 0.02, none, none);
    session->closeAll(); // the view shows neither of them
    session.price(20 * second, 108'510);
    CHECK_EQ(session->view().positions, 2);
    session->order(Side::Buy, 0.03, none, none);
    session->closeAll();
    session.price(40 * second, 108'520);
    CHECK_EQ(session->view().positions, 1);
    const RunResult result = session.finish();
    REQUIRE(result.trades.size() == 3);
    for (int i = 0; i < 3; ++i)
        CHECK_EQ(result.trades[static_cast<std::size_t>(i)].ticket, i + 1);
    CHECK_EQ(result.trades[0].closePrice, 1.08506);
    CHECK_EQ(result.trades[1].closePrice, 1.08514);
    CHECK_EQ(result.trades[2].closePrice, 1.08516);
    CHECK_EQ(result.trades[2].reason, ExitReason::End);
}

TEST_CASE("a delayed order is carried out at the first price at or after its time")
{
    Session session(delayed(40 * second));
    session.price(0, 108'500);
    session->order(Side::Buy, 1, none, none);
    session.price(20 * second, 108'510);
    CHECK_EQ(session->view().positions, 0);
    session->order(Side::Sell, 1, none, none);
    session.price(40 * second, 108'520);
    CHECK_EQ(session->view().positions, 1);
    session->closeAll();
    session.price(59 * second, 108'530);
    CHECK_EQ(session->view().positions, 1);
    session.price(61 * second, 108'540);
    CHECK_EQ(session->view().positions, 2);
    session.price(90 * second, 108'550); // closes the buy, which alone was there when it was asked for
    CHECK_EQ(session->view().positions, 1);
    session->order(Side::Buy, 1, none, none); // never carried out
    const RunResult result = session.finish();
    REQUIRE(result.trades.size() == 2);
    CHECK_EQ(result.trades[0].openTime, tenOClock + 40 * second);
    CHECK_EQ(result.trades[0].openPrice, 1.08524);
    CHECK_EQ(result.trades[0].closeTime, tenOClock + 90 * second);
    CHECK_EQ(result.trades[0].closePrice, 1.08546);
    CHECK_EQ(result.trades[0].reason, ExitReason::Script);
    CHECK_EQ(result.trades[1].openTime, tenOClock + 61 * second);
    CHECK_EQ(result.trades[1].openPrice, 1.08536);
    CHECK_EQ(result.refusals, 0u);
}

TEST_CASE("levels are filled before the orders that fall due at the end of the way")
{
    Session session(delayed(10 * second));
    session.price(0, 108'500);
    session->order(Side::Buy, 1, none, 1.08600);
    session.price(10 * second, 108'500);
    session->closeAll();
    session.price(30 * second, 108'700);
    const RunResult result = session.finish();
    REQUIRE(result.trades.size() == 1);
    CHECK_EQ(result.trades[0].reason, ExitReason::TakeProfit);
    CHECK_EQ(result.trades[0].closePrice, 1.08600);
}

TEST_CASE("too many waiting orders are refused, and closing again and again does not pile up")
{
    Session session(delayed(practice::hourMs));
    session.price(0, 108'500);
    for (std::size_t i = 0; i < AccountSession::mostWaiting + 5; ++i)
        session->order(Side::Buy, 0.01, none, none);
    CHECK_EQ(session.refused.size(), 5u);
    session.price(practice::hourMs, 108'500);
    CHECK_EQ(session->view().positions, 500);
    for (int i = 0; i < 20'000; ++i)
        session->closeAll();
    session->order(Side::Buy, 0.01, none, none);
    session.price(2 * practice::hourMs, 108'500);
    CHECK_EQ(session->view().positions, 1);
}

TEST_CASE("a script that orders a million times gets what an account may hold")
{
    Session session;
    session->onRefusal({});
    session.price(0, 108'500);
    for (int i = 0; i < 1'000'000; ++i)
        session->order(Side::Buy, 0.01, none, none);
    const RunResult result = session.finish();
    CHECK_EQ(result.trades.size(), 500u);
    CHECK_EQ(result.refusals, 999'500u);
}

TEST_CASE("a midnight charges swap once, a weekend three nights")
{
    for (const bool isBuy : {true, false}) {
        Session session;
        session.price(0, 108'500); // a Friday
        session->order(isBuy ? Side::Buy : Side::Sell, 0.5, none, none);
        session.price(toMidnight - 1, 108'500);
        CHECK_EQ(session->view().equity, 10'000'000 - 750);
        session.gap(toMidnight + 2 * practice::dayMs, 108'500);
        CHECK_EQ(session->view().equity, 10'000'000 - 750 + (isBuy ? -1'080 : 420));
        session.gap(toMidnight + 2 * practice::dayMs + 1, 108'500);
        session.gap(toMidnight + 3 * practice::dayMs, 108'500);
        CHECK_EQ(session->view().equity, 10'000'000 - 750 + (isBuy ? -1'440 : 560));
        session->closeAll();
        const RunResult result = session.finish();
        REQUIRE(result.trades.size() == 1);
        CHECK_EQ(result.trades[0].swap, isBuy ? -1'440 : 560);
        CHECK_EQ(result.trades[0].profit, -400);
        CHECK_EQ(result.trades[0].net(), -400 - 350 + (isBuy ? -1'440 : 560));
        REQUIRE(result.days.size() == 3);
        CHECK_EQ(result.days[0].day, 20'000);
        CHECK_EQ(result.days[1].day, 20'003);
        CHECK_EQ(result.days[2].day, 20'004);
        CHECK_EQ(result.days[1].firstEquity, 10'000'000 - 750 + (isBuy ? -1'080 : 420));
    }
}

TEST_CASE("a price put in after midnight turns the day, one before it does not")
{
    for (const bool before : {true, false}) {
        Session session;
        session.price(0, 108'500);
        session->order(Side::Buy, 1, none, before ? 1.08546 : 1.08646);
        session.price(toMidnight - 10'000, 108'500);
        session.price(toMidnight + 10'000, 108'700);
        const RunResult result = session.finish();
        REQUIRE(result.trades.size() == 1);
        CHECK_EQ(result.trades[0].closeTime, tenOClock + toMidnight + (before ? -5'000 : 5'000));
        CHECK_EQ(result.trades[0].swap, before ? 0 : -720);
    }
}

TEST_CASE("a plan fails when a day has lost five percent of its first equity")
{
    // At a bid of 1.08011 the account is worth 10 000 - 7 - 493 = 9 500.
    for (const bool reached : {true, false}) {
        Session session(planOf(10'000));
        session.price(0, 108'500);
        session->order(Side::Buy, 1, none, none);
        session.price(20 * second, reached ? 108'015 : 108'016);
        CHECK_EQ(session->isOver(), reached);
        session->order(Side::Buy, 0.01, none, none);
        CHECK_EQ(session.refused.size(), reached ? 1u : 0u);
        const RunResult result = session.finish();
        CHECK_EQ(result.outcome, reached ? PlanOutcome::DailyLoss : PlanOutcome::None);
        CHECK_EQ(result.outcomeTime, reached ? tenOClock + 20 * second : 0);
        REQUIRE(!result.trades.empty());
        CHECK_EQ(result.trades[0].reason, reached ? ExitReason::Rule : ExitReason::End);
        CHECK_EQ(result.trades[0].profit, reached ? -49'300 : -49'200);
    }
}

TEST_CASE("the daily loss counts from the day's first equity, swap included")
{
    // Sells at 1.08496 for a commission of 7 and gets 2.80 a night. The second day begins with
    // 10 000 - 7 - 308 + 2.80 = 9 687.80, of which 95 percent are 9 203.41: 795.39 below the start.
    for (const bool reached : {true, false}) {
        Session session(planOf(10'000));
        session.price(0, 108'500);
        session->order(Side::Sell, 1, none, none);
        session.gap(toMidnight, 108'800);
        CHECK_EQ(session->view().equity, 968'780);
        session.price(toMidnight + 20 * second, reached ? 109'285 : 109'284);
        CHECK_EQ(session->isOver(), reached);
        const RunResult result = session.finish();
        CHECK_EQ(result.outcome, reached ? PlanOutcome::DailyLoss : PlanOutcome::None);
        CHECK_EQ(result.trades.at(0).swap, 280);
        CHECK_EQ(result.days.at(1).firstEquity, 968'780);
    }
}

TEST_CASE("a plan fails when a tenth is lost, over however many days")
{
    Session session(planOf(10'000));
    session.price(0, 108'500);
    session->order(Side::Buy, 1, none, none); // 7 commission, 7.20 a night
    session.gap(toMidnight, 108'108);         // 9 585.80
    CHECK_EQ(session->view().equity, 958'580);
    session.gap(toMidnight + practice::dayMs, 107'708); // 9 178.60
    CHECK_EQ(session->view().equity, 917'860);
    session.price(toMidnight + practice::dayMs + 20 * second, 107'530);
    CHECK(!session->isOver()); // 9 000.60
    session.price(toMidnight + practice::dayMs + 40 * second, 107'529);
    CHECK(session->isOver());
    const RunResult result = session.finish();
    CHECK_EQ(result.outcome, PlanOutcome::TotalLoss);
    CHECK_EQ(result.outcomeTime, tenOClock + toMidnight + practice::dayMs + 40 * second);
    CHECK_EQ(result.trades.at(0).reason, ExitReason::Rule);
    CHECK_EQ(result.trades.at(0).net(), 899'960 - 1'000'000);
}

TEST_CASE("a jump that breaks both limits at once is the total loss")
{
    Session session(planOf(10'000));
    session.price(0, 108'500);
    session->order(Side::Buy, 1, none, none);
    session.gap(20 * second, 107'300);
    const RunResult result = session.finish();
    CHECK_EQ(result.outcome, PlanOutcome::TotalLoss);
    CHECK_EQ(result.outcomeTime, tenOClock + 20 * second);
}

TEST_CASE("a plan has passed when a tenth is gained and nothing is open")
{
    for (const bool enough : {true, false}) {
        Session session(planOf(10'000));
        session.price(0, 108'500);
        session->order(Side::Buy, 1, none, enough ? 1.09511 : 1.09510); // 1 007 points
        session.price(20 * second, 109'600);
        CHECK_EQ(session->isOver(), enough);
        CHECK_EQ(session->view().balance, enough ? 1'100'000 : 1'099'900);
        const RunResult result = session.finish();
        CHECK_EQ(result.outcome, enough ? PlanOutcome::Passed : PlanOutcome::None);
        CHECK_EQ(result.outcomeTime, enough ? result.trades.at(0).closeTime : 0);
        CHECK_EQ(result.trades.at(0).reason, ExitReason::TakeProfit);
    }
}

TEST_CASE("a script that closes with enough gained has passed")
{
    Session session(planOf(10'000));
    session.price(0, 108'500);
    session->order(Side::Buy, 1, none, none);
    session.price(20 * second, 109'600);
    CHECK(!session->isOver());
    session->closeAll();
    CHECK(session->isOver());
    CHECK_EQ(session.finish().outcome, PlanOutcome::Passed);
}

TEST_CASE("what the end of the run closes passes no plan")
{
    Session session(planOf(10'000));
    session.price(0, 108'500);
    session->order(Side::Buy, 1, none, none);
    session.price(20 * second, 109'600);
    const RunResult result = session.finish();
    CHECK_EQ(result.outcome, PlanOutcome::None);
    CHECK_EQ(result.trades.at(0).reason, ExitReason::End);
    CHECK_EQ(result.equity.back().balance, 1'108'500);
}

TEST_CASE("an account that goes on keeps the beginnings that its plan counts from")
{
    Session before(planOf(10'000));
    before.price(0, 108'500);
    before->order(Side::Buy, 1, none, none);
    before.price(20 * second, 108'100);
    const RunResult first = before.finish();
    CHECK_EQ(first.equity.back().balance, 958'500);
    CHECK_EQ(first.course.initialBalance, 1'000'000);
    CHECK_EQ(first.course.dayStartEquity, 1'000'000);
    CHECK_EQ(first.course.dayIndex, 20'000);

    // On the same day 9 585 - 7 - 78 is too little; the next one begins with 9 585, and may lose more.
    for (const bool reached : {true, false}) {
        Session after(planOf(9'585));
        after.settings.course = first.course;
        after.price(practice::minuteMs, 108'100);
        after->order(Side::Buy, 1, none, none);
        after.price(2 * practice::minuteMs, reached ? 108'030 : 108'031);
        CHECK_EQ(after.finish().outcome, reached ? PlanOutcome::DailyLoss : PlanOutcome::None);

        Session later(planOf(9'585));
        later.settings.course = first.course;
        later.price(toMidnight, 108'100);
        later->order(Side::Buy, 1, none, none);
        later.price(toMidnight + second, 107'700);
        CHECK_EQ(later->isOver(), false);
        later.gap(toMidnight + 2 * second, reached ? 107'500 : 107'700);
        // 9 585 - 7 - 608 are below nine tenths of 10 000 and not of 9 585, and a day's loss as well.
        CHECK_EQ(later.finish().outcome, reached ? PlanOutcome::TotalLoss : PlanOutcome::None);
    }
}

TEST_CASE("what the end of a run closes counts for the plan where the account goes on")
{
    Session session(planOf(10'000));
    session.settings.goesOn = true;
    session.price(0, 108'500);
    session->order(Side::Buy, 1, none, none);
    session.price(20 * second, 109'600);
    CHECK(!session->isOver());
    const RunResult result = session.finish();
    CHECK_EQ(result.outcome, PlanOutcome::Passed);
    CHECK_EQ(result.outcomeTime, tenOClock + 20 * second);
    CHECK_EQ(result.trades[0].reason, ExitReason::End);
}

TEST_CASE("a loss beyond the balance is written off and said so")
{
    Session session(demoOf(2'000));
    session.price(0, 108'500);
    session->order(Side::Buy, 1, none, none);
    session.gap(20 * second, 105'508); // 3 007 lost
    CHECK_EQ(session->view().balance, 0);
    CHECK(session->isOver());
    const RunResult result = session.finish();
    REQUIRE(result.trades.size() == 1);
    CHECK_EQ(result.trades[0].net(), -300'700);
    CHECK_EQ(result.equity.back().balance, 0);
    REQUIRE(result.warnings.size() == 1);
    CHECK_EQ(result.warnings[0],
        "The loss beyond the balance was written off: 1,007.00 USD that no trade accounts for.");
    CHECK_NEAR(result.equityDrawdown.fraction, 300'700.0 / 200'000.0, 1e-15);
    CHECK_EQ(result.equityDrawdown.money, 300'700);
}

TEST_CASE("a loss beyond the balance that the end of the run brings is written off too")
{
    Session session(demoOf(1'200));
    session.price(0, 108'500, 1'000);
    session->order(Side::Buy, 1, none, none); // margin 1 095, and 2 000 lost to the spread at once
    const RunResult result = session.finish();
    REQUIRE(result.trades.size() == 1);
    CHECK_EQ(result.trades[0].net(), -200'700);
    CHECK_EQ(result.equity.back().balance, 0);
    CHECK_EQ(result.days.back().balance, 0);
    REQUIRE(result.warnings.size() == 1);
}

TEST_CASE("a symbol that is its own pair is converted at its own mid")
{
    // 100 points of 100 000 USD are 10 000 JPY, at 150.110 JPY a dollar 66.62 USD.
    Session session(usdJpy());
    session.price(0, 150'000, 5);
    session->order(Side::Buy, 1, none, 150.105);
    session.price(20 * second, 150'110, 5);
    const RunResult result = session.finish();
    REQUIRE(result.trades.size() == 1);
    CHECK_EQ(result.trades[0].closePrice, 150.105);
    CHECK_EQ(result.trades[0].profit, 6'662);
    // 5 points are 500 JPY: 3.3333 USD at 150.000 and 3.3309 at 150.110.
    CHECK_EQ(result.trades[0].spreadCost, 333 + 333);
    CHECK_EQ(result.trades[0].worst, -667);
}

TEST_CASE("another symbol's results are converted at the pair's last close, never at one to come")
{
    // 10 000 JPY are 66.67 USD at 150 a dollar, 66.23 at 151 and 65.79 at 152.
    const std::array<Cents, 3> expected{6'667, 6'623, 6'579};
    for (std::size_t minute = 0; minute < expected.size(); ++minute) {
        Session session(eurJpy());
        session.pairs.push_back(pairHistory(tenOClock - practice::minuteMs,
            {{149'000, 150'000, 149'000, 150'000, 1}, {150'500, 151'500, 150'500, 151'000, 1},
                {151'500, 152'500, 151'500, 152'000, 1}, {152'500, 152'500, 152'500, 152'500, 1}}));
        session.price(0, 162'200, 8);
        session->order(Side::Buy, 1, none, none);
        session.price((static_cast<TimeMs>(minute) + 1) * practice::minuteMs - 1, 162'316, 8);
        session->closeAll();
        const RunResult result = session.finish();
        REQUIRE(result.trades.size() == 1);
        CHECK_EQ(result.trades[0].openPrice, 162.208);
        CHECK_EQ(result.trades[0].closePrice, 162.308);
        CHECK_EQ(result.trades[0].profit, expected[minute]);
    }
}

TEST_CASE("a rate that changes alone changes the equity")
{
    Session session(eurJpy());
    session.pairs.push_back(pairHistory(tenOClock - practice::minuteMs,
        {{150'000, 150'000, 150'000, 150'000, 1}, {151'000, 151'000, 151'000, 151'000, 1}}));
    session.price(0, 162'200, 8);
    session->order(Side::Buy, 1, none, none);
    session.price(20 * second, 162'316, 8);
    CHECK_EQ(session->view().equity, 10'000'000 - 700 + 6'667);
    session.price(60 * second, 162'316, 8);
    CHECK_EQ(session->view().equity, 10'000'000 - 700 + 6'623);
}

TEST_CASE("without the pair's price an order is refused, until the pair has begun")
{
    Session alone(eurJpy());
    alone.price(0, 162'200, 8);
    alone->order(Side::Buy, 1, none, none);
    CHECK_EQ(alone.refused.size(), 1u);

    Session session(eurJpy());
    session.pairs.push_back(
        pairHistory(tenOClock + practice::minuteMs, {{150'000, 152'000, 150'000, 152'000, 1}}));
    session.price(59 * second, 162'200, 8);
    session->order(Side::Buy, 1, none, none);
    CHECK_EQ(session.refused.size(), 1u);
    session.price(60 * second, 162'200, 8); // its open, which is known
    session->order(Side::Buy, 1, none, none);
    CHECK_EQ(session.refused.size(), 1u);
    session.price(61 * second, 162'316, 8);
    CHECK_EQ(session->view().equity, 10'000'000 - 700 + 6'667);
}

CHECK_MAIN()
