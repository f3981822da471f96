#include "MarketChecks.h"

#include "practice/core/market/SimulatedMarket.h"

#include <limits>
#include <stdexcept>

using namespace practice;
using namespace practice::checks;

namespace {

constexpr double someSpeeds[]{0.1, 1, 7.5, 60, 1000};

std::size_t symbolNamed(const PriceSource& source, const char* name)
{
    return findSymbol(source.symbols(), name).value();
}

} // namespace

TEST_CASE("a bar is the fold of its shorter bars, finished or forming, at any speed")
{
    for (const double speed : someSpeeds) {
        SimulatedMarket market(11, speed);
        HashRandom random(3);
        for (const TimeMs now : someMoments(5, 10)) {
            const auto symbol = static_cast<std::size_t>(random.uniform() * 13);
            CHECK(foldsFrom(market, symbol, Timeframe::M5, Timeframe::M1, now));
            CHECK(foldsFrom(market, symbol, Timeframe::M15, Timeframe::M1, now));
            CHECK(foldsFrom(market, symbol, Timeframe::H1, Timeframe::M5, now));
            CHECK(foldsFrom(market, symbol, Timeframe::H4, Timeframe::M15, now));
            CHECK(foldsFrom(market, symbol, Timeframe::D1, Timeframe::M1, now));
            CHECK(foldsFrom(market, symbol, Timeframe::W1, Timeframe::H1, now));
            CHECK(foldsFrom(market, symbol, Timeframe::MN, Timeframe::D1, now));
        }
    }
}

TEST_CASE("a minute is the fold of its ticks")
{
    SimulatedMarket market(11, 5);
    for (const TimeMs now : someMoments(6, 4)) {
        const TimeMs start = barStart(now, Timeframe::M1);
        const Bar minute = market.bars(0, Timeframe::M1, 1, start + minuteMs - 1).back();
        const double unit = pointsPerUnit(5);
        std::int64_t high = 0;
        std::int64_t low = INT64_MAX;
        for (TimeMs time = start; time < start + minuteMs; time += 10) {
            const std::int64_t mid = midPoints(market.quote(0, time), 5);
            high = std::max(high, mid);
            low = std::min(low, mid);
            const Bar forming = market.bars(0, Timeframe::M1, 1, time).back();
            REQUIRE(std::llround(forming.high * unit) == high && std::llround(forming.low * unit) == low
                && std::llround(forming.close * unit) == mid);
        }
        CHECK_EQ(high, std::llround(minute.high * unit));
        CHECK_EQ(low, std::llround(minute.low * unit));
    }
}

TEST_CASE("bars are aligned, on the price grid, and open where the last one closed")
{
    for (const double speed : someSpeeds) {
        SimulatedMarket market(12, speed);
        for (std::size_t symbol = 0; symbol < market.symbols().size(); symbol += 3) {
            for (const Timeframe timeframe : allTimeframes) {
                const auto bars = market.bars(symbol, timeframe, 150, someNow);
                CHECK_EQ(bars.size(), std::size_t(150));
                CHECK(wellFormed(bars, timeframe, market.symbols()[symbol].digits, true));
            }
        }
    }
}

TEST_CASE("the history meets the live price on every timeframe at any moment")
{
    for (const double speed : {1.0, 300.0}) {
        SimulatedMarket market(13, speed);
        std::size_t symbol = 0;
        for (const TimeMs now : someMoments(8, 25)) {
            checkMeetsLivePrice(market, symbol, now);
            symbol = (symbol + 1) % market.symbols().size();
        }
    }
}

TEST_CASE("each timeframe reaches back at least a thousand bars")
{
    SimulatedMarket market(14);
    for (const Timeframe timeframe : allTimeframes)
        CHECK_EQ(market.bars(2, timeframe, 1000, someNow).size(), std::size_t(1000));
    CHECK(market.bars(2, Timeframe::M1, 0, someNow).empty());
}

TEST_CASE("more bars than there are give the whole history")
{
    SimulatedMarket market(14);
    const auto bars = market.bars(0, Timeframe::MN, std::numeric_limits<std::size_t>::max(), someNow);
    CHECK(bars.size() >= 1000 && bars.size() < 1200);
    CHECK(wellFormed(bars, Timeframe::MN, 5, true));
}

TEST_CASE("moments asked for in any order give the same prices")
{
    SimulatedMarket forwards(15);
    SimulatedMarket backwards(15);
    std::vector<TimeMs> moments = someMoments(9, 60);
    std::vector<Quote> quotes;
    quotes.reserve(moments.size());
    for (const TimeMs now : moments)
        quotes.push_back(forwards.quote(3, now));
    for (std::size_t i = moments.size(); i-- > 0;)
        CHECK(backwards.quote(3, moments[i]) == quotes[i]);
    CHECK(forwards.bars(3, Timeframe::M5, 300, someNow) == backwards.bars(3, Timeframe::M5, 300, someNow));
}

TEST_CASE("what was history stays history as time passes")
{
    SimulatedMarket market(16);
    for (const Timeframe timeframe : allTimeframes) {
        const auto before = market.bars(4, timeframe, 20, someNow);
        const auto after = market.bars(4, timeframe, 22, someNow + 2 * timeframeLength(timeframe));
        for (std::size_t i = 0; i + 1 < before.size(); ++i)
            CHECK(before[i] == after[i]);
    }
}

TEST_CASE("another seed or another symbol gives other prices")
{
    SimulatedMarket one(17);
    SimulatedMarket other(18);
    CHECK(one.bars(0, Timeframe::H1, 50, someNow) != other.bars(0, Timeframe::H1, 50, someNow));
    const auto euro = logReturns(one.bars(0, Timeframe::H1, 50, someNow));
    const auto pound = logReturns(one.bars(1, Timeframe::H1, 50, someNow));
    CHECK(euro != pound);
}

TEST_CASE("a symbol's prices do not depend on its place in the list")
{
    SimulatedMarket all(19);
    SimulatedMarket alone(19, 1, {all.symbols()[symbolNamed(all, "XAUUSD")]});
    CHECK(all.quote(symbolNamed(all, "XAUUSD"), someNow) == alone.quote(0, someNow));
}

TEST_CASE("the price of a seed and a moment is pinned, for open trades outlive an upgrade")
{
    SimulatedMarket market(7);
    const Quote quote = market.quote(0, someNow + 31'000);
    CHECK_EQ(quote.bid, 1.06773);
    CHECK_EQ(quote.ask, 1.06779);
}

TEST_CASE("the mid changes several times a second and never leaps")
{
    SimulatedMarket market(20);
    const double unit = pointsPerUnit(5);
    const double minuteDeviation = 0.005 / std::sqrt(1440.0) * unit;
    int changes = 0;
    std::int64_t last = midPoints(market.quote(0, someNow), 5);
    constexpr TimeMs seconds = 600;
    for (TimeMs time = someNow; time < someNow + seconds * 1000; time += 50) {
        const std::int64_t mid = midPoints(market.quote(0, time), 5);
        changes += mid != last ? 1 : 0;
        REQUIRE(std::abs(static_cast<double>(mid - last)) < 1.5 * minuteDeviation);
        last = mid;
    }
    CHECK(changes > 2 * seconds);
}

TEST_CASE("prices do not leap over midnight or over a bar's border")
{
    SimulatedMarket market(21);
    for (const TimeMs border : {barStart(someNow, Timeframe::D1), barStart(someNow, Timeframe::MN),
             barStart(someNow, Timeframe::H4), barStart(someNow, Timeframe::M1)}) {
        for (std::size_t symbol = 0; symbol < market.symbols().size(); ++symbol) {
            const int digits = market.symbols()[symbol].digits;
            CHECK_EQ(midPoints(market.quote(symbol, border - 1), digits),
                midPoints(market.quote(symbol, border), digits));
        }
    }
}

TEST_CASE("volatility is the symbol's own on every timeframe")
{
    for (const double speed : {1.0, 20.0}) {
        SimulatedMarket market(22, speed);
        for (const char* name : {"EURUSD", "XAUUSD", "BTCUSD"}) {
            const std::size_t symbol = symbolNamed(market, name);
            const double usual = market.symbols()[symbol].dailyVolatility * std::sqrt(speed);
            const double daily = deviation(logReturns(market.bars(symbol, Timeframe::D1, 20'000, someNow)));
            CHECK(daily > 0.85 * usual && daily < 1.15 * usual);
            // Minutes of sixty days spread over years, so that the mood of a season evens out.
            std::vector<double> returns;
            for (TimeMs i = 0; i < 60; ++i) {
                for (const double value : logReturns(
                         market.bars(symbol, Timeframe::M1, 240, someNow - i * 97 * dayMs - i * 5 * hourMs)))
                    returns.push_back(value);
            }
            const double minutely = deviation(returns) * std::sqrt(1440.0);
            CHECK(minutely > 0.75 * usual && minutely < 1.35 * usual);
        }
    }
}

TEST_CASE("volatility clusters from days down to minutes")
{
    SimulatedMarket market(23);
    for (const Timeframe timeframe : {Timeframe::D1, Timeframe::H1, Timeframe::M5, Timeframe::M1}) {
        const auto returns = logReturns(market.bars(0, timeframe, 10'000, someNow));
        CHECK(absoluteAutocorrelation(returns) > 0.08);
    }
}

TEST_CASE("calm and lively minutes alternate within a few hours too")
{
    SimulatedMarket market(23);
    double sum = 0;
    for (int day = 0; day < 60; ++day) {
        const TimeMs end = barStart(someNow, Timeframe::D1) - day * dayMs + 12 * hourMs - 1;
        sum += absoluteAutocorrelation(logReturns(market.bars(0, Timeframe::M1, 240, end)));
    }
    CHECK(sum / 60 > 0.10);
}

TEST_CASE("a faster market moves more in a minute but not to wilder prices")
{
    SimulatedMarket slow(24, 1);
    SimulatedMarket fast(24, 100);
    const double slowMove = deviation(logReturns(slow.bars(0, Timeframe::M1, 4000, someNow)));
    const double fastMove = deviation(logReturns(fast.bars(0, Timeframe::M1, 4000, someNow)));
    CHECK(fastMove > 4 * slowMove && fastMove < 25 * slowMove);
    double lowest = 10;
    double highest = 0;
    for (const Bar& bar : fast.bars(0, Timeframe::D1, 10'000, someNow)) {
        lowest = std::min(lowest, bar.low);
        highest = std::max(highest, bar.high);
    }
    CHECK(lowest > 1.085 * 0.65 && highest < 1.085 * 1.55);
}

TEST_CASE("the spread breathes around its usual width")
{
    SimulatedMarket market(25);
    for (std::size_t symbol = 0; symbol < market.symbols().size(); ++symbol) {
        const SymbolSpec& spec = market.symbols()[symbol];
        double sum = 0;
        double least = 1e9;
        double most = 0;
        for (TimeMs i = 0; i < 300; ++i) {
            const Quote quote = market.quote(symbol, someNow + i * 37 * minuteMs);
            const double points = std::round((quote.ask - quote.bid) * pointsPerUnit(spec.digits));
            sum += points;
            least = std::min(least, points);
            most = std::max(most, points);
        }
        CHECK(least >= 2 && most > least);
        CHECK(sum / 300 > 0.6 * spec.spreadPoints && sum / 300 < 1.7 * spec.spreadPoints);
    }
}

TEST_CASE("cross rates agree with their USD rates")
{
    SimulatedMarket market(26);
    const auto mid = [&market](const char* name, TimeMs now) {
        const Quote quote = market.quote(symbolNamed(market, name), now);
        return (quote.bid + quote.ask) / 2;
    };
    for (const TimeMs now : someMoments(10, 30)) {
        CHECK_NEAR(mid("EURGBP", now) / (mid("EURUSD", now) / mid("GBPUSD", now)), 1, 1e-5);
        CHECK_NEAR(mid("EURJPY", now) / (mid("EURUSD", now) * mid("USDJPY", now)), 1, 1e-5);
    }
}

TEST_CASE("the volume of a forming bar only grows")
{
    SimulatedMarket market(27);
    std::int64_t last = 0;
    const TimeMs start = barStart(someNow, Timeframe::M15);
    for (TimeMs time = start; time < start + 15 * minuteMs; time += 777) {
        const std::int64_t volume = market.bars(0, Timeframe::M15, 1, time).back().volume;
        CHECK(volume >= last && volume >= 1);
        last = volume;
    }
}

TEST_CASE("absurd arguments get an answer or an exception, never a crash")
{
    SimulatedMarket market(28, std::numeric_limits<double>::quiet_NaN());
    CHECK_THROWS(market.quote(13, someNow), std::out_of_range);
    CHECK_THROWS(market.bars(99, Timeframe::M1, 1, someNow), std::out_of_range);
    const TimeMs before = std::numeric_limits<TimeMs>::min();
    CHECK(market.quote(0, before).bid > 0);
    CHECK_EQ(market.bars(0, Timeframe::MN, 10, before).size(), std::size_t(1));
    CHECK(market.quote(0, std::numeric_limits<TimeMs>::max()).bid > 0);
    CHECK_EQ(boundedSpeed(-3), minMarketSpeed);
    CHECK_EQ(boundedSpeed(1e300), maxMarketSpeed);
}

CHECK_MAIN()
