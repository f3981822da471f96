// Recorded minutes whose spread is another one at each price: what the lab makes of bid and ask.

#include "lab/account/SessionFixture.h"
#include "lab/core/market/PriceWalk.h"
#include "practice/core/market/HashRandom.h"
#include "practice/core/market/MinuteFile.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <sstream>

using namespace lab;
using practice::GridBar;

namespace {

constexpr std::array allModels{Model::Open, Model::Ohlc, Model::Path, Model::Feed};

/// Both sides of a minute, in points.
struct Sides {
    GridBar bid;
    GridBar ask;
};

std::string cells(const GridBar& bar)
{
    std::string text;
    for (const std::int64_t price : {bar.open, bar.high, bar.low, bar.close}) {
        const std::string points = std::to_string(100'000 + price % 100'000).substr(1);
        text += ',' + std::to_string(price / 100'000) + '.' + points;
    }
    return text;
}

/// Minutes from the first of a Thursday on, one after the other.
MinuteHistory recorded(const std::vector<Sides>& minutes)
{
    std::stringstream text;
    text << "time,open,high,low,close,volume,ask_open,ask_high,ask_low,ask_close\n";
    const auto two = [](std::size_t number) { return std::to_string(100 + number).substr(1); };
    for (std::size_t minute = 0; minute < minutes.size(); ++minute)
        text << "2014-05-01T" << two(minute / 60) << ':' << two(minute % 60) << ":00Z"
             << cells(minutes[minute].bid) << ",1" << cells(minutes[minute].ask) << '\n';
    practice::MinuteFile file = practice::readMinutes(text, "EURUSD-1m.csv");
    MinuteHistory history;
    history.spec = eurUsd();
    history.minutes = std::move(file.minutes);
    for (const TimeMs time : file.times)
        history.starts.push_back(static_cast<std::int32_t>(time / practice::minuteMs));
    return history;
}

/// Minutes whose prices often fall together, and others, with spreads of up to 39 points.
std::vector<Sides> someMinutes(std::size_t count, std::uint64_t key)
{
    practice::HashRandom random(practice::hashKey({key}));
    const auto draw = [&random](int range) { return static_cast<std::int64_t>(random.uniform() * range); };
    std::vector<Sides> minutes;
    std::int64_t price = 138'000;
    while (minutes.size() < count) {
        const int range = draw(2) == 0 ? 3 : 40;
        GridBar bid{price, 0, 0, price + draw(range) - range / 2, 0};
        bid.high = std::max(bid.open, bid.close) + draw(range);
        bid.low = std::min(bid.open, bid.close) - draw(range);
        GridBar ask{bid.open + draw(range), 0, 0, bid.close + draw(range), 0};
        ask.high = std::max({ask.open, ask.close, bid.high}) + draw(range);
        ask.low = std::max(bid.low, std::min(ask.open, ask.close) - draw(range));
        minutes.push_back({bid, ask});
        price = bid.close + (draw(3) == 0 ? draw(9) - 4 : 0);
    }
    return minutes;
}

RunSettings settingsOf(Model model)
{
    RunSettings settings;
    settings.symbol = "EURUSD";
    settings.model = model;
    return settings;
}

/// What the prices of one minute came to.
struct Seen {
    PointQuote first;
    PointQuote last;
    PointQuote lowest;
    PointQuote highest;
};

std::vector<Seen> seenIn(const MinuteHistory& history, Model model)
{
    std::vector<Seen> seen;
    PriceWalk walk(history, settingsOf(model), 0, history.size());
    for (Moment moment; walk.next(moment);) {
        const PointQuote quote{moment.mid - moment.halfSpread, moment.mid + moment.halfSpread};
        if (moment.minute == seen.size())
            seen.push_back({quote, quote, quote, quote});
        Seen& minute = seen.back();
        minute.last = quote;
        minute.lowest = {std::min(minute.lowest.bid, quote.bid), std::min(minute.lowest.ask, quote.ask)};
        minute.highest = {std::max(minute.highest.bid, quote.bid), std::max(minute.highest.ask, quote.ask)};
    }
    return seen;
}

/// The ask is as recorded and the bid a point lower, if that, where spreads are odd; both may be a point off
/// where there is no spread at all.
bool standsFor(const PointQuote& quote, std::int64_t bid, std::int64_t ask)
{
    return bid - 1 <= quote.bid && quote.bid <= bid && ask <= quote.ask && quote.ask <= ask + 1;
}

/// The one order that is given at the first price of the run, and what became of it.
TradeRow tradeOf(
    const std::vector<Sides>& minutes, Model model, Side side, double stopLoss, double takeProfit)
{
    const MinuteHistory history = recorded(minutes);
    const RunSettings settings = settingsOf(model);
    AccountSession session(settings, {&history});
    PriceWalk walk(history, settings, 0, history.size());
    Moment moment;
    for (bool isFirst = true; walk.next(moment); isFirst = false) {
        session.advance(moment);
        if (isFirst)
            session.order(side, 1, stopLoss, takeProfit);
    }
    RunResult result;
    session.finish(result);
    REQUIRE(result.trades.size() == 1);
    return result.trades[0];
}

constexpr Sides mirrored(const Sides& minute)
{
    const auto turned = [](const GridBar& bar) {
        return GridBar{220'000 - bar.open, 220'000 - bar.low, 220'000 - bar.high, 220'000 - bar.close, 0};
    };
    return {turned(minute.ask), turned(minute.bid)};
}

constexpr Sides quiet{{110'000, 110'000, 110'000, 110'000, 0}, {110'010, 110'010, 110'010, 110'010, 0}};
// At the high the ask is 200 points above the bid, at the low as well.
constexpr Sides wide{{110'000, 110'100, 109'800, 110'000, 0}, {110'010, 110'300, 110'000, 110'010, 0}};

} // namespace

TEST_CASE("bid and ask stay within what was recorded of them and touch what decides about losses")
{
    for (const std::uint64_t key : {1U, 2U, 3U}) {
        const std::vector<Sides> minutes = someMinutes(500, key);
        const MinuteHistory history = recorded(minutes);
        for (const Model model : allModels) {
            const std::vector<Seen> all = seenIn(history, model);
            REQUIRE(all.size() == minutes.size());
            std::size_t tooGood = 0;
            std::size_t tooBad = 0;
            std::size_t missed = 0;
            std::size_t shifted = 0;
            for (std::size_t minute = 0; minute < minutes.size(); ++minute) {
                const auto& [bid, ask] = minutes[minute];
                const Seen& seen = all[minute];
                tooGood += seen.highest.bid > bid.high || seen.lowest.ask < ask.low ? 1 : 0;
                tooBad += seen.lowest.bid < bid.low - 1 || seen.highest.ask > ask.high + 1 ? 1 : 0;
                missed += seen.lowest.bid > bid.low || seen.highest.ask < ask.high
                        || seen.highest.bid < bid.high - 1 || seen.lowest.ask > ask.low + 1
                    ? 1
                    : 0;
                shifted
                    += standsFor(seen.first, bid.open, ask.open) && standsFor(seen.last, bid.close, ask.close)
                    ? 0
                    : 1;
            }
            CHECK_EQ(tooGood, std::size_t(0));
            CHECK_EQ(tooBad, std::size_t(0));
            CHECK_EQ(missed, std::size_t(0));
            CHECK_EQ(shifted, std::size_t(0));
        }
    }
}

TEST_CASE("a target that its side of the price did not reach is not filled")
{
    for (const Model model : allModels) {
        const TradeRow bought = tradeOf({quiet, wide, quiet}, model, Side::Buy, none, 1.10190);
        CHECK_EQ(bought.reason, ExitReason::End);
        CHECK_EQ(bought.best, Cents(9'000)); // 1.10100 after 1.10010
        const TradeRow sold
            = tradeOf({mirrored(quiet), mirrored(wide), mirrored(quiet)}, model, Side::Sell, none, 1.09810);
        CHECK_EQ(sold.reason, ExitReason::End);
        CHECK_EQ(sold.best, Cents(9'000));
        CHECK_EQ(
            tradeOf({quiet, wide, quiet}, model, Side::Buy, none, 1.10100).reason, ExitReason::TakeProfit);
    }
}

TEST_CASE("a stop that only the wider spread at the extreme reaches is filled")
{
    for (const Model model : allModels) {
        const TradeRow bought = tradeOf({quiet, wide, quiet}, model, Side::Buy, 1.09801, none);
        CHECK_EQ(bought.reason, ExitReason::StopLoss);
        CHECK_EQ(bought.closePrice, 1.09801);
        const TradeRow sold
            = tradeOf({mirrored(quiet), mirrored(wide), mirrored(quiet)}, model, Side::Sell, 1.10199, none);
        CHECK_EQ(sold.reason, ExitReason::StopLoss);
        CHECK_EQ(sold.closePrice, 1.10199);
    }
}

TEST_CASE("a minute is ambiguous when its own side of the price reached both levels")
{
    for (const Model model : {Model::Ohlc, Model::Path}) {
        CHECK(tradeOf({quiet, wide, quiet}, model, Side::Buy, 1.09801, 1.10099).ambiguous);
        const TradeRow stopped = tradeOf({quiet, wide, quiet}, model, Side::Buy, 1.09801, 1.10101);
        CHECK_EQ(stopped.reason, ExitReason::StopLoss);
        CHECK(!stopped.ambiguous);
    }
}

TEST_CASE("no stop or target is filled beyond what was recorded of its side in that minute")
{
    for (const Model model : allModels) {
        const std::vector<Sides> minutes = someMinutes(1440, 7);
        const MinuteHistory history = recorded(minutes);
        const RunSettings settings = settingsOf(model);
        practice::HashRandom random(11);
        const auto away = [&random] { return (10 + std::floor(random.uniform() * 60)) / 1e5; };
        AccountSession session(settings, {&history});
        PriceWalk walk(history, settings, 0, history.size());
        for (Moment moment; walk.next(moment);) {
            session.advance(moment);
            if (moment.time != history.timeAt(moment.minute) || session.view().positions >= 4)
                continue;
            const double mid = static_cast<double>(moment.mid) / 1e5;
            const bool isBuy = random.uniform() < 0.5;
            const double up = mid + 40e-5 + away();
            const double down = mid - 40e-5 - away();
            session.order(isBuy ? Side::Buy : Side::Sell, 0.01, isBuy ? down : up, isBuy ? up : down);
        }
        RunResult result;
        session.finish(result);
        std::size_t exits = 0;
        std::size_t beyond = 0;
        for (const TradeRow& row : result.trades) {
            if (row.reason != ExitReason::StopLoss && row.reason != ExitReason::TakeProfit)
                continue;
            const std::size_t minute = history.firstFrom(row.closeTime + 1) - 1;
            const std::int64_t price = std::llround(row.closePrice * 1e5);
            const bool isBuy = row.side == Side::Buy;
            const GridBar& bar = isBuy ? minutes[minute].bid : minutes[minute].ask;
            ++exits;
            beyond += price < bar.low - (isBuy ? 1 : 0) || price > bar.high + (isBuy ? 0 : 1) ? 1 : 0;
        }
        CHECK(exits > 100);
        CHECK_EQ(beyond, std::size_t(0));
    }
}

CHECK_MAIN()
