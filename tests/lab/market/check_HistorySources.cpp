#include "lab/market/Histories.h"
#include "practice/Check.h"
#include "practice/market/RecordFolder.h"

#include "lab/core/market/HistorySources.h"
#include "lab/core/market/RunSpan.h"
#include "practice/core/PointScale.h"
#include "practice/core/market/ReplayMarket.h"
#include "practice/core/market/SimulatedMarket.h"

#include <cmath>
#include <cstdlib>

using namespace lab;
using namespace lab::checks;
using practice::Bar;
using practice::Timeframe;
using practice::checks::RecordFolder;

namespace {

const std::string header = "time,open,high,low,close,volume\n";
const std::string askHeader = "time,open,high,low,close,volume,ask_open,ask_high,ask_low,ask_close\n";

MinuteHistory readFrom(const std::string& name, const std::string& text)
{
    const RecordFolder folder;
    folder.write(name, text);
    return readHistory(folder.path() / name);
}

// What is said about a file, without its folder.
std::string complaint(const std::string& text, const std::string& name = "EURUSD-1m.csv")
{
    const RecordFolder folder;
    folder.write(name, text);
    try {
        static_cast<void>(readHistory(folder.path() / name));
    } catch (const HistoryError& error) {
        const std::string said = error.what();
        const std::string before = folder.path().string() + '/';
        return said.starts_with(before) ? said.substr(before.size()) : "without its path: " + said;
    }
    return "accepted";
}

std::string complaintAboutRow(const std::string& row)
{
    return complaint(header + "2014-05-01T00:00:00Z,1.1,1.3,1.0,1.2,5\n" + row + "\n");
}

std::string complaintAboutSimulation(const std::string& symbol, TimeMs from, TimeMs to)
{
    try {
        static_cast<void>(simulatedHistory(symbol, 1, 1, from, to));
    } catch (const HistoryError& error) {
        return error.what();
    }
    return "accepted";
}

practice::SymbolSpec listed(const std::string& name)
{
    const auto& catalog = practice::symbolCatalog();
    return catalog[practice::findSymbol(catalog, name).value()];
}

} // namespace

TEST_CASE("a recorded history keeps its minutes, their times and the holes between them")
{
    const MinuteHistory history = readFrom("EURUSD-1m.csv",
        askHeader + "2014-05-01T00:00:00Z,1.38676,1.38686,1.38669,1.38686,3,1.38686,1.38697,1.38680,1.38697\n"
            + "2014-05-01T00:01:00Z,1.38688,1.38688,1.38684,1.38684,4,1.38700,1.38700,1.38696,1.38698\r\n"
            + "2014-05-04T21:00:00Z,1.38600,1.38602,1.38600,1.38602,5,1.38600,1.38610,1.38600,1.38604\n");
    REQUIRE(history.size() == 3);
    CHECK(!history.isSimulated);
    CHECK_EQ(history.timeAt(0), start);
    CHECK_EQ(history.timeAt(1), start + minuteMs);
    CHECK_EQ(history.timeAt(2), start + 3 * practice::dayMs + 21 * practice::hourMs);
    CHECK(history.at(0).bar == (GridBar{138'681, 138'691, 138'674, 138'691, 3}));
    CHECK(history.at(0).halfSpread == practice::HalfSpreads(5, 6, 6, 6));
    CHECK(history.at(1).bar == (GridBar{138'694, 138'694, 138'690, 138'691, 4}));
    CHECK(history.at(1).halfSpread == practice::HalfSpreads(6, 6, 6, 7));
    CHECK(history.at(2).halfSpread == practice::HalfSpreads(1, 4, 1, 1));
    CHECK(history.opensWithGap(1) && history.opensWithGap(2));
}

TEST_CASE("symbols have what the practice platform gives them in a replay")
{
    const RecordFolder folder;
    for (const char* name : {"EURUSD", "USDJPY", "DE30EUR", "WHEAT", "CHFJPY", "ABC.x_1"})
        folder.write(std::string(name) + "-1m.csv",
            header + "2014-05-01T00:00:00Z,1.12,1.3,1.0,1.2,5\n2014-05-01T00:01:00Z,1.2,1.3,1.1,1.25,5\n");
    practice::ReplayMarket market(folder.path(), start);
    for (const char* name : {"EURUSD", "USDJPY", "DE30EUR", "WHEAT", "CHFJPY", "ABC.x_1"}) {
        const practice::SymbolSpec spec = readHistory(folder.path() / (std::string(name) + "-1m.csv")).spec;
        const auto place = practice::findSymbol(market.symbols(), name);
        REQUIRE(place.has_value());
        const practice::SymbolSpec& replayed = market.symbols()[*place];
        CHECK_EQ(spec.name, std::string(name));
        CHECK_EQ(spec.digits, 2);
        CHECK_EQ(spec.baseCurrency, replayed.baseCurrency);
        CHECK_EQ(spec.profitCurrency, replayed.profitCurrency);
        CHECK_EQ(spec.contractSize, replayed.contractSize);
        CHECK_EQ(spec.commissionPerLot, replayed.commissionPerLot);
        CHECK_EQ(spec.swapLong, replayed.swapLong);
        CHECK_EQ(spec.swapShort, replayed.swapShort);
        CHECK_EQ(spec.maxLeverage, replayed.maxLeverage);
        CHECK_EQ(spec.spreadPoints, replayed.spreadPoints);
    }
}

TEST_CASE("a single minute is a history, with the platform's usual numbers")
{
    const MinuteHistory history
        = readFrom("EURUSD-1m.csv", header + "2014-05-01T00:01:00Z,1.1,1.3,1.0,1.2,5\n");
    CHECK_EQ(history.size(), 1u);
    CHECK_EQ(history.spec.digits, 1);
    CHECK(history.spec.spreadPoints >= 2);
    CHECK_EQ(history.at(0).bar.close, 12);
}

TEST_CASE("a damaged file is refused with its path, the line and the reason")
{
    const std::string file = "EURUSD-1m.csv";
    const std::string row = "2014-05-01T00:01:00Z,1,1,1,1,1\n";
    CHECK_EQ(complaintAboutRow("2014-05-01T00:00:00Z,1,1,1,1,1"),
        file + ":3: the time is not after the line before"); // twice
    CHECK_EQ(complaintAboutRow("2014-04-30T23:59:00Z,1,1,1,1,1"),
        file + ":3: the time is not after the line before"); // out of order
    CHECK_EQ(
        complaintAboutRow("2014-05-01T00:01:30Z,1,1,1,1,1"), file + ":3: the time is not a whole minute");
    CHECK_EQ(
        complaintAboutRow("1398902460,1,1,1,1,1"), file + ":3: the time is not like 2014-05-01T00:00:00Z");
    CHECK_EQ(complaintAboutRow("2014-05-01T00:01:00Z,1,1,1,1"), file + ":3: expected 6 columns, found 5");
    CHECK_EQ(complaintAboutRow("2014-05-01T00:01:00Z,1,1,1,1,1,1"), file + ":3: expected 6 columns, found 7");
    CHECK_EQ(complaintAboutRow("2014-05-01T00:01:00Z,-1,1,1,1,1"),
        file + ":3: a price is not a plain decimal above 0");
    CHECK_EQ(complaintAboutRow("2014-05-01T00:01:00Z,2,1,1,1,1"), file + ":3: high is below open or close");
    CHECK_EQ(complaintAboutRow("2014-05-01T00:01:00Z,2,3,2,1,1"), file + ":3: low is above open or close");
    CHECK_EQ(
        complaintAboutRow("2014-05-01T00:01:00Z,1,1,1,1,x"), file + ":3: the volume is not a number from 0");
    CHECK_EQ(complaintAboutRow("\n" + row), file + ":3: the line is empty");
    CHECK_EQ(complaint(askHeader + "2014-05-01T00:00:00Z,2,2,2,2,0,2,2,1,1\n"),
        file + ":2: an ask is below its bid");
    CHECK_EQ(complaint(header), file + ":1: no minutes");
    const std::string noHeader
        = file + ":1: the header is not \"time,open,high,low,close,volume\" with or without the ask columns";
    CHECK_EQ(complaint(""), noHeader);
    CHECK_EQ(complaint(row + row), noHeader);
    CHECK_EQ(complaint(std::string("\0\xFF\n\0", 4)), noHeader);
    CHECK_EQ(complaint(header + row + "9999-12-31T23:59:00Z,1,1,1,1,1\n"),
        file + ":3: the time is too far in the future");
    CHECK_EQ(complaint(header + row + "2014-05-01T00:02:00Z,1,1,1,1,1"), std::string("accepted"));
}

TEST_CASE("a file that is not named after its symbol is refused, one that is not there too")
{
    for (const char* name : {"EURUSD.csv", "EURUSD-1h.csv", "EUR USD-1m.csv", "-1m.csv"})
        CHECK_EQ(complaint("", name), std::string(name) + ": is not named SYMBOL-1m.csv");
    std::string said;
    try {
        static_cast<void>(readHistory("/nowhere/EURUSD-1m.csv"));
    } catch (const HistoryError& error) {
        said = error.what();
    }
    CHECK_EQ(said, std::string("/nowhere/EURUSD-1m.csv: cannot be read: No such file or directory"));
}

TEST_CASE("simulated prices are those that the practice platform shows")
{
    const TimeMs from = practice::barStart(start, Timeframe::H4);
    const TimeMs to = from + practice::dayMs;
    for (const char* symbol : {"EURUSD", "EURJPY", "BTCUSD"}) {
        for (const double speed : {1.0, 20.0}) {
            const MinuteHistory history = simulatedHistory(symbol, 5, speed, from, to);
            CHECK(history.isSimulated);
            CHECK_EQ(history.size(), std::size_t(1440));
            CHECK_EQ(history.spec.name, std::string(symbol));
            practice::SimulatedMarket market(5, speed);
            const std::size_t place = practice::findSymbol(market.symbols(), symbol).value();
            for (const Timeframe timeframe : {Timeframe::M1, Timeframe::M15, Timeframe::H4}) {
                const auto count
                    = static_cast<std::size_t>((to - from) / practice::timeframeLength(timeframe));
                CHECK(barsBefore(history, timeframe, 1'000'000, history.size())
                    == market.bars(place, timeframe, count, to - 1));
            }
            for (std::size_t minute = 0; minute < history.size(); minute += 97) {
                const practice::Quote quote = market.quote(place, history.timeAt(minute) + minuteMs - 1);
                const double unit = practice::pointsPerUnit(history.spec.digits);
                CHECK_NEAR((quote.ask - quote.bid) * unit / 2,
                    static_cast<double>(history.at(minute).halfSpread.close), 1e-3);
            }
            for (std::size_t minute = 1; minute < history.size(); ++minute) {
                const practice::HalfSpreads& spreads = history.at(minute).halfSpread;
                CHECK_EQ(spreads.open, history.at(minute - 1).halfSpread.close);
                CHECK(spreads.high == spreads.low && spreads.high == std::max(spreads.open, spreads.close));
            }
        }
    }
}

TEST_CASE("a simulated history depends on nothing but what was asked for")
{
    const TimeMs to = start + 3 * practice::hourMs;
    const std::uint64_t hash = dataHash(simulatedHistory("EURUSD", 5, 1, start, to));
    CHECK_EQ(dataHash(simulatedHistory("EURUSD", 5, 1, start, to)), hash);
    CHECK_EQ(dataHash(simulatedHistory("EURUSD", 5, 1, start - minuteMs + 1, to + minuteMs - 1)), hash);
    CHECK(dataHash(simulatedHistory("EURUSD", 6, 1, start, to)) != hash);
    CHECK(dataHash(simulatedHistory("EURUSD", 5, 2, start, to)) != hash);
    CHECK(dataHash(simulatedHistory("EURUSD", 5, 1, start, to + minuteMs)) != hash);
    CHECK(dataHash(simulatedHistory("GBPUSD", 5, 1, start, to)) != hash);

    const MinuteHistory longer = simulatedHistory("EURUSD", 5, 1, start - practice::dayMs, to);
    const MinuteHistory shorter = simulatedHistory("EURUSD", 5, 1, start, to);
    for (std::size_t minute = 0; minute < shorter.size(); ++minute) {
        CHECK(longer.at(minute + 1440).bar == shorter.at(minute).bar);
        CHECK(longer.at(minute + 1440).halfSpread == shorter.at(minute).halfSpread);
        CHECK(minute == 0 || !shorter.opensWithGap(minute)); // that market never stops
    }
    CHECK(simulatedHistory("EURUSD", 5, 1, start, start + 3 * practice::dayMs).weekendsTrade());
}

TEST_CASE("what cannot be simulated is refused")
{
    const std::string unknown = complaintAboutSimulation("EURUS", start, start + minuteMs);
    CHECK(unknown.starts_with("no symbol EURUS; there are EURUSD, "));
    for (const practice::SymbolSpec& spec : practice::symbolCatalog())
        CHECK(unknown.find(spec.name) != std::string::npos);
    CHECK_EQ(complaintAboutSimulation("EURUSD", start, start),
        std::string("EURUSD: no whole minute in this period"));
    CHECK_EQ(complaintAboutSimulation("EURUSD", start + 1, start + 2 * minuteMs - 1),
        std::string("EURUSD: no whole minute in this period"));
    const std::string outside = "EURUSD: no simulated prices in a part of this period";
    CHECK_EQ(complaintAboutSimulation(
                 "EURUSD", -200 * 365 * practice::dayMs, -200 * 365 * practice::dayMs + minuteMs),
        outside);
    CHECK_EQ(complaintAboutSimulation(
                 "EURUSD", 500 * 365 * practice::dayMs, 500 * 365 * practice::dayMs + minuteMs),
        outside);
    CHECK_EQ(complaintAboutSimulation("EURUSD", INT64_MIN, INT64_MAX), outside);
}

TEST_CASE("the pair that turns results into dollars is named where another one is needed")
{
    CHECK(!ratePairOf(listed("EURUSD")));
    CHECK(!ratePairOf(listed("USDJPY"))); // its own price will do
    CHECK(!ratePairOf(listed("BTCUSD")));
    CHECK(ratePairOf(listed("EURJPY")) == "USDJPY");
    CHECK(ratePairOf(listed("EURGBP")) == "GBPUSD");
    practice::SymbolSpec index;
    index.name = "DE30EUR";
    index.baseCurrency = "DE30";
    index.profitCurrency = "EUR";
    CHECK(ratePairOf(index) == "EURUSD");
}

TEST_CASE("recorded history of real markets is walked through")
{
    const char* folder = std::getenv("TAVORAN_HISTORY_DIR");
    if (!folder)
        check::skip("TAVORAN_HISTORY_DIR is not set");
    for (const char* name : {"EURUSD", "XAUUSD", "DE30EUR"}) {
        const std::filesystem::path path = std::filesystem::path(folder) / (std::string(name) + "-1m.csv");
        if (!std::filesystem::exists(path))
            continue;
        const MinuteHistory history = readHistory(path);
        CHECK(history.size() > 1000);
        CHECK(!history.weekendsTrade());
        for (const Model model : {Model::Ohlc, Model::Feed}) {
            RunSettings settings;
            settings.model = model;
            TimeMs last = INT64_MIN;
            std::size_t gaps = 0;
            std::size_t disorders = 0;
            for (const Moment& moment : walked(history, settings)) {
                const GridBar bar = history.at(moment.minute).bar;
                disorders += moment.time > last && moment.mid >= bar.low && moment.mid <= bar.high
                        && moment.halfSpread >= 1
                    ? 0
                    : 1;
                last = moment.time;
                gaps += moment.afterGap ? 1 : 0;
            }
            CHECK_EQ(disorders, std::size_t(0));
            CHECK(gaps > 100 && gaps < history.size());
        }
    }
}

TEST_CASE("a record of a symbol that the platform does not list is warned of, with what it is taken to be")
{
    const std::string row
        = header + "2014-05-01T00:00:00Z,1.1,1.3,1.0,1.2,5\n2014-05-01T00:01:00Z,1.1,1.3,1.0,1.2,5\n";
    CHECK(!contractWarning(readFrom("EURUSD-1m.csv", row)));
    CHECK_EQ(contractWarning(readFrom("NZDUSD-1m.csv", row)).value_or(""),
        std::string(
            "The practice platform does not list NZDUSD: taken with a contract of 1 NZD a lot, leverage "
            "up to 1:20, no commission and no swap. Results in money may mean nothing."));
    CHECK(contractWarning(readFrom("EURCHF-1m.csv", row)).value_or("").find("a contract of 100000 EUR a lot")
        != std::string::npos);
    CHECK(!contractWarning(simulatedHistory("EURUSD", 1, 1, start, start + practice::hourMs)));
}

CHECK_MAIN()
