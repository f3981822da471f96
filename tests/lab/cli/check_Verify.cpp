#include "lab/cli/LabProcess.h"
#include "practice/Check.h"
#include "practice/server/ServerFixture.h"

#include "practice/server/Platform.h"
#include "practice/server/RecordFile.h"
#include "practice/server/SessionRecorder.h"

#include <fstream>
#include <optional>

using namespace practice;

namespace {

const std::string buysOnce = "var Lots = 0.1;\n"
                             "var done = false;\n"
                             "function OnTick() { if (!done) { done = true; Trade.buy(Lots); } }\n";

/// A recorded session, and a script that buys at its first price.
struct Place {
    TemporaryFolder folder;
    LabProcess lab;
    std::string demo;

    /// `delay`: ms from the price to the order, with `moved` as the bid then.
    explicit Place(TimeMs delay = 0, double moved = 1.1001, bool orders = true)
    {
        lab.folder = folder.path();
        std::ofstream(folder / "Once.js") << buysOnce;
        SettableClock clock;
        ManualMarket market(1);
        Database database(folder / "x.db");
        prepareFirstUse(database, clock.now());
        Platform platform(database, market, clock);
        platform.advance();
        RecordFile file(folder / "session", [](const std::string&) {});
        SessionRecorder recorder(platform, file, "1.2.3");
        platform.addListener(recorder);
        for (const Account& account : platform.broker().accounts()) {
            if (account.kind == AccountKind::Demo && !account.isFunded)
                demo = account.id;
        }
        recorder.positionsSent(demo, {}, clock.now());
        recorder.ordersSent(demo, clock.now());
        const std::vector<Bar> bars{{1'749'999'900'000, 1.1, 1.2, 1.0, 1.1, 7}};
        recorder.barsSent(0, Timeframe::M15, bars, clock.now());
        clock.set(clock.now() + 250);
        market.setBid(1.1001);
        platform.advance();
        clock.set(clock.now() + delay);
        market.setBid(moved);
        if (orders)
            platform.execute(PlaceRequest{demo, "EURUSD", "MARKET", "BUY", 0.1, {}, {}, {}, {}});
        clock.set(clock.now() + 60'000);
        platform.advance();
        market.setBid(1.1002);
        clock.set(clock.now() + 250);
        platform.advance();
    }
    [[nodiscard]] LabProcess::Result verify(std::vector<std::string> options = {}) const
    {
        options.insert(options.begin(), {"verify", "session", "Once.js"});
        return lab.run(options);
    }
};

bool contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

} // namespace

TEST_CASE("a session that the lab comes to as well has no divergence and ends with 0")
{
    const Place place;
    const auto result = place.verify();
    CHECK_EQ(result.exitCode, 0);
    CHECK_EQ(result.errors, std::string());
    CHECK(contains(result.output, "Chart     EURUSD,15m, account " + place.demo));
    CHECK(contains(result.output, "1 order and 0 closings as recorded, 0 of them refused"));
    CHECK(contains(result.output, "0 ms at most from a price to the command; 0 fills moved by it"));
    CHECK(contains(result.output, "\nNo divergence\n"));
}

TEST_CASE("a fill that came late is told with price and time, and is no divergence")
{
    const Place place(300, 1.1006);
    const auto result = place.verify();
    CHECK_EQ(result.exitCode, 0);
    CHECK(contains(result.output, "300 ms at most from a price to the command; 1 fill moved by it"));
    CHECK(contains(result.output, "decided at 1.1002, filled at 1.1007: 50 points worse, after 300 ms"));
}

TEST_CASE("the first divergence is told with what was expected and what was recorded, and ends with 1")
{
    const Place place;
    const auto other = place.verify({"--set", "Lots=0.2"});
    CHECK_EQ(other.exitCode, 1);
    CHECK(contains(other.output, "Divergence at 2025-06-15T15:06:40.250Z\n"));
    CHECK(contains(other.output, "  expected  BUY 0.2 EURUSD at 1.10010/1.10020\n"));
    CHECK(contains(other.output, "  recorded  BUY 0.1 EURUSD\n"));

    const auto missing = Place(0, 1.1001, false).verify();
    CHECK_EQ(missing.exitCode, 1);
    CHECK(contains(missing.output, "  expected  BUY 0.1 EURUSD at 1.10010/1.10020\n  recorded  nothing\n"));
    CHECK(contains(missing.output, "--from says since when"));
}

TEST_CASE("chart and account are asked for, and a script that was never called proves nothing")
{
    const Place place(0, 1.1001, false);
    const auto later = place.verify({"--from", "2025-06-16", "--symbol", "EURUSD", "--timeframe", "15m"});
    CHECK_EQ(later.exitCode, 2);
    CHECK_EQ(later.output, std::string());
    CHECK_EQ(later.errors,
        std::string("tavoran-lab: the script was never called: the session has 2 prices of EURUSD, up to "
                    "2025-06-15T15:07:40.500Z\n"));
    const auto chart = place.verify({"--timeframe", "1h"});
    CHECK_EQ(chart.exitCode, 2);
    CHECK(contains(chart.errors, "the session has no such chart; there are EURUSD,15m"));
    const auto account = place.verify({"--account", "nobody"});
    CHECK_EQ(account.exitCode, 2);
    CHECK(contains(account.errors, "the session has no account nobody"));
}

TEST_CASE("what cannot be used ends with 2 and one line that names it")
{
    const Place place;
    CHECK_EQ(place.lab.run({"verify", "session"}).exitCode, 2);
    CHECK_EQ(place.lab.run({"verify", "nowhere", "Once.js"}).errors,
        std::string("tavoran-lab: nowhere: cannot be read: No such file or directory\n"));
    CHECK_EQ(place.lab.run({"verify", "Once.js", "Once.js"}).errors,
        std::string("tavoran-lab: Once.js:1: is no recording of tavoran-practice\n"));
    std::ofstream(place.folder / "session", std::ios::app) << "quotes\tnoon\n";
    CHECK_EQ(place.verify().exitCode, 0); // behind the end nothing is read
    CHECK_EQ(place.verify({"--set", "None=1"}).exitCode, 2);
}

TEST_CASE("a recording that lacks the price of a decision has a divergence")
{
    const Place place;
    const auto path = place.folder / "session";
    std::ifstream file(path);
    std::string kept;
    int dropped = 0;
    for (std::string line; std::getline(file, line);) {
        const bool isDecision = line.starts_with("quotes\t1750000000250\t");
        dropped += isDecision ? 1 : 0;
        if (!isDecision)
            kept += line + '\n';
    }
    CHECK_EQ(dropped, 1);
    std::ofstream(path, std::ios::trunc) << kept;
    const auto result = place.verify();
    CHECK_EQ(result.exitCode, 1);
    CHECK(contains(result.output, "  expected  nothing\n  recorded  BUY 0.1 EURUSD\n"));
}

TEST_CASE("a script that asks for nothing where nothing is recorded is said to do so")
{
    const Place place(0, 1.1001, false);
    std::ofstream(place.folder / "Once.js") << "function OnTick() {}\n";
    const auto result = place.verify();
    CHECK_EQ(result.exitCode, 0);
    CHECK(contains(result.output, "Note      no command was asked for and none is recorded\n"));
    CHECK(!contains(Place().verify().output, "no command was asked for"));
}

TEST_CASE("what somebody else may have done is asked about")
{
    const Place place;
    std::ofstream(place.folder / "Once.js") << "function OnTick() {}\n";
    const auto result = place.verify();
    CHECK_EQ(result.exitCode, 1);
    CHECK(contains(result.output,
        "  recorded  BUY 0.1 EURUSD\n  (was it the script? --from and --to say when it was "
        "on the chart and allowed to trade)\n"));
}

TEST_CASE("a recording that breaks off is said to do so")
{
    const Place place;
    const auto path = place.folder / "session";
    std::filesystem::resize_file(path, std::filesystem::file_size(path) - 5);
    const auto result = place.verify();
    CHECK_EQ(result.exitCode, 0);
    CHECK(contains(result.output, "The recording breaks off"));
}

TEST_CASE("a script that never returns is ended by --limit")
{
    const Place place;
    std::ofstream(place.folder / "Once.js") << "function OnTick() { while (true) {} }\n";
    CHECK_EQ(place.verify({"--limit", "0.2"}).exitCode, 2);
}

CHECK_MAIN()
