#include "MarketChecks.h"
#include "RecordFolder.h"

#include "practice/core/market/ReplayMarket.h"

#include <cstdlib>

using namespace practice;
using namespace practice::checks;

namespace {

// A wandering price with a hole of five minutes in the middle. One decimal; always above 900.
std::vector<GridBar> someRecord(int count)
{
    HashRandom random(77);
    std::vector<GridBar> result;
    std::int64_t price = 10'000;
    for (int i = 0; i < count; ++i) {
        GridBar bar{price, price, price, price, 0};
        for (int step = 0; step < 20; ++step) {
            bar.close += static_cast<std::int64_t>(random.uniform() * 7) - 3;
            bar.high = std::max(bar.high, bar.close);
            bar.low = std::min(bar.low, bar.close);
        }
        bar.volume = 20 + i % 50;
        result.push_back(bar);
        price = bar.close + (i % 9 == 0 ? 2 : 0);
    }
    return result;
}

std::string asCsv(const std::vector<GridBar>& record)
{
    std::string text = "time,open,high,low,close,volume\n";
    const auto price
        = [](std::int64_t points) { return std::to_string(points / 10) + '.' + std::to_string(points % 10); };
    for (std::size_t i = 0; i < record.size(); ++i) {
        const auto hole = i >= record.size() / 2 ? 5 : 0;
        text += minuteText(static_cast<TimeMs>(i + static_cast<std::size_t>(hole))) + ','
            + price(record[i].open) + ',' + price(record[i].high) + ',' + price(record[i].low) + ','
            + price(record[i].close) + ',' + std::to_string(record[i].volume) + '\n';
    }
    return text;
}

constexpr int recordLength = 1000;
constexpr TimeMs startedAt = 1'795'251'600'000; // a whole minute

struct Played {
    explicit Played(double speed)
        : market((folder.write("XTEST-1m.csv", asCsv(record)), folder.path()), startedAt, speed)
        , symbol(findSymbol(market.symbols(), "XTEST").value())
    {
    }

    [[nodiscard]] Bar minuteAt(TimeMs start)
    {
        return market.bars(symbol, Timeframe::M1, 1, start + minuteMs - 1).back();
    }

    RecordFolder folder;
    std::vector<GridBar> record = someRecord(recordLength);
    ReplayMarket market;
    std::size_t symbol;
};

Bar asBar(const GridBar& bar, TimeMs time)
{
    return {time, static_cast<double>(bar.open) / 10, static_cast<double>(bar.high) / 10,
        static_cast<double>(bar.low) / 10, static_cast<double>(bar.close) / 10, bar.volume};
}

std::string complaint(const std::filesystem::path& folder)
{
    try {
        const ReplayMarket market(folder, startedAt);
    } catch (const MarketDataError& error) {
        return error.what();
    }
    return "accepted";
}

} // namespace

TEST_CASE("recorded minutes are played one by one across their holes, two fifths of them before the start")
{
    Played played(1);
    const TimeMs first = startedAt - recordLength * 2 / 5 * minuteMs;
    const auto bars
        = played.market.bars(played.symbol, Timeframe::M1, recordLength, first + recordLength * minuteMs - 1);
    REQUIRE(bars.size() == recordLength);
    bool same = true;
    for (std::size_t i = 0; i < bars.size(); ++i)
        same = same && bars[i] == asBar(played.record[i], first + static_cast<TimeMs>(i) * minuteMs);
    CHECK(same);
}

TEST_CASE("at its end the record runs backwards and then forwards again without a leap")
{
    Played played(1);
    const TimeMs first = startedAt - recordLength * 2 / 5 * minuteMs;
    const TimeMs turn = first + recordLength * minuteMs;
    GridBar lastReversed = played.record.back();
    std::swap(lastReversed.open, lastReversed.close);
    CHECK(played.minuteAt(turn) == asBar(lastReversed, turn));
    CHECK_EQ(played.minuteAt(turn - minuteMs).close, played.minuteAt(turn).open);
    const TimeMs again = turn + recordLength * minuteMs;
    CHECK(played.minuteAt(again) == asBar(played.record.front(), again));
    CHECK_EQ(played.minuteAt(again - minuteMs).close, played.minuteAt(again).open);
}

TEST_CASE("the simulated past ends where the record begins")
{
    for (const double speed : {0.5, 1.0, 7.0, 400.0}) {
        Played played(speed);
        const auto lead = static_cast<TimeMs>(recordLength * 2 / 5 * minuteMs / speed);
        const TimeMs first = barStart(startedAt - lead, Timeframe::M1);
        CHECK_EQ(played.market.bars(played.symbol, Timeframe::M1, 1, first - 1).back().close, 1000.0);
        CHECK_EQ(played.market.bars(played.symbol, Timeframe::M1, 1, first).back().open, 1000.0);
        for (const Timeframe timeframe : allTimeframes) {
            const auto bars = played.market.bars(played.symbol, timeframe, 1000, first + dayMs);
            CHECK_EQ(bars.size(), std::size_t(1000));
            for (std::size_t i = 1; i < bars.size(); ++i)
                REQUIRE(std::abs(bars[i].open - bars[i - 1].close) <= 0.2000001);
        }
    }
}

TEST_CASE("a replayed bar is the fold of its shorter bars at any whole speed, past and present")
{
    for (const double speed : {1.0, 3.0, 20.0, 1000.0}) {
        Played played(speed);
        const auto lead = static_cast<TimeMs>(recordLength * 2 / 5 * minuteMs / speed);
        HashRandom random(9);
        std::vector<TimeMs> moments{startedAt, startedAt - lead, startedAt - lead - 1, startedAt + 59'999};
        for (int i = 0; i < 15; ++i)
            moments.push_back(startedAt + static_cast<TimeMs>((random.uniform() - 0.3) * 3 * dayMs));
        for (const TimeMs now : moments) {
            CHECK(foldsFrom(played.market, played.symbol, Timeframe::M5, Timeframe::M1, now));
            CHECK(foldsFrom(played.market, played.symbol, Timeframe::H1, Timeframe::M5, now));
            CHECK(foldsFrom(played.market, played.symbol, Timeframe::H4, Timeframe::M1, now));
            CHECK(foldsFrom(played.market, played.symbol, Timeframe::D1, Timeframe::H1, now));
            CHECK(foldsFrom(played.market, played.symbol, Timeframe::W1, Timeframe::M15, now));
            CHECK(foldsFrom(played.market, played.symbol, Timeframe::MN, Timeframe::D1, now));
        }
    }
}

TEST_CASE("bars of a replay at a broken speed are whole, on the grid and fold as well")
{
    for (const double speed : {0.1, 0.37, 2.5, 33.3}) {
        Played played(speed);
        for (const Timeframe timeframe : allTimeframes) {
            const auto bars = played.market.bars(played.symbol, timeframe, 300, startedAt + 5 * hourMs);
            for (std::size_t i = 1; i < bars.size(); ++i) {
                const Bar& bar = bars[i];
                REQUIRE(
                    bar.low <= std::min(bar.open, bar.close) && bar.high >= std::max(bar.open, bar.close));
                REQUIRE(bar.time - bars[i - 1].time == timeframeLength(timeframe) && bar.volume >= 0);
            }
        }
        CHECK(foldsFrom(
            played.market, played.symbol, Timeframe::H1, Timeframe::M1, startedAt + 5 * hourMs + 7));
        CHECK(foldsFrom(
            played.market, played.symbol, Timeframe::D1, Timeframe::M5, startedAt + 5 * hourMs + 7));
    }
}

TEST_CASE("a replay meets its live price on every timeframe")
{
    for (const double speed : {0.3, 1.0, 50.0, 1000.0}) {
        Played played(speed);
        for (const TimeMs now : someMoments(4, 15))
            checkMeetsLivePrice(played.market, played.symbol, now);
    }
}

TEST_CASE("the same start gives the same prices, a later start plays the record later")
{
    Played one(1);
    ReplayMarket restarted(one.folder.path(), startedAt);
    ReplayMarket later(one.folder.path(), startedAt + hourMs);
    const TimeMs now = startedAt + 12'345;
    CHECK(one.market.quote(one.symbol, now) == restarted.quote(one.symbol, now));
    CHECK(one.market.bars(one.symbol, Timeframe::M1, 900, now)
        == restarted.bars(one.symbol, Timeframe::M1, 900, now));
    CHECK_EQ(one.market.bars(one.symbol, Timeframe::M1, 1, now).back().open,
        later.bars(one.symbol, Timeframe::M1, 1, now + hourMs).back().open);
}

TEST_CASE("symbols without a record are simulated beside it")
{
    Played played(1);
    const SimulatedMarket simulated(1);
    CHECK_EQ(played.market.symbols().size(), simulated.symbols().size() + 1);
    SimulatedMarket again(1);
    CHECK(played.market.quote(0, someNow) == again.quote(0, someNow));
}

TEST_CASE("a replayed symbol takes digits, level and spread from the record and the rest from the list")
{
    RecordFolder folder;
    folder.write("XAUUSD-1m.csv",
        "time,open,high,low,close,volume,ask_open,ask_high,ask_low,ask_close\n"
        "2014-05-01T00:00:00Z,1300.100,1300.200,1300.000,1300.150,0,1300.500,1300.600,1300.400,1300.550\n"
        "2014-05-01T00:01:00Z,1300.150,1300.250,1300.100,1300.200,0,1300.550,1300.650,1300.500,1300.600\n");
    folder.write("ABC30EUR-1m.csv", asCsv(someRecord(10)));
    folder.write("notes.txt", "not a record");
    folder.write("BAD NAME-1m.csv", "not a record");
    ReplayMarket market(folder.path(), startedAt);
    const std::size_t gold = findSymbol(market.symbols(), "XAUUSD").value();
    const SymbolSpec& spec = market.symbols()[gold];
    const SymbolSpec& listed = symbolCatalog()[findSymbol(symbolCatalog(), "XAUUSD").value()];
    CHECK_EQ(spec.digits, 3);
    CHECK_EQ(spec.spreadPoints, 400);
    CHECK_EQ(spec.contractSize, listed.contractSize);
    CHECK_NEAR(spec.swapLong / 1000, listed.swapLong / 100, 1e-9);
    CHECK_NEAR(market.quote(gold, startedAt).ask - market.quote(gold, startedAt).bid, 0.4, 1e-9);
    const SymbolSpec& index = market.symbols().back();
    CHECK_EQ(index.name, std::string("ABC30EUR"));
    CHECK_EQ(index.profitCurrency, std::string("EUR"));
    CHECK_EQ(index.contractSize, 1.0);
    CHECK_EQ(index.sortOrder, static_cast<int>(market.symbols().size()));
}

TEST_CASE("while a minute is played each side stays within its own recorded range and touches both ends")
{
    // Mids of 105, 137, 65 and 113: the spread is wide at both extremes, at the low most of all.
    constexpr GridBar bid{100, 130, 40, 110, 0};
    constexpr GridBar ask{110, 144, 90, 116, 0};
    RecordFolder folder;
    std::string text = "time,open,high,low,close,volume,ask_open,ask_high,ask_low,ask_close\n";
    for (TimeMs minute = 0; minute < 10; ++minute)
        text += minuteText(minute) + ",100,130,40,110,9,110,144,90,116\n";
    folder.write("XTEST-1m.csv", text);
    for (const double speed : {1.0, 7.0}) {
        ReplayMarket market(folder.path(), startedAt, speed);
        const std::size_t symbol = findSymbol(market.symbols(), "XTEST").value();
        const auto length = static_cast<TimeMs>(static_cast<double>(minuteMs) / speed);
        const TimeMs first = barStart(startedAt - 4 * length, Timeframe::M1);
        Quote lowest{1000, 1000};
        Quote highest;
        for (TimeMs now = first; now < first + 10 * length; now = market.nextTick(symbol, now)) {
            const Quote quote = market.quote(symbol, now);
            CHECK(quote == market.quote(symbol, market.nextTick(symbol, now) - 1));
            lowest = {std::min(lowest.bid, quote.bid), std::min(lowest.ask, quote.ask)};
            highest = {std::max(highest.bid, quote.bid), std::max(highest.ask, quote.ask)};
            const PriceSpan span = market.span(symbol, now, now);
            CHECK(span.halfSpread >= (quote.ask - quote.bid) / 2);
        }
        CHECK(lowest == (Quote{bid.low, ask.low}));
        CHECK(highest == (Quote{bid.high, ask.high}));
        CHECK(market.quote(symbol, first) == (Quote{bid.open, ask.open}));
        CHECK(market.quote(symbol, first + length - 1) == (Quote{bid.close, ask.close}));
    }
}

TEST_CASE("a digest tells each recorded number, and nothing but what was recorded")
{
    const std::string header = "time,open,high,low,close,volume,ask_open,ask_high,ask_low,ask_close\n";
    const std::string first = "2014-05-01T00:00:00Z,1.31,1.34,1.30,1.32,7,1.35,1.38,1.34,1.36\n";
    const std::string second = "2014-05-01T00:01:00Z,";
    const std::string row = "1.32,1.35,1.31,1.33,9,1.36,1.39,1.35,1.37\n";
    RecordFolder folder;
    const auto digestOf = [&](const std::string& text) {
        folder.write("XTEST-1m.csv", text);
        return ReplayMarket(folder.path(), startedAt).digest();
    };
    const std::string begun = header + first + second;
    const std::string text = begun + row;
    const std::uint64_t digest = digestOf(text);
    CHECK_EQ(digestOf(text), digest);
    CHECK_EQ(digestOf("\xEF\xBB\xBF" + text + "\n\n"), digest);
    for (const char* other : {
             "1.31,1.35,1.31,1.33,9,1.36,1.39,1.35,1.37\n", // another open
             "1.32,1.37,1.31,1.33,9,1.36,1.39,1.35,1.37\n", // high
             "1.32,1.35,1.30,1.33,9,1.36,1.39,1.35,1.37\n", // low
             "1.32,1.35,1.31,1.32,9,1.36,1.39,1.35,1.36\n", // close
             "1.32,1.35,1.31,1.33,9,1.38,1.39,1.35,1.37\n", // spread at the open
             "1.32,1.35,1.31,1.33,9,1.36,1.41,1.35,1.37\n", // at the high
             "1.32,1.35,1.31,1.33,9,1.36,1.39,1.33,1.37\n", // at the low
             "1.32,1.35,1.31,1.33,9,1.36,1.39,1.35,1.39\n", // at the close
             "1.32,1.35,1.31,1.33,8,1.36,1.39,1.35,1.37\n"  // volume
         })
        CHECK(digestOf(begun + other) != digest);
    CHECK(digestOf(text + "2014-05-01T00:02:00Z," + row) != digest);
    CHECK(digestOf(header + "2014-05-01T00:00:00Z,13.1,13.4,13.0,13.2,7,13.5,13.8,13.4,13.6\n" + second
              + "13.2,13.5,13.1,13.3,9,13.6,13.9,13.5,13.7\n")
        != digest);
    folder.write("YTEST-1m.csv", text);
    CHECK(digestOf(text) != digest);
    std::filesystem::remove(folder.path() / "YTEST-1m.csv");
    CHECK_EQ(digestOf(text), digest);
    RecordFolder renamed;
    renamed.write("YTEST-1m.csv", text);
    CHECK(ReplayMarket(renamed.path(), startedAt).digest() != digest);
}

TEST_CASE("prices and digest of a record are pinned, for open trades outlive an upgrade")
{
    // If this fails on purpose, raise the generator's number in MarketSetup.
    Played played(2.5);
    CHECK_EQ(played.market.digest(), std::uint64_t(14088801419860899609U));
    const Quote quote = played.market.quote(played.symbol, startedAt + 12'345);
    CHECK_EQ(quote.bid, 1007.5);
    CHECK_EQ(quote.ask, 1007.7);
    CHECK_EQ(played.market.quote(played.symbol, startedAt + dayMs).bid, 999.9);
    CHECK_EQ(played.market.quote(played.symbol, startedAt - dayMs).bid, 965.9);
}

TEST_CASE("a folder that cannot be replayed is refused with one line that names it")
{
    RecordFolder folder;
    CHECK_EQ(complaint(folder.path()), folder.path().string() + ": holds no file named SYMBOL-1m.csv");
    CHECK(complaint("/nowhere/at/all").starts_with("/nowhere/at/all: "));
    folder.write("EURUSD-1m.csv", "time,open,high,low,close,volume\n2014-05-01T00:00:00Z,1,1,1\n");
    CHECK_EQ(complaint(folder.path()),
        (folder.path() / "EURUSD-1m.csv").string() + ":2: expected 6 columns, found 4");
}

TEST_CASE("recorded history of real markets plays through")
{
    const char* folder = std::getenv("TAVORAN_HISTORY_DIR");
    if (!folder)
        check::skip("TAVORAN_HISTORY_DIR is not set");
    for (const double speed : {1.0, 25.0}) {
        ReplayMarket market(folder, someNow, speed);
        for (const char* name : {"EURUSD", "XAUUSD", "DE30EUR"}) {
            const auto symbol = findSymbol(market.symbols(), name);
            if (!symbol)
                continue;
            for (const Timeframe timeframe : allTimeframes) {
                const auto bars = market.bars(*symbol, timeframe, 1000, someNow);
                CHECK_EQ(bars.size(), std::size_t(1000));
                CHECK(wellFormed(bars, timeframe, market.symbols()[*symbol].digits, false));
            }
            for (const TimeMs now : someMoments(12, 5)) {
                checkMeetsLivePrice(market, *symbol, now);
                CHECK(foldsFrom(market, *symbol, Timeframe::H1, Timeframe::M1, now));
                CHECK(foldsFrom(market, *symbol, Timeframe::D1, Timeframe::M5, now));
            }
        }
    }
}

CHECK_MAIN()
