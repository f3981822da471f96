#include "practice/Check.h"
#include "practice/storage/TemporaryFolder.h"

#include "lab/core/session/SessionFile.h"

#include <fstream>
#include <variant>
#include <vector>

using namespace lab;

namespace {

const std::string header
    = "tavoran-session\t1\t1.2.3\t1000\n"
      "symbol\tEURUSD\t5\t1e+05\t7\t-7.2\t3.1\tEUR\tUSD\t100\t0.01\t1000\t0.01\n"
      "symbol\tUSDJPY\t3\t1e+05\t7\t1\t2\tUSD\tJPY\t100\t0.01\t1000\t0.01\n"
      "account\t1000\tA\tDEMO\tMy\\tplan\t2\t1\t0\tACTIVE\t10000000\t10000000\t100\t10000000\t20\n"
      "trade\t1000\tT\tA\tEURUSD\tBUY\tMARKET\tOPEN\t10\t1.1001\t0\t0\t1.09\t0\t-70\t1100\t0\t70"
      "\t900\t901\t0\t\tof\\\\mine\n"
      "seen\t1000\t0 110000 110010\t1 150000 150010\n"
      "start\t1000\n";

/// A recording with these lines behind its beginning.
struct Recording {
    TemporaryFolder folder;
    std::filesystem::path path = folder / "session";

    explicit Recording(const std::string& lines, const std::string& beginning = header)
    {
        std::ofstream(path, std::ios::binary) << beginning << lines;
    }
    [[nodiscard]] SessionEvent only() const
    {
        SessionFile file(path);
        const std::optional<SessionEvent> event = file.next();
        REQUIRE(event.has_value());
        return *event;
    }
    /// Why it cannot be read, without the folder; empty when it can.
    [[nodiscard]] std::string error() const
    {
        try {
            SessionFile file(path);
            while (file.next()) { }
        } catch (const SessionError& error) {
            return std::string(error.what()).substr(path.parent_path().string().size() + 1);
        }
        return {};
    }
};

} // namespace

TEST_CASE("a recording begins with symbols, accounts, open trades and prices")
{
    const Recording recording("end\t1000\n");
    SessionFile file(recording.path);
    const SessionStart& start = file.start();
    CHECK_EQ(start.version, std::string("1.2.3"));
    CHECK_EQ(start.time, practice::TimeMs(1000));
    REQUIRE(
        start.symbols.size() == 2 && start.state.accounts.size() == 1 && start.state.liveTrades.size() == 1);
    CHECK_EQ(start.symbols[0].name, std::string("EURUSD"));
    CHECK_EQ(start.symbols[0].contractSize, 100'000.0);
    CHECK_EQ(start.symbols[1].digits, 3);
    CHECK_EQ(start.symbols[1].profitCurrency, std::string("JPY"));
    const practice::Account& account = start.state.accounts.front();
    CHECK(account.kind == practice::AccountKind::Demo);
    CHECK_EQ(account.plan.name, std::string("My\tplan"));
    CHECK_EQ(account.balance, practice::Cents(10'000'000));
    CHECK_EQ(account.dayIndex, std::int64_t(20));
    const practice::Trade& trade = start.state.liveTrades.front();
    CHECK_EQ(trade.entryPrice, 1.1001);
    CHECK_EQ(trade.commission, practice::Cents(70));
    CHECK_EQ(trade.comment, std::string("of\\mine"));
    REQUIRE(start.prices.size() == 2);
    CHECK(start.prices[1].quote == (practice::Quote{150.0, 150.01}));
    CHECK(!file.next());
    CHECK(file.isWhole());
}

TEST_CASE("each kind of line is read")
{
    const auto prices = Recording("quotes\t1250\t1 150001 150011\n").only();
    CHECK_EQ(prices.time, practice::TimeMs(1250));
    const auto& quotes = std::get<PricesEvent>(prices.what);
    CHECK(quotes.announced && quotes.quotes.size() == 1 && quotes.quotes[0].symbol == 1);
    CHECK(!std::get<PricesEvent>(Recording("seen\t1250\t0 1 2\n").only().what).announced);

    const auto place
        = Recording("place\t1250\tA\tEURUSD\tMARKET\tSELL\t0.1\t0\t1.2\t0\twhy\t200\tT2\n").only();
    const auto& placed = std::get<CommandEvent>(place.what);
    const auto& order = std::get<practice::PlaceRequest>(placed.command);
    CHECK_EQ(order.type, std::string("SELL"));
    CHECK_EQ(order.lots, 0.1);
    CHECK(order.stopLoss == 1.2 && !order.takeProfit && !order.pendingPrice);
    CHECK_EQ(placed.outcome, std::string("T2"));

    const auto refused = Recording("close\t1250\tT\t404\tThere is no such trade.\n").only();
    CHECK_EQ(std::get<CommandEvent>(refused.what).status, 404);
    const auto modified = Recording("modify\t1250\tT\t0\t\t1.1\t200\tT\n").only();
    const auto& change
        = std::get<practice::ModifyCommand>(std::get<CommandEvent>(modified.what).command).change;
    CHECK(change.stopLoss == 0.0 && !change.takeProfit && change.pendingPrice == 1.1);
    const auto cancelled = Recording("cancel\t1250\tT\t200\tT\n").only();
    CHECK(std::holds_alternative<practice::CancelCommand>(std::get<CommandEvent>(cancelled.what).command));

    const auto balances = Recording("accounts\t1250\tA\t5\tB\t-7\n").only();
    CHECK_EQ(std::get<BalancesEvent>(balances.what).balances[1].second, practice::Cents(-7));
    const auto positions = Recording("positions\t1250\tA\tT\tEURUSD\t-70\n").only();
    CHECK_EQ(std::get<PositionsEvent>(positions.what).positions.at(0).pnl, practice::Cents(-70));
    CHECK(std::get<PositionsEvent>(Recording("positions\t1250\tA\n").only().what).positions.empty());
    CHECK_EQ(std::get<OrdersEvent>(Recording("orders\t1250\tA\n").only().what).accountId, std::string("A"));
    const auto results = Recording("results\t1250\tA\tT\t12\n").only();
    CHECK_EQ(std::get<ResultsEvent>(results.what).results.at(0).second, practice::Cents(12));
    const auto bars = Recording("bars\t1250\tUSDJPY\t15m\t0 1000 1002 999 1001 7\n").only();
    CHECK(std::get<BarsEvent>(bars.what).bars.at(0) == (practice::Bar{0, 1.0, 1.002, 0.999, 1.001, 7}));
}

TEST_CASE("a last line that was cut is left out, and the recording is not whole")
{
    const Recording recording("quotes\t1250\t0 110001 110011\nquotes\t1500\t0 1100");
    SessionFile file(recording.path);
    CHECK(file.next().has_value());
    CHECK(!file.next());
    CHECK(!file.isWhole());
    CHECK_EQ(file.lastTime(), practice::TimeMs(1250));
}

TEST_CASE("damage is quoted in a line that can be read, however long it is and whatever it holds")
{
    CHECK_EQ(Recording(std::string("quotes\t1\0\x1b[2J\xff\t0 1 2\n", 21)).error(),
        std::string("session:8: \"1??[2J?\" is no number"));
    const std::string many(100'000, 'x');
    CHECK_EQ(Recording("quotes\t" + many + "\t0 1 2\n").error(),
        "session:8: \"" + std::string(40, 'x') + "...\" is no number");
    CHECK_EQ(Recording("bars\t1250\tEURUSD\t" + many + "\n").error(),
        "session:8: \"" + std::string(40, 'x') + "...\" is not known here");
    CHECK_EQ(Recording(many + "\t1250\n").error(),
        "session:8: \"" + std::string(40, 'x') + "...\" is no line of a recording");
}

TEST_CASE("damage is told with file and line")
{
    CHECK_EQ(Recording("quotes\t12x\t0 1 2\n").error(), std::string("session:8: \"12x\" is no number"));
    CHECK_EQ(Recording("quotes\t1250\t7 1 2\n").error(), std::string("session:8: there is no symbol 7"));
    CHECK_EQ(Recording("quotes\t1250\t0 1\n").error(), std::string("session:8: a column is missing"));
    CHECK_EQ(Recording("orders\t1250\tA\tB\n").error(), std::string("session:8: there are too many columns"));
    CHECK_EQ(Recording("orders\t1250\tA\\x\n").error(), std::string("session:8: a backslash stands alone"));
    CHECK_EQ(Recording("orders\t1250\tA\nsing\t1250\n").error(),
        std::string("session:9: \"sing\" is no line of a recording"));
    CHECK_EQ(
        Recording("bars\t1250\tNONE\t15m\n").error(), std::string("session:8: there is no symbol \"NONE\""));
    CHECK_EQ(Recording("\n").error(), std::string("session:8: a column is missing"));
}

TEST_CASE("a beginning that contradicts itself is damage, and names the line")
{
    const std::string start = "start\t1000\n";
    const std::string lines = header.substr(0, header.size() - start.size());
    const auto lineOf = [](const std::string& kind) {
        const std::size_t begin = header.find(kind + "\t1000\t");
        return header.substr(begin, header.find('\n', begin) + 1 - begin);
    };
    const auto changed = [](std::string line, const std::string& from, const std::string& to) {
        line.replace(line.find(from), from.size(), to);
        return line;
    };
    const auto error = [&](const std::string& line) { return Recording("", lines + line + start).error(); };
    CHECK_EQ(error(lineOf("account")), std::string("session:7: the account \"A\" is there twice"));
    CHECK_EQ(error(lineOf("trade")), std::string("session:7: the trade \"T\" is there twice"));
    CHECK_EQ(error(changed(lineOf("trade"), "\tT\tA\t", "\tU\tB\\n\t")),
        std::string("session:7: there is no account \"B?\""));
    const std::string closed = changed(changed(lineOf("trade"), "\tT\t", "\tU\t"), "OPEN", "CLOSED");
    CHECK_EQ(error(closed), std::string("session:7: the trade \"U\" is finished"));
    CHECK_EQ(error(changed(lineOf("trade"), "\tT\t", "\tU\t")), std::string());
}

TEST_CASE("a number that no session can hold is damage")
{
    const auto start
        = [](const std::string& line) { return Recording("", "tavoran-session\t1\t1.0\t0\n" + line); };
    const std::string contract = "symbol\tX\t5\tNUMBER\t7\t0\t0\tEUR\tUSD\t100\t0.01\t100\t0.01\nstart\t0\n";
    for (const std::string number : {"nan", "inf", "-inf", "1e16", "-1e300"}) {
        std::string line = contract;
        line.replace(line.find("NUMBER"), 6, number);
        CHECK_EQ(start(line).error(), "session:2: \"" + number + "\" is no number of a session");
    }
    const std::string amount = "-9223372036854775808";
    CHECK_EQ(start("account\t0\tA\tDEMO\t\t1\t1\t0\tACTIVE\t" + amount + "\t0\t1\t0\t0\nstart\t0\n").error(),
        "session:2: \"" + amount + "\" is no number of a session");
    CHECK_EQ(Recording("quotes\t9223372036854775807\t0 1 2\n").error(),
        std::string("session:8: \"9223372036854775807\" is no number of a session"));
    CHECK_EQ(Recording("quotes\t1250\t0 1000000000000001 2\n").error(),
        std::string("session:8: \"1000000000000001\" is no number of a session"));
}

TEST_CASE("what is no recording, or one of another format, is named as that")
{
    CHECK_EQ(Recording("", "").error(), std::string("session:1: is no recording of tavoran-practice"));
    CHECK_EQ(Recording("", "time,open\n1,2\n").error(),
        std::string("session:1: is no recording of tavoran-practice"));
    CHECK_EQ(Recording("", "tavoran-session\t2\tx\t1\n").error(),
        std::string("session:1: is a recording of format 2, and only 1 is known"));
    CHECK_EQ(Recording("", "tavoran-session\t1\tx\t1\n").error(),
        std::string("session:2: the recording ends before it has begun"));
    CHECK_THROWS(SessionFile("/no/where"), SessionError);
    CHECK_THROWS(SessionFile("/tmp"), SessionError);
}

CHECK_MAIN()
