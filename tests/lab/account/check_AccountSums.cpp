// Random sessions against a broker that is shown every price, and what the course of an account says.

#include "lab/account/SessionFixture.h"
#include "lab/core/market/HistorySources.h"
#include "lab/core/market/PriceWalk.h"
#include "practice/core/market/HashRandom.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

using namespace lab;

namespace {

class Dice {
public:
    explicit Dice(std::uint64_t seed)
        : m_random(practice::hashKey({seed}))
    {
    }
    std::int64_t upTo(std::int64_t most)
    {
        return static_cast<std::int64_t>(m_random.uniform() * static_cast<double>(most + 1));
    }
    bool oneIn(std::int64_t number) { return upTo(number - 1) == 0; }

private:
    practice::HashRandom m_random;
};

/// What both sides of a comparison are asked to do.
struct Wish {
    Side side = Side::Buy;
    double lots = 0.01;
    double stopLoss = 0;
    double takeProfit = 0;
};

Wish randomWish(Dice& dice, std::int64_t mid, int digits)
{
    const double unit = std::pow(10.0, digits);
    Wish wish;
    wish.side = dice.oneIn(2) ? Side::Buy : Side::Sell;
    wish.lots = static_cast<double>(1 + dice.upTo(200)) / 100;
    const std::int64_t away = wish.side == Side::Buy ? 1 : -1;
    if (!dice.oneIn(3))
        wish.stopLoss = static_cast<double>(mid - away * (10 + dice.upTo(150))) / unit;
    if (!dice.oneIn(3))
        wish.takeProfit = static_cast<double>(mid + away * (10 + dice.upTo(150))) / unit;
    return wish;
}

/// A broker that is shown whatever there is to show.
class Reference {
public:
    Reference(const Session& session, std::vector<practice::SymbolSpec> symbols)
        : m_digits(session.history.spec.digits)
        , m_symbol(session.history.spec.name)
        , m_broker(std::move(symbols), practice::UuidSource(1), stateFor(session.settings))
    {
    }

    void price(TimeMs time, std::int64_t mid, std::int64_t half, std::optional<std::int64_t> pairMid = {})
    {
        m_now = time;
        std::vector<practice::SymbolQuote> quotes{{0, PointQuote{mid - half, mid + half}.toPrices(m_digits)}};
        if (pairMid)
            quotes.push_back({1, PointQuote{*pairMid - 3, *pairMid + 3}.toPrices(3)});
        keep(m_broker.onPrices(quotes, time));
    }
    bool order(const Wish& wish)
    {
        practice::PlaceRequest request;
        request.accountId = "account";
        request.symbol = m_symbol;
        request.orderKind = "MARKET";
        request.type = wish.side == Side::Buy ? "BUY" : "SELL";
        request.lots = wish.lots;
        request.stopLoss = wish.stopLoss;
        request.takeProfit = wish.takeProfit;
        const practice::CommandResult result = m_broker.place(request, m_now);
        keep(result.changes);
        return result.accepted();
    }
    void closeAll()
    {
        for (const practice::Trade& trade : m_broker.openTrades("account"))
            keep(m_broker.close(trade.id, m_now).changes);
    }
    [[nodiscard]] practice::AccountFigures figures() const { return m_broker.figures("account"); }
    [[nodiscard]] practice::AccountStatus status() const { return m_broker.account("account")->status; }
    [[nodiscard]] int positions() const { return static_cast<int>(m_broker.openTrades("account").size()); }

    std::vector<practice::Trade> closed;

private:
    static practice::BrokerState stateFor(const RunSettings& settings)
    {
        practice::Account account;
        account.id = "account";
        account.balance = account.initialBalance = account.dayStartEquity = settings.balance;
        account.leverage = settings.leverage;
        account.kind = settings.rules == AccountRules::Plan ? practice::AccountKind::Plan
                                                            : practice::AccountKind::Demo;
        return {{account}, {}};
    }
    void keep(const practice::ChangeSet& changes)
    {
        for (const practice::Trade& trade : changes.trades) {
            if (trade.status == practice::TradeStatus::Closed
                && trade.orderKind != practice::OrderKind::Balance)
                closed.push_back(trade);
        }
    }

    int m_digits;
    std::string m_symbol;
    practice::Broker m_broker;
    TimeMs m_now = 0;
};

void compareTrades(const RunResult& result, const Reference& reference)
{
    REQUIRE(result.trades.size() == reference.closed.size());
    for (std::size_t i = 0; i < result.trades.size(); ++i) {
        const TradeRow& row = result.trades[i];
        const practice::Trade& trade = reference.closed[i];
        CHECK_EQ(row.net(), trade.pnl);
        CHECK_EQ(row.swap, trade.swap);
        CHECK_EQ(row.commission, trade.commission);
        CHECK_EQ(row.openPrice, trade.entryPrice);
        CHECK_EQ(row.closePrice, trade.exitPrice);
        CHECK(row.worst <= std::min<Cents>(0, row.profit));
        CHECK(row.best >= std::max<Cents>(0, row.profit));
    }
}

void checkSums(const RunResult& result)
{
    Cents balance = result.startBalance;
    for (const TradeRow& row : result.trades)
        balance += row.net();
    if (result.warnings.empty()) // nothing was written off
        CHECK_EQ(balance, result.equity.back().balance);
    CHECK_EQ(result.equity.back().equity, result.equity.back().balance);
    CHECK_EQ(result.days.back().balance, result.equity.back().balance);
}

} // namespace

TEST_CASE("a continuous way fills as if the broker had been shown each point of it")
{
    std::size_t byLevels = 0;
    for (std::uint64_t seed = 0; seed < 40; ++seed) {
        Dice dice(seed);
        Session session;
        session.settings.balance = 1'000'000'000; // no limit is near, these need prices of their own
        Reference reference(session, {eurUsd()});
        std::int64_t mid = 108'500;
        TimeMs offset = 0;
        for (int i = 0; i < 400; ++i) {
            const std::int64_t next = mid + dice.upTo(160) - 80;
            offset += 20 * second;
            const bool afterGap = i == 0 || dice.oneIn(10);
            if (afterGap) {
                offset += dice.oneIn(5) ? practice::dayMs : 0;
                session.gap(offset, next);
            } else {
                session.price(offset, next);
                while (mid != next) {
                    mid += mid < next ? 1 : -1;
                    reference.price(tenOClock + offset, mid, 4);
                }
            }
            mid = next;
            reference.price(tenOClock + offset, mid, 4);
            CHECK_EQ(session->view().balance, reference.figures().balance);
            CHECK_EQ(session->view().equity, reference.figures().equity);
            CHECK_EQ(session->view().positions, reference.positions());
            if (dice.oneIn(40)) {
                session->closeAll();
                reference.closeAll();
            }
            if (dice.oneIn(4)) {
                const Wish wish = randomWish(dice, mid, 5);
                session->order(wish.side, wish.lots, wish.stopLoss, wish.takeProfit);
                CHECK(reference.order(wish));
            }
        }
        session->closeAll();
        const RunResult result = session.finish();
        reference.closeAll();
        // Those opened since the last price are closed in the same order by both.
        compareTrades(result, reference);
        checkSums(result);
        byLevels += static_cast<std::size_t>(std::ranges::count_if(result.trades, [](const TradeRow& row) {
            return row.reason == ExitReason::StopLoss || row.reason == ExitReason::TakeProfit;
        }));
    }
    CHECK(byLevels > 1000);
}

TEST_CASE("the account fares as if the broker had been shown every price")
{
    std::size_t failed = 0;
    std::size_t passed = 0;
    std::size_t stoppedOut = 0;
    for (std::uint64_t seed = 0; seed < 120; ++seed) {
        Dice dice(seed + 1000);
        const bool isCross = dice.oneIn(2);
        const bool isBold = dice.oneIn(3); // knows no levels
        Session session(isCross ? eurJpy() : eurUsd());
        session.settings.balance = (1 + dice.upTo(20)) * 50'000;
        session.settings.rules = dice.oneIn(2) ? AccountRules::Plan : AccountRules::Demo;
        session.settings.leverage = static_cast<int>(10 * (1 + Dice(seed + 2000).upTo(29)));
        std::int64_t pairMid = 150'000;
        if (isCross) {
            MinuteHistory pair;
            pair.spec = usdJpy();
            for (TimeMs minute = -1; minute < 300; ++minute) {
                pairMid += dice.upTo(100) - 50;
                addMinute(
                    pair, tenOClock + minute * practice::minuteMs, {pairMid, pairMid, pairMid, pairMid, 1});
            }
            session.pairs.push_back(std::move(pair));
        }
        Reference reference(
            session, isCross ? std::vector<practice::SymbolSpec>{eurJpy(), usdJpy()} : std::vector{eurUsd()});
        std::int64_t mid = isCross ? 162'200 : 108'500;
        TimeMs offset = 0;
        for (int i = 0; i < 400; ++i) {
            mid += dice.upTo(400) - 200;
            offset += dice.oneIn(50) ? practice::dayMs : 20 * second;
            const std::int64_t half = 2 + dice.upTo(6);
            session.gap(offset, mid, half);
            std::optional<std::int64_t> rate;
            if (isCross) {
                const MinuteHistory& pair = session.pairs[0];
                const std::int64_t minutes = offset / practice::minuteMs;
                rate = pair.at(std::min<std::size_t>(static_cast<std::size_t>(minutes), pair.size() - 1))
                           .bar.close;
            }
            reference.price(tenOClock + offset, mid, half, rate);
            CHECK_EQ(session->view().balance, reference.figures().balance);
            CHECK_EQ(session->view().equity, reference.figures().equity);
            CHECK_EQ(session->view().positions, reference.positions());
            const auto status = reference.status();
            if (status != practice::AccountStatus::Active)
                CHECK(session->isOver());
            if (dice.oneIn(60)) {
                session->closeAll();
                reference.closeAll();
            }
            if (dice.oneIn(5)) {
                Wish wish = randomWish(dice, mid, session.history.spec.digits);
                if (isBold)
                    wish.stopLoss = wish.takeProfit = none;
                const std::size_t refused = session.refused.size();
                session->order(wish.side, wish.lots, wish.stopLoss, wish.takeProfit);
                CHECK_EQ(reference.order(wish), session.refused.size() == refused);
            }
        }
        session.gap(offset + second, mid, 4);
        session->closeAll();
        reference.price(tenOClock + offset + second, mid, 4,
            isCross ? std::optional(session.pairs[0]
                                        .at(static_cast<std::size_t>(
                                            std::min<TimeMs>((offset + second) / practice::minuteMs, 300)))
                                        .bar.close)
                    : std::nullopt);
        reference.closeAll();
        const RunResult result = session.finish();
        compareTrades(result, reference);
        checkSums(result);
        failed
            += result.outcome == PlanOutcome::DailyLoss || result.outcome == PlanOutcome::TotalLoss ? 1 : 0;
        passed += result.outcome == PlanOutcome::Passed ? 1 : 0;
        stoppedOut += static_cast<std::size_t>(
            std::ranges::count(result.trades, ExitReason::Margin, &TradeRow::reason));
    }
    CHECK(failed > 5);
    CHECK(passed > 1);
    CHECK(stoppedOut > 10);
}

namespace {

/// Two weeks of a made-up market, traded at random.
RunResult walked(Model model, const MinuteHistory& history)
{
    RunSettings settings;
    settings.symbol = history.spec.name;
    settings.model = model;
    AccountSession session(settings, {&history});
    PriceWalk walk(history, settings, 0, history.size());
    Dice dice(5);
    Moment moment;
    while (walk.next(moment)) {
        session.advance(moment);
        if (!moment.forScript || moment.time % practice::minuteMs != 0)
            continue;
        if (dice.oneIn(200))
            session.closeAll();
        if (session.view().positions < 3 && dice.oneIn(10)) {
            const Wish wish = randomWish(dice, moment.mid, history.spec.digits);
            session.order(wish.side, wish.lots, wish.stopLoss, wish.takeProfit);
        }
    }
    RunResult result;
    session.finish(result);
    return result;
}

} // namespace

TEST_CASE("whatever the model of time, a level is filled at its price on a market without gaps")
{
    const TimeMs from = 20'000 * practice::dayMs;
    const MinuteHistory history = simulatedHistory("EURUSD", 3, 1, from, from + 14 * practice::dayMs);
    for (const Model model : {Model::Open, Model::Ohlc, Model::Path, Model::Feed}) {
        const RunResult result = walked(model, history);
        checkSums(result);
        CHECK_EQ(result.days.size(), 14u);
        std::size_t exact = 0;
        std::size_t beyond = 0;
        for (const TradeRow& row : result.trades) {
            if (row.reason != ExitReason::StopLoss && row.reason != ExitReason::TakeProfit)
                continue;
            const bool isStop = row.reason == ExitReason::StopLoss;
            const double level = isStop ? row.stopLoss : row.takeProfit;
            ++(row.closePrice == level ? exact : beyond);
            if (row.ambiguous)
                CHECK((row.otherProfit > row.profit) == isStop);
        }
        CHECK(exact > 20);
        CHECK_EQ(beyond, 0u);
        CHECK_EQ(walked(model, history).decisionPrint, result.decisionPrint);
    }
}

CHECK_MAIN()
