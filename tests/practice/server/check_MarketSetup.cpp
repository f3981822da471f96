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
        m_account = m_client.demoAccount();
    }
    [[nodiscard]] const json& account() const { return m_account; }
    [[nodiscard]] json list(const std::string& kind)
    {
        return m_client.get("/api/trades/" + kind + "?accountId=" + m_account.at("id").get<std::string>())
            .json();
    }
    void place(json order, const std::string& symbol = "EURUSD")
    {
        order["accountId"] = m_account.at("id");
        order["symbol"] = symbol;
        order["lotSize"] = 1;
        REQUIRE(m_client.post("/api/trades/place", order).status == 200);
    }
    void buy(const std::string& symbol = "EURUSD")
    {
        place({{"orderKind", "MARKET"}, {"type", "BUY"}}, symbol);
    }
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

std::string minuteRows(const std::string& level)
{
    const std::string prices = level + "000," + level + "020," + level + "000," + level + "010,5\n";
    return "time,open,high,low,close,volume\n2024-01-02T00:00:00Z," + prices + "2024-01-02T00:01:00Z,"
        + prices;
}

void writeMinutes(
    const std::filesystem::path& folder, const std::string& text, const std::string& symbol = "EURUSD")
{
    std::ofstream(folder / (symbol + "-1m.csv"), std::ios::binary) << text;
}

std::string recordIn(const std::filesystem::path& folder, const std::string& level = "1.10")
{
    std::filesystem::create_directories(folder);
    writeMinutes(folder, minuteRows(level));
    return folder.string();
}

/// All that the database remembers besides accounts and trades.
std::string factsIn(const std::string& database)
{
    Database stored(database);
    std::string facts;
    Statement& query = stored.statement("SELECT key, value FROM meta ORDER BY key");
    while (query.step())
        facts += query.text(0) + '=' + query.text(1) + '\n';
    return facts;
}

/// As the database would be, had a version written it that knew nothing of a record but its folder.
void forgetDigests(const std::string& database)
{
    Database(database).execute("DELETE FROM meta WHERE key LIKE 'replayDigest%'");
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

TEST_CASE("a refused start leaves nothing behind")
{
    const TemporaryFolder folder;
    const std::string database = (folder / "x.db").string();
    const std::string record = recordIn(folder / "record");
    const std::string rubbish = recordIn(folder / "rubbish");
    writeMinutes(rubbish, "rubbish\n");
    {
        const ServerProcess server(database);
        Desk(server).buy();
    }
    const std::string before = factsIn(database);
    CHECK(has(refusalOf(database, {"--replay", record}), "--close-open-trades"));
    CHECK_EQ(factsIn(database), before);
    CHECK(has(refusalOf(database, {"--replay", rubbish, "--close-open-trades"}), "EURUSD-1m.csv"));
    CHECK_EQ(factsIn(database), before);
}

TEST_CASE("a start whose port is taken leaves market and trades as they were")
{
    const TemporaryFolder folder;
    const std::string database = (folder / "x.db").string();
    {
        const ServerProcess server(database);
        Desk(server).buy();
    }
    const std::string before = factsIn(database);
    {
        const ServerProcess other((folder / "other.db").string());
        const auto result = ServerProcess::run({"--port", std::to_string(other.port()), "--db", database,
            "--speed", "60", "--close-open-trades"});
        CHECK_EQ(result.exitCode, 2);
        CHECK(has(result.errors, "cannot listen"));
    }
    CHECK_EQ(factsIn(database), before);
    const ServerProcess server(database);
    CHECK_EQ(Desk(server).list("open").size(), std::size_t(1));
}

TEST_CASE("files exchanged under open trades are refused as another record is")
{
    const TemporaryFolder folder;
    const std::string database = (folder / "x.db").string();
    const std::string record = recordIn(folder / "record");
    json opened;
    {
        const ServerProcess server(database, {"--replay", record});
        Desk desk(server);
        desk.buy();
        opened = desk.list("open").at(0);
    }
    const std::string before = factsIn(database);
    recordIn(record, "1.20");
    for (const std::vector<std::string>& arguments :
        std::vector<std::vector<std::string>>{{}, {"--replay", record}, {"--speed", "60"}}) {
        const std::string reason = refusalOf(database, arguments);
        CHECK(has(reason, "1 open trade "));
        CHECK(has(reason, record));
        CHECK(has(reason, "changed"));
        CHECK(has(reason, "--close-open-trades"));
        CHECK(reason.empty() || exitCodeOf(database, arguments) == 2);
    }
    CHECK_EQ(factsIn(database), before);
    recordIn(record);
    {
        const ServerProcess server(database);
        const json still = Desk(server).list("open");
        REQUIRE(still.size() == 1);
        CHECK_EQ(still.at(0).at("entryPrice"), opened.at("entryPrice"));
    }
    recordIn(record, "1.20");
    {
        const ServerProcess server(database, {"--close-open-trades"});
        Desk desk(server);
        CHECK(desk.list("open").empty());
        CHECK_EQ(desk.account().at("balance"), "100000.00");
        const json history = desk.list("history");
        REQUIRE(history.size() == 1);
        CHECK_EQ(history.at(0).at("status"), "CANCELLED");
        CHECK_EQ(history.at(0).at("pnl"), "0.00");
        desk.buy();
    }
    CHECK_EQ(refusalOf(database, {}), std::string());
}

TEST_CASE("a record that has grown is another one, for its minutes move")
{
    const TemporaryFolder folder;
    const std::string database = (folder / "x.db").string();
    const std::string record = recordIn(folder / "record");
    {
        const ServerProcess server(database, {"--replay", record});
        Desk(server).buy();
    }
    std::ofstream(folder / "record" / "EURUSD-1m.csv", std::ios::app)
        << "2024-01-02T00:02:00Z,1.10000,1.10020,1.10000,1.10010,5\n";
    CHECK(has(refusalOf(database, {}), "changed"));
    recordIn(record);
    writeMinutes(record, minuteRows("60.00"), "BTCUSD");
    CHECK(has(refusalOf(database, {}), "changed"));
}

TEST_CASE("a record written in another way is the same one while its prices are")
{
    const TemporaryFolder folder;
    const std::string database = (folder / "x.db").string();
    const std::string record = recordIn(folder / "record");
    {
        const ServerProcess server(database, {"--replay", record});
        Desk(server).buy();
    }
    writeMinutes(record, "\xEF\xBB\xBF" + minuteRows("1.10") + "\n\n");
    CHECK_EQ(refusalOf(database, {}), std::string());
}

TEST_CASE("with nothing open the files of a record may change, and the change is remembered")
{
    const TemporaryFolder folder;
    const std::string database = (folder / "x.db").string();
    const std::string record = recordIn(folder / "record");
    CHECK_EQ(refusalOf(database, {"--replay", record}), std::string());
    recordIn(record, "1.20");
    {
        const ServerProcess server(database);
        Desk(server).buy();
    }
    CHECK_EQ(refusalOf(database, {}), std::string());
    recordIn(record);
    CHECK(has(refusalOf(database, {}), "changed"));
}

TEST_CASE("a database that knows only the folder takes its files as they are, and remembers them then")
{
    const TemporaryFolder folder;
    const std::string database = (folder / "x.db").string();
    const std::string record = recordIn(folder / "record");
    {
        const ServerProcess server(database, {"--replay", record});
        Desk(server).buy();
    }
    forgetDigests(database);
    recordIn(record, "1.20");
    CHECK_EQ(refusalOf(database, {}), std::string());
    recordIn(record);
    CHECK(has(refusalOf(database, {}), "changed"));
}

TEST_CASE("trades without old prices hold the market until the accounts begin anew")
{
    const TemporaryFolder folder;
    const std::string database = (folder / "x.db").string();
    const std::string record = recordIn(folder / "record");
    {
        const ServerProcess server(database, {"--replay", record});
        Desk(server).buy();
    }
    const std::string before = factsIn(database);
    const std::vector<std::string> away{"--no-replay", "--close-open-trades"};
    const auto checkRefusal = [&](const std::string& part) {
        const std::string reason = refusalOf(database, away);
        CHECK(has(reason, "1 open trade "));
        CHECK(has(reason, part));
        CHECK(has(reason, "tavoran-practice reset --db " + database));
        CHECK(reason.empty() || exitCodeOf(database, away) == 2);
        CHECK_EQ(factsIn(database), before);
    };
    recordIn(record, "1.20");
    checkRefusal("changed");
    writeMinutes(record, "rubbish\n");
    checkRefusal("EURUSD-1m.csv:1");
    std::filesystem::remove_all(record);
    checkRefusal("gone");
    CHECK_EQ(ServerProcess::run({"reset", "--db", database}).exitCode, 0);
    CHECK_EQ(refusalOf(database, {"--no-replay"}), std::string());
}

TEST_CASE("either everything is closed at the old prices or nothing")
{
    const TemporaryFolder folder;
    const std::string database = (folder / "x.db").string();
    const std::string record = recordIn(folder / "record");
    writeMinutes(record, minuteRows("5.00"), "XTEST");
    {
        const ServerProcess server(database, {"--replay", record});
        Desk desk(server);
        desk.buy();
        desk.orderFarBelow();
        desk.buy("XTEST");
    }
    forgetDigests(database);
    std::filesystem::remove(folder / "record" / "XTEST-1m.csv");
    const std::string reason = refusalOf(database, {"--no-replay", "--close-open-trades"});
    CHECK(has(reason, "3 open trades"));
    CHECK(has(reason, "tavoran-practice reset --db " + database));
    writeMinutes(record, minuteRows("5.00"), "XTEST");
    {
        const ServerProcess server(database);
        Desk desk(server);
        CHECK_EQ(desk.list("open").size(), std::size_t(2));
        CHECK_EQ(desk.list("pending").size(), std::size_t(1));
        CHECK(desk.list("history").empty());
    }
    const ServerProcess server(database, {"--no-replay", "--close-open-trades"});
    Desk desk(server);
    CHECK(desk.list("open").empty());
    CHECK(desk.list("pending").empty());
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
