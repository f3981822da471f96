#include "practice/Check.h"
#include "practice/server/ServerFixture.h"

#include "practice/server/Options.h"
#include "practice/server/Platform.h"
#include "practice/server/RecordFile.h"
#include "practice/server/SessionRecorder.h"
#include "practice/storage/StorageError.h"

#include <chrono>
#include <csignal>
#include <fstream>
#include <optional>
#include <sstream>
#include <sys/resource.h>

using namespace practice;

namespace {

std::string textOf(const std::filesystem::path& path)
{
    std::ifstream file(path);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

std::vector<std::string> linesOf(const std::filesystem::path& path)
{
    std::istringstream text(textOf(path));
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);)
        lines.push_back(line);
    return lines;
}

/// The lines whose first column is this.
std::vector<std::string> linesOf(const std::filesystem::path& path, std::string_view kind)
{
    std::vector<std::string> lines = linesOf(path);
    std::erase_if(lines, [&](const std::string& line) { return line.substr(0, line.find('\t')) != kind; });
    return lines;
}

/// A platform whose session is recorded.
struct Recorded {
    TemporaryFolder folder;
    std::filesystem::path path = folder / "session";
    SettableClock clock;
    ManualMarket market{0};
    Database database{folder / "x.db"};
    std::vector<std::string> complaints;
    std::unique_ptr<Platform> platform;
    std::optional<RecordFile> file;
    std::optional<SessionRecorder> recorder;

    Recorded()
    {
        prepareFirstUse(database, clock.now());
        platform = std::make_unique<Platform>(database, market, clock);
        platform->advance();
        file.emplace(path, [this](const std::string& text) { complaints.push_back(text); });
        recorder.emplace(*platform, *file, "1.2.3");
        platform->addListener(*recorder);
    }
    void tick(double bid)
    {
        clock.set(clock.now() + 250);
        market.setBid(bid);
        platform->advance();
    }
    [[nodiscard]] std::string demo() const
    {
        for (const Account& account : platform->broker().accounts()) {
            if (account.kind == AccountKind::Demo && !account.isFunded)
                return account.id;
        }
        return {};
    }
    Trade buy(double stopLoss, const std::string& comment = {})
    {
        return platform->execute(
            PlaceRequest{demo(), "EURUSD", "MARKET", "BUY", 0.1, {}, stopLoss, {}, comment});
    }
    /// What was recorded.
    const std::filesystem::path& finished()
    {
        recorder.reset();
        file.reset();
        return path;
    }
};

} // namespace

TEST_CASE("a recording begins with the symbols, the accounts, what is open and the prices")
{
    Recorded place;
    const std::size_t accounts = place.platform->broker().accounts().size();
    const auto& path = place.finished();
    const std::vector<std::string> lines = linesOf(path);
    REQUIRE(lines.size() == accounts + 5);
    CHECK_EQ(lines.front(), std::string("tavoran-session\t1\t1.2.3\t1750000000000"));
    CHECK(lines[1].starts_with("symbol\tEURUSD\t5\t1e+05\t"));
    CHECK(lines[1].find("\tEUR\tUSD\t") != std::string::npos);
    CHECK_EQ(linesOf(path, "account").size(), accounts);
    CHECK_EQ(linesOf(path, "seen").front(), std::string("seen\t1750000000000\t0 110000 110010"));
    CHECK_EQ(lines[lines.size() - 2], std::string("start\t1750000000000"));
    CHECK_EQ(lines.back(), std::string("end\t1750000000000"));
}

TEST_CASE("prices, orders, what they changed and what closed them stand in the order of time")
{
    Recorded place;
    place.tick(1.1001);
    const Trade trade = place.buy(1.0990, "two\tcolumns\\");
    place.tick(1.0980);
    const auto& path = place.finished();
    const std::vector<std::string> prices = linesOf(path, "quotes");
    REQUIRE(prices.size() == 2);
    CHECK_EQ(prices[0], std::string("quotes\t1750000000250\t0 110010 110020"));
    CHECK_EQ(prices[1], std::string("quotes\t1750000000500\t0 109800 109810"));
    const std::vector<std::string> orders = linesOf(path, "place");
    REQUIRE(orders.size() == 1);
    CHECK_EQ(orders[0],
        "place\t1750000000250\t" + place.demo()
            + "\tEURUSD\tMARKET\tBUY\t0.1\t0\t1.099\t0\ttwo\\tcolumns\\\\\t200\t" + trade.id);
    const std::vector<std::string> trades = linesOf(path, "trade");
    REQUIRE(trades.size() == 2);
    CHECK(trades[0].find("\tOPEN\t10\t1.1002\t0\t") != std::string::npos);
    // The market was there already when nobody looked.
    CHECK(trades[1].starts_with("trade\t1750000000251\t" + trade.id));
    CHECK(trades[1].find("\tCLOSED\t10\t1.1002\t1.098\t") != std::string::npos);
    CHECK(trades[1].find("\tSL\t") != std::string::npos);

    std::string kinds;
    for (const std::string& line : linesOf(path)) {
        const std::string kind = line.substr(0, line.find('\t'));
        if (kind != "symbol" && kind != "account")
            kinds += kind + ' ';
    }
    CHECK_EQ(kinds, std::string("tavoran-session seen start quotes place trade seen trade quotes end "));
}

TEST_CASE("a price that only the broker has seen stands before what it caused")
{
    Recorded place;
    place.tick(1.1001);
    place.clock.set(place.clock.now() + 100);
    place.market.setBid(1.1007);
    const Trade trade = place.buy(0);
    CHECK_EQ(trade.entryPrice, 1.1008);
    const std::vector<std::string> seen = linesOf(place.finished(), "seen");
    REQUIRE(seen.size() == 2);
    CHECK_EQ(seen[1], std::string("seen\t1750000000350\t0 110070 110080"));
}

TEST_CASE("a refused order stands there with the reason")
{
    Recorded place;
    bool refused = false;
    try {
        place.buy(1.2);
    } catch (const ApiError& error) {
        refused = true;
        const std::vector<std::string> orders = linesOf(place.finished(), "place");
        REQUIRE(orders.size() == 1);
        CHECK(orders[0].ends_with("\t400\t" + error.message));
    }
    CHECK(refused);
    CHECK(linesOf(place.path, "trade").empty());
}

TEST_CASE("an order that cannot be stored stands there as not carried out")
{
    Recorded place;
    place.database.execute("PRAGMA query_only=ON");
    CHECK_THROWS(place.buy(0), StorageError);
    const std::vector<std::string> orders = linesOf(place.finished(), "place");
    REQUIRE(orders.size() == 1);
    CHECK(orders[0].find("\t503\t") != std::string::npos);
    CHECK(linesOf(place.path, "trade").empty());
}

TEST_CASE("closing, cancelling and modifying are recorded with the trade that they name")
{
    Recorded place;
    place.tick(1.1001);
    const Trade trade = place.buy(0);
    place.platform->execute(ModifyCommand{trade.id, {1.09, {}, {}}});
    place.platform->execute(CloseCommand{trade.id});
    bool refused = false;
    try {
        place.platform->execute(CancelCommand{"nobody"});
    } catch (const ApiError&) {
        refused = true;
    }
    CHECK(refused);
    const auto& path = place.finished();
    CHECK_EQ(
        linesOf(path, "modify").at(0), "modify\t1750000000250\t" + trade.id + "\t1.09\t\t\t200\t" + trade.id);
    CHECK_EQ(linesOf(path, "close").at(0), "close\t1750000000250\t" + trade.id + "\t200\t" + trade.id);
    CHECK(linesOf(path, "cancel").at(0).starts_with("cancel\t1750000000250\tnobody\t404\t"));
}

TEST_CASE("what clients were told of accounts, positions and results is recorded")
{
    Recorded place;
    place.tick(1.1001);
    const Trade trade = place.buy(0);
    place.recorder->accountsSent(place.platform->broker().accounts(), place.clock.now());
    place.recorder->positionsSent(
        place.demo(), place.platform->broker().openTrades(place.demo()), place.clock.now());
    place.recorder->ordersSent(place.demo(), place.clock.now());
    place.recorder->resultsSent(
        place.demo(), place.platform->broker().openTrades(place.demo()), place.clock.now());
    const std::vector<Bar> bars{{1'749'999'900'000, 1.1, 1.2, 1.0, 1.15, 7}};
    place.recorder->barsSent(0, Timeframe::M15, bars, place.clock.now());
    const auto& path = place.finished();
    CHECK(linesOf(path, "accounts").at(0).find('\t' + place.demo() + "\t10000000") != std::string::npos);
    const std::string pnl = std::to_string(trade.pnl);
    CHECK_EQ(linesOf(path, "positions").at(0),
        "positions\t1750000000250\t" + place.demo() + '\t' + trade.id + "\tEURUSD\t" + pnl);
    CHECK_EQ(linesOf(path, "orders").at(0), "orders\t1750000000250\t" + place.demo());
    CHECK_EQ(linesOf(path, "results").at(0),
        "results\t1750000000250\t" + place.demo() + '\t' + trade.id + '\t' + pnl);
    CHECK_EQ(linesOf(path, "bars").at(0),
        std::string("bars\t1750000000250\tEURUSD\t15m\t1749999900000 110000 120000 100000 115000 7"));
}

TEST_CASE("the replies of a real connection are recorded, and no secret among them")
{
    TemporaryFolder folder;
    const auto path = folder / "session";
    std::string token;
    {
        std::optional<RecordFile> file;
        file.emplace(path, [](const std::string&) {});
        InProcess place(0, {}, &*file);
        Trader trader(place);
        token = trader.client.token();
        const std::string demo = trader.account("DEMO");
        trader.place(order(demo, 0.1));
        CHECK_EQ(trader.client.get("/api/trades/open?accountId=" + demo).status, 200);
        CHECK_EQ(trader.client.get("/api/trades/pending?accountId=" + demo).status, 200);
        CHECK_EQ(trader.client.get("/api/candles?symbol=EURUSD&timeframe=1h").status, 200);
        place.stop();
    }
    for (const char* kind : {"accounts", "place", "trade", "positions", "orders", "bars", "end"})
        CHECK(!linesOf(path, kind).empty());
    const std::string text = textOf(path);
    REQUIRE(!token.empty());
    for (const std::string& secret : {token, std::string(practiceEmail), std::string(practicePassword)})
        CHECK(text.find(secret) == std::string::npos);
    CHECK((std::filesystem::status(path).permissions() & std::filesystem::perms::others_all)
        == std::filesystem::perms::none);
}

TEST_CASE("what is recorded is in the file within a second, while the platform runs")
{
    Recorded place;
    place.tick(1.1001);
    place.tick(1.1002);
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(1000);
    while (linesOf(place.path, "quotes").empty() && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    CHECK_EQ(linesOf(place.path, "quotes").size(), std::size_t(1));
}

TEST_CASE("an existing file stays as it is, and a place that cannot be written to is named")
{
    const TemporaryFolder folder;
    std::ofstream(folder / "there") << "mine";
    CHECK_THROWS(RecordFile(folder / "there", [](const std::string&) {}), UsageError);
    CHECK_EQ(textOf(folder / "there"), std::string("mine"));
    CHECK_THROWS(RecordFile(folder / "no" / "where", [](const std::string&) {}), UsageError);
}

TEST_CASE("a full disk ends the recording with one message, and the platform goes on")
{
    Recorded place;
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    ::getrlimit(RLIMIT_FSIZE, &before);
    rlimit small = before;
    small.rlim_cur = 20'000;
    ::setrlimit(RLIMIT_FSIZE, &small);
    for (int round = 0; round < 5; ++round)
        place.file->add(std::string(2'000'000, 'x'));
    place.file.reset();
    ::setrlimit(RLIMIT_FSIZE, &before);
    REQUIRE(place.complaints.size() == 1);
    CHECK(place.complaints.front().starts_with(place.path.string() + ": File too large"));
    CHECK(std::filesystem::file_size(place.path) <= 20'000);
    place.file.emplace(place.folder / "other", [](const std::string&) {}); // the recorder's end adds to it
}

TEST_CASE("adding a line takes no time worth speaking of")
{
    const TemporaryFolder folder;
    RecordFile file(folder / "x", [](const std::string&) {});
    const std::string line(1'000, 'x');
    auto longest = std::chrono::steady_clock::duration::zero();
    for (int round = 0; round < 20'000; ++round) {
        const auto begun = std::chrono::steady_clock::now();
        file.add(line);
        longest = std::max(longest, std::chrono::steady_clock::now() - begun);
    }
    CHECK(longest < std::chrono::milliseconds(250));
}

CHECK_MAIN()
