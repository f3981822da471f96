#include "practice/Check.h"
#include "practice/server/HttpClient.h"
#include "practice/server/ServerProcess.h"
#include "practice/storage/TemporaryFolder.h"

#include "practice/core/market/SimulatedMarket.h"
#include "practice/storage/Database.h"
#include "practice/storage/MetaStore.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>

/// Which market a database lives on, over restarts of the real program.
using namespace practice;
using nlohmann::json;

namespace {

/// A trader on the demo account of a running platform.
class Desk {
public:
    explicit Desk(const ServerProcess& server)
        : m_client(server.port())
    {
        m_client.signIn();
        for (const json& row : m_client.get("/api/accounts").json()) {
            if (row.at("type") == "DEMO")
                m_account = row;
        }
    }
    [[nodiscard]] const json& account() const { return m_account; }
    [[nodiscard]] json list(const std::string& kind)
    {
        return m_client.get("/api/trades/" + kind + "?accountId=" + m_account.at("id").get<std::string>())
            .json();
    }
    void place(json order)
    {
        order["accountId"] = m_account.at("id");
        order["symbol"] = "EURUSD";
        order["lotSize"] = 1;
        REQUIRE(m_client.post("/api/trades/place", order).status == 200);
    }
    void buy() { place({{"orderKind", "MARKET"}, {"type", "BUY"}}); }
    void orderFarBelow() { place({{"orderKind", "BUY_LIMIT"}, {"pendingPrice", 0.5}}); }
    /// The day before yesterday, which no longer changes.
    [[nodiscard]] json bar()
    {
        return m_client.get("/api/candles?symbol=EURUSD&timeframe=1d&limit=3").json().at(0);
    }

private:
    HttpClient m_client;
    json m_account;
};

/// Why the platform does not start with these arguments; empty when it does.
std::string refusalOf(const std::string& database, const std::vector<std::string>& arguments)
{
    try {
        const ServerProcess server(database, arguments);
        return {};
    } catch (const std::runtime_error& error) {
        return error.what();
    }
}

int exitCodeOf(const std::string& database, std::vector<std::string> arguments)
{
    arguments.insert(arguments.end(), {"--port", "0", "--db", database});
    return ServerProcess::run(arguments).exitCode;
}

bool has(const std::string& text, std::string_view part)
{
    return text.find(part) != std::string::npos;
}

std::string recordIn(const std::filesystem::path& folder)
{
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "EURUSD-1m.csv") << "time,open,high,low,close,volume\n"
                                               "2024-01-02T00:00:00Z,1.10000,1.10020,1.09990,1.10010,5\n"
                                               "2024-01-02T00:01:00Z,1.10000,1.10020,1.09990,1.10010,5\n";
    return folder.string();
}

TimeMs timeOf(const std::string& iso)
{
    const auto part
        = [&](std::size_t from, std::size_t length) { return std::stoi(iso.substr(from, length)); };
    const std::chrono::sys_days day{std::chrono::year(part(0, 4)) / part(5, 2) / part(8, 2)};
    return day.time_since_epoch().count() * dayMs + part(11, 2) * hourMs + part(14, 2) * minuteMs
        + part(17, 2) * TimeMs(1000) + part(20, 3);
}

} // namespace

TEST_CASE("another seed, speed or record is refused while a trade is open, and changes nothing")
{
    const TemporaryFolder folder;
    const std::string database = (folder / "x.db").string();
    const std::string record = recordIn(folder / "record");
    json opened;
    {
        const ServerProcess server(database, {"--seed", "7", "--speed", "2"});
        Desk desk(server);
        desk.buy();
        opened = desk.list("open").at(0);
    }
    for (const std::vector<std::string>& other : std::vector<std::vector<std::string>>{
             {"--seed", "8"}, {"--speed", "60"}, {"--speed", "1"}, {"--replay", record}}) {
        const std::string reason = refusalOf(database, other);
        CHECK(has(reason, "1 open trade"));
        CHECK(has(reason, "--seed 7 --speed 2"));
        CHECK(has(reason, "--close-open-trades"));
        CHECK(reason.empty() || exitCodeOf(database, other) == 2);
    }
    CHECK_EQ(refusalOf(database, {"--seed", "7", "--speed", "2.0"}), std::string());
    const ServerProcess server(database);
    Desk desk(server);
    const json still = desk.list("open");
    REQUIRE(still.size() == 1);
    CHECK_EQ(still.at(0).at("entryPrice"), opened.at("entryPrice"));
}

TEST_CASE("a waiting order holds the market as a position does")
{
    const TemporaryFolder folder;
    const std::string database = (folder / "x.db").string();
    {
        const ServerProcess server(database);
        Desk(server).orderFarBelow();
    }
    CHECK(has(refusalOf(database, {"--speed", "60"}), "--close-open-trades"));
}

TEST_CASE("with nothing open the market may change, and the change is remembered")
{
    const TemporaryFolder folder;
    const std::string database = (folder / "x.db").string();
    json fast;
    {
        const ServerProcess server(database);
    }
    {
        const ServerProcess server(database, {"--seed", "5", "--speed", "60"});
        fast = Desk(server).bar();
    }
    {
        const ServerProcess server(database);
        Desk desk(server);
        CHECK_EQ(desk.bar(), fast);
        desk.buy();
    }
    CHECK(has(refusalOf(database, {"--speed", "1"}), "--seed 5 --speed 60"));
    CHECK_EQ(refusalOf(database, {"--speed", "60"}), std::string());
}

TEST_CASE("open trades are closed at the old prices before the market changes")
{
    const TemporaryFolder folder;
    const std::string database = (folder / "x.db").string();
    json entry;
    {
        const ServerProcess server(database, {"--seed", "77"});
        Desk desk(server);
        desk.buy();
        desk.orderFarBelow();
        entry = desk.list("open").at(0);
    }
    const ServerProcess server(database, {"--seed", "78", "--speed", "100", "--close-open-trades"});
    Desk desk(server);
    CHECK(desk.list("open").empty());
    CHECK(desk.list("pending").empty());
    const json history = desk.list("history");
    REQUIRE(history.size() == 2);
    const bool orderFirst = history.at(0).at("status") == "CANCELLED";
    const json& closed = history.at(orderFirst ? 1 : 0);
    CHECK_EQ(history.at(orderFirst ? 0 : 1).at("status"), "CANCELLED");
    CHECK_EQ(history.at(orderFirst ? 0 : 1).at("closeReason"), "RESET");
    CHECK_EQ(closed.at("id"), entry.at("id"));
    CHECK_EQ(closed.at("closeReason"), "RESET");
    SimulatedMarket old(77, 1);
    const auto symbol = findSymbol(old.symbols(), "EURUSD");
    const double bid = old.quote(symbol.value(), timeOf(closed.at("closedAt").get<std::string>())).bid;
    CHECK_NEAR(std::stod(closed.at("exitPrice").get<std::string>()), bid, 1e-9);
    CHECK_NEAR(std::stod(desk.account().at("balance").get<std::string>()),
        100'000 + std::stod(closed.at("pnl").get<std::string>()), 0.001);
}

TEST_CASE("asking to close the open trades closes none while the market stays")
{
    const TemporaryFolder folder;
    const std::string database = (folder / "x.db").string();
    {
        const ServerProcess server(database, {"--speed", "3"});
        Desk(server).buy();
    }
    const ServerProcess server(database, {"--speed", "3", "--close-open-trades"});
    CHECK_EQ(Desk(server).list("open").size(), std::size_t(1));
}

TEST_CASE("a record plays on without being named, until it is given up")
{
    const TemporaryFolder folder;
    const std::string database = (folder / "x.db").string();
    const std::string record = recordIn(folder / "record");
    {
        const ServerProcess server(database, {"--replay", record});
        Desk(server).buy();
    }
    CHECK_EQ(refusalOf(database, {"--replay", record + "/."}), std::string());
    CHECK(has(refusalOf(database, {"--no-replay"}), record));
    {
        const ServerProcess server(database);
        const json open = Desk(server).list("open");
        REQUIRE(open.size() == 1);
        const double entry = std::stod(open.at(0).at("entryPrice").get<std::string>());
        CHECK(entry > 1.095 && entry < 1.105);
    }
    CHECK_EQ(refusalOf(database, {"--no-replay", "--close-open-trades"}), std::string());
    std::filesystem::remove_all(record);
    CHECK_EQ(refusalOf(database, {}), std::string());
}

TEST_CASE("a remembered record that is gone is named, with what can be done")
{
    const TemporaryFolder folder;
    const std::string database = (folder / "x.db").string();
    const std::string record = recordIn(folder / "record");
    CHECK_EQ(refusalOf(database, {"--replay", record}), std::string());
    std::filesystem::remove_all(record);
    const std::string reason = refusalOf(database, {});
    CHECK(has(reason, record));
    CHECK(has(reason, "--no-replay"));
    CHECK(reason.empty() || exitCodeOf(database, {}) == 2);
    CHECK_EQ(refusalOf(database, {"--no-replay"}), std::string());
}

TEST_CASE("a record that cannot be used is not remembered")
{
    const TemporaryFolder folder;
    const std::string database = (folder / "x.db").string();
    const std::string record = recordIn(folder / "record");
    std::ofstream(folder / "record" / "EURUSD-1m.csv") << "rubbish\n";
    CHECK(has(refusalOf(database, {"--seed", "9", "--replay", record}), "EURUSD-1m.csv"));
    const ServerProcess server(database);
    Desk(server).buy();
    CHECK_EQ(Desk(server).list("open").size(), std::size_t(1));
}

TEST_CASE("trades of another version's market are refused, or cancelled at no cost")
{
    const TemporaryFolder folder;
    const std::string database = (folder / "x.db").string();
    {
        const ServerProcess server(database, {"--seed", "77"});
        Desk desk(server);
        desk.buy();
        desk.orderFarBelow();
    }
    {
        Database stored(database);
        Transaction transaction(stored);
        MetaStore(stored).setValue("generator", "1");
        transaction.commit();
    }
    const std::string reason = refusalOf(database, {});
    CHECK(has(reason, "2 open trades"));
    CHECK(has(reason, "another version"));
    CHECK(has(reason, "--close-open-trades"));
    CHECK(reason.empty() || exitCodeOf(database, {}) == 2);
    {
        const ServerProcess server(database, {"--close-open-trades"});
        Desk desk(server);
        CHECK(desk.list("open").empty());
        CHECK(desk.list("pending").empty());
        CHECK_EQ(desk.account().at("balance"), "100000.00");
        const json history = desk.list("history");
        REQUIRE(history.size() == 2);
        for (const json& row : history) {
            CHECK_EQ(row.at("status"), "CANCELLED");
            CHECK_EQ(row.at("pnl"), "0.00");
        }
        desk.buy();
    }
    CHECK_EQ(refusalOf(database, {}), std::string());
}

CHECK_MAIN()
