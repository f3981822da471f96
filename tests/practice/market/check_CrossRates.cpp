#include "MarketChecks.h"
#include "RecordFolder.h"

#include "practice/core/market/ReplayMarket.h"
#include "practice/core/market/SimulatedMarket.h"

#include <functional>
#include <utility>

using namespace practice;
using namespace practice::checks;

namespace {

/// cross = first x second, or first / second.
struct Triangle {
    const char* cross;
    const char* first;
    const char* second;
    bool divided;
};

constexpr Triangle eurJpy{"EURJPY", "EURUSD", "USDJPY", false};
constexpr Triangle eurGbp{"EURGBP", "EURUSD", "GBPUSD", true};
constexpr Triangle triangles[]{eurJpy, eurGbp};

std::size_t symbolNamed(const PriceSource& source, const char* name)
{
    return findSymbol(source.symbols(), name).value();
}

/// The cross's price put together from its legs, each through `price`.
double combined(
    const PriceSource& source, const Triangle& triangle, const std::function<double(std::size_t)>& price)
{
    const double first = price(symbolNamed(source, triangle.first));
    const double second = price(symbolNamed(source, triangle.second));
    return triangle.divided ? first / second : first * second;
}

double middle(const Quote& quote)
{
    return (quote.bid + quote.ask) / 2;
}

/// Nobody can buy the cross and sell its legs, or the other way round, at a gain.
bool tied(PriceSource& source, const Triangle& triangle, TimeMs now)
{
    const std::size_t cross = symbolNamed(source, triangle.cross);
    const Quote quoted = source.quote(cross, now);
    const Quote first = source.quote(symbolNamed(source, triangle.first), now);
    const Quote second = source.quote(symbolNamed(source, triangle.second), now);
    const double bid = triangle.divided ? first.bid / second.ask : first.bid * second.bid;
    const double ask = triangle.divided ? first.ask / second.bid : first.ask * second.ask;
    const double point = 1 / pointsPerUnit(source.symbols()[cross].digits);
    const double wanted
        = combined(source, triangle, [&](std::size_t symbol) { return middle(source.quote(symbol, now)); });
    return quoted.ask > bid && quoted.bid < ask && std::abs(middle(quoted) - wanted) <= 0.501 * point;
}

/// The close of every bar is the legs' closes together, its high and low are prices that they had together.
void checkBarsFollow(PriceSource& source, const Triangle& triangle, Timeframe timeframe, TimeMs now)
{
    const std::size_t cross = symbolNamed(source, triangle.cross);
    const double point = 1 / pointsPerUnit(source.symbols()[cross].digits);
    const std::vector<Bar> bars = source.bars(cross, timeframe, 25, now);
    const std::vector<Bar> first = source.bars(symbolNamed(source, triangle.first), timeframe, 25, now);
    const std::vector<Bar> second = source.bars(symbolNamed(source, triangle.second), timeframe, 25, now);
    REQUIRE(bars.size() == 25 && first.size() == 25 && second.size() == 25);
    for (std::size_t i = 0; i < bars.size(); ++i) {
        const auto join = [&](double a, double b) { return triangle.divided ? a / b : a * b; };
        CHECK_NEAR(bars[i].open, join(first[i].open, second[i].open), 0.501 * point);
        CHECK_NEAR(bars[i].close, join(first[i].close, second[i].close), 0.501 * point);
        const double high = join(first[i].high, triangle.divided ? second[i].low : second[i].high);
        const double low = join(first[i].low, triangle.divided ? second[i].high : second[i].low);
        CHECK(bars[i].high <= high + 0.501 * point && bars[i].low >= low - 0.501 * point);
    }
}

/// The minute that holds `now` is the fold of its ticks.
void checkMinuteIsItsTicks(PriceSource& source, const char* name, TimeMs now)
{
    const std::size_t symbol = symbolNamed(source, name);
    const int digits = source.symbols()[symbol].digits;
    const TimeMs start = barStart(now, Timeframe::M1);
    std::int64_t high = 0;
    std::int64_t low = INT64_MAX;
    for (TimeMs time = start; time < start + minuteMs; ++time) {
        const std::int64_t mid = midPoints(source.quote(symbol, time), digits);
        high = std::max(high, mid);
        low = std::min(low, mid);
        if (time % 1777 != 0)
            continue;
        const Bar forming = source.bars(symbol, Timeframe::M1, 1, time).back();
        CHECK_EQ(std::llround(forming.high * pointsPerUnit(digits)), high);
        CHECK_EQ(std::llround(forming.low * pointsPerUnit(digits)), low);
    }
    const Bar minute = source.bars(symbol, Timeframe::M1, 1, start + minuteMs - 1).back();
    CHECK_EQ(std::llround(minute.high * pointsPerUnit(digits)), high);
    CHECK_EQ(std::llround(minute.low * pointsPerUnit(digits)), low);
}

std::string recordFrom(double start, int digits, std::uint64_t key)
{
    HashRandom random(key);
    const double unit = pointsPerUnit(digits);
    const auto price = [&](std::int64_t points) {
        char text[32];
        std::snprintf(text, sizeof text, "%.*f", digits, static_cast<double>(points) / unit);
        return std::string(text);
    };
    std::string text = "time,open,high,low,close,volume\n";
    auto open = static_cast<std::int64_t>(start * unit);
    for (int i = 0; i < 900; ++i) {
        const auto close = open + static_cast<std::int64_t>(40 * random.gaussian());
        const auto wick = static_cast<std::int64_t>(25 * random.uniform());
        text += minuteText(i) + ',' + price(open) + ',' + price(std::max(open, close) + wick) + ','
            + price(std::min(open, close) - wick) + ',' + price(close) + ",30\n";
        open = close;
    }
    return text;
}

constexpr TimeMs startedAt = 1'795'251'600'000;

/// A market that plays records of these symbols.
struct Played {
    explicit Played(const std::vector<std::pair<std::string, double>>& recorded, double speed = 1)
    {
        std::uint64_t key = 40;
        for (const auto& [name, start] : recorded)
            folder.write(name + "-1m.csv", recordFrom(start, start > 50 ? 3 : 5, ++key));
        market = std::make_unique<ReplayMarket>(folder.path(), startedAt, speed, 3);
    }
    RecordFolder folder;
    std::unique_ptr<ReplayMarket> market;
};

double correlation(const std::vector<double>& left, const std::vector<double>& right)
{
    double product = 0;
    for (std::size_t i = 0; i < left.size(); ++i)
        product += left[i] * right[i];
    return product / static_cast<double>(left.size()) / deviation(left) / deviation(right);
}

/// Of the bars' returns.
double correlation(PriceSource& source, const char* left, const char* right, Timeframe timeframe)
{
    constexpr std::size_t count = 1500;
    return correlation(logReturns(source.bars(symbolNamed(source, left), timeframe, count, someNow)),
        logReturns(source.bars(symbolNamed(source, right), timeframe, count, someNow)));
}

} // namespace

TEST_CASE("a cross rate is its legs' product or quotient at every moment, at any speed")
{
    for (const double speed : {0.1, 1.0, 7.5, 200.0, 1000.0}) {
        SimulatedMarket market(26, speed);
        for (const TimeMs now : someMoments(10, 250)) {
            for (const Triangle& triangle : triangles)
                REQUIRE(tied(market, triangle, now));
        }
    }
}

TEST_CASE("a cross rate's bars follow its legs on every timeframe")
{
    SimulatedMarket market(26, 3);
    for (const TimeMs now : someMoments(12, 1)) {
        for (const Timeframe timeframe : allTimeframes) {
            for (const Triangle& triangle : triangles)
                checkBarsFollow(market, triangle, timeframe, now);
        }
    }
}

TEST_CASE("a cross rate's minute is the fold of its ticks, and its longer bars that of its minutes")
{
    // Within a day, at its end and in the middle of a month.
    const std::vector<TimeMs> crossMoments{
        someNow, barStart(someNow, Timeframe::D1) - 1, barStart(someNow, Timeframe::H4)};
    for (const double speed : {1.0, 60.0}) {
        SimulatedMarket market(27, speed);
        for (const TimeMs now : crossMoments) {
            for (const Triangle& triangle : triangles) {
                checkMinuteIsItsTicks(market, triangle.cross, now);
                const std::size_t cross = symbolNamed(market, triangle.cross);
                CHECK(foldsFrom(market, cross, Timeframe::M5, Timeframe::M1, now));
                CHECK(foldsFrom(market, cross, Timeframe::H1, Timeframe::M1, now));
                CHECK(foldsFrom(market, cross, Timeframe::D1, Timeframe::M1, now));
                CHECK(foldsFrom(market, cross, Timeframe::W1, Timeframe::H1, now));
                CHECK(foldsFrom(market, cross, Timeframe::MN, Timeframe::D1, now));
            }
        }
    }
}

TEST_CASE("a cross rate follows a leg that is replayed, and the other that is simulated")
{
    for (const double speed : {1.0, 2.5, 40.0}) {
        Played played({{"EURUSD", 1.31}}, speed);
        PriceSource& market = *played.market;
        HashRandom random(4);
        for (int i = 0; i < 300; ++i) {
            const TimeMs now = startedAt + static_cast<TimeMs>((random.uniform() - 0.3) * 2 * dayMs);
            for (const Triangle& triangle : triangles)
                REQUIRE(tied(market, triangle, now));
        }
        checkMinuteIsItsTicks(market, "EURJPY", startedAt + 5 * hourMs);
        const std::size_t cross = symbolNamed(market, "EURJPY");
        CHECK(foldsFrom(market, cross, Timeframe::H1, Timeframe::M1, startedAt + 3 * hourMs));
        CHECK(foldsFrom(market, cross, Timeframe::D1, Timeframe::M5, startedAt + dayMs));
    }
    Played both({{"EURUSD", 1.31}, {"USDJPY", 98}});
    for (const TimeMs now : someMoments(14, 200))
        REQUIRE(tied(*both.market, eurJpy, now));
}

TEST_CASE("where a cross rate is recorded, a leg that is not follows from it")
{
    Played played({{"EURJPY", 95}, {"EURGBP", 0.8}});
    PriceSource& market = *played.market;
    for (const TimeMs now : someMoments(15, 300)) {
        const double euro = middle(market.quote(symbolNamed(market, "EURUSD"), now));
        const double yen = middle(market.quote(symbolNamed(market, "USDJPY"), now));
        const double pound = middle(market.quote(symbolNamed(market, "GBPUSD"), now));
        REQUIRE(std::abs(yen - middle(market.quote(symbolNamed(market, "EURJPY"), now)) / euro) <= 0.000501);
        REQUIRE(
            std::abs(pound - euro / middle(market.quote(symbolNamed(market, "EURGBP"), now))) <= 0.00000501);
    }
    // The record is played as it is.
    const Bar first
        = market.bars(symbolNamed(market, "EURJPY"), Timeframe::M1, 1, startedAt - 360 * minuteMs).back();
    CHECK_EQ(first.open, 95.0);
    checkMinuteIsItsTicks(market, "USDJPY", startedAt + 2 * hourMs);
    CHECK(foldsFrom(market, symbolNamed(market, "USDJPY"), Timeframe::H4, Timeframe::M1, startedAt + dayMs));
}

TEST_CASE("a cross rate follows however many legs lead from one currency to the other")
{
    // EUR and USD are tied by way of five that nothing else knows.
    const std::vector<std::pair<std::string, double>> chain{{"AAAEUR", 1.3}, {"AAAGBP", 1.1}, {"BBBGBP", 1.2},
        {"BBBAUD", 1.4}, {"CCCAUD", 1.2}, {"CCCCHF", 1.1}, {"DDDCHF", 1.3}, {"DDDCAD", 1.2}, {"EEECAD", 1.4},
        {"EEEUSD", 1.3}};
    Played played(chain);
    PriceSource& market = *played.market;
    for (const TimeMs now : someMoments(16, 50)) {
        double wanted = 1;
        for (std::size_t i = 0; i < chain.size(); ++i) {
            const double leg = middle(market.quote(symbolNamed(market, chain[i].first.c_str()), now));
            wanted = i % 2 == 0 ? wanted / leg : wanted * leg;
        }
        REQUIRE(std::abs(middle(market.quote(symbolNamed(market, "EURUSD"), now)) - wanted) <= 0.00000501);
    }
    checkMinuteIsItsTicks(market, "EURUSD", startedAt + 2 * hourMs);
    CHECK(foldsFrom(market, symbolNamed(market, "EURUSD"), Timeframe::M5, Timeframe::M1, startedAt + hourMs));
}

TEST_CASE("a triangle of records is played as it was recorded")
{
    Played played({{"EURUSD", 1.3}, {"USDJPY", 98}, {"EURJPY", 150}});
    const TimeMs first = startedAt - 360 * minuteMs;
    for (const auto& [name, open] :
        std::vector<std::pair<const char*, double>>{{"EURUSD", 1.3}, {"USDJPY", 98}, {"EURJPY", 150}}) {
        const std::size_t symbol = symbolNamed(*played.market, name);
        CHECK_EQ(played.market->bars(symbol, Timeframe::M1, 1, first).back().open, open);
    }
}

TEST_CASE("symbols move together as far as they have something in common")
{
    struct Band {
        const char* left;
        const char* right;
        double least;
        double most;
    };
    constexpr Band bands[]{{"EURUSD", "GBPUSD", 0.45, 0.75}, {"EURUSD", "AUDUSD", 0.3, 0.7},
        {"EURUSD", "USDCHF", -0.85, -0.45}, {"EURUSD", "USDJPY", -0.65, -0.2},
        {"AUDUSD", "USDCAD", -0.8, -0.35}, {"AUDUSD", "US500", 0.2, 0.6}, {"USDCAD", "USOIL", -0.5, -0.1},
        {"BTCUSD", "ETHUSD", 0.5, 0.9}, {"BTCUSD", "US500", 0.05, 0.4}, {"XAUUSD", "EURUSD", 0.1, 0.5},
        {"XAUUSD", "US500", -0.2, 0.2}, {"EURJPY", "US500", 0.05, 0.55}, {"EURUSD", "EURJPY", 0.2, 0.8}};
    // The shorter the bars, the more of a move is a symbol's own.
    const std::vector<std::pair<Timeframe, double>> frames{
        {Timeframe::D1, 1}, {Timeframe::H1, 0.5}, {Timeframe::M5, 0.4}};
    for (const double speed : {1.0, 30.0}) {
        SimulatedMarket market(31, speed);
        for (const auto& [timeframe, lowered] : frames) {
            for (const Band& band : bands) {
                const double found = correlation(market, band.left, band.right, timeframe);
                const double least = band.least > 0 ? lowered * band.least : band.least;
                const double most = band.most < 0 ? lowered * band.most : band.most;
                if (!CHECK(found > least && found < most))
                    std::cout << band.left << ' ' << band.right << ' ' << timeframeKey(timeframe) << ' '
                              << found << '\n';
            }
        }
    }
}

TEST_CASE("the same seed gives a cross rate the same history, in whatever order it is asked for")
{
    SimulatedMarket one(32);
    SimulatedMarket other(32);
    const std::size_t cross = symbolNamed(one, "EURJPY");
    const std::vector<TimeMs> moments = someMoments(33, 20);
    std::vector<Bar> bars;
    for (const TimeMs now : moments)
        bars.push_back(one.bars(cross, Timeframe::H4, 1, now).back());
    for (std::size_t i = moments.size(); i-- > 0;) {
        CHECK(
            other.bars(cross, Timeframe::D1, 3, moments[i]) == one.bars(cross, Timeframe::D1, 3, moments[i]));
        CHECK(other.bars(cross, Timeframe::H4, 1, moments[i]).back() == bars[i]);
    }
}

CHECK_MAIN()
