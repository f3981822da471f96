#include "practice/Check.h"

#include "lab/cli/OptionTable.h"
#include "lab/cli/OptionValues.h"
#include "lab/cli/Options.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <utility>

using lab::Command;
using lab::Options;
using lab::UsageError;

namespace {

/// The words of a line, parted by blanks.
Options read(const std::string& line)
{
    std::istringstream input(line);
    std::vector<std::string> words;
    for (std::string word; input >> word;)
        words.push_back(word);
    return lab::parseOptions(words);
}

std::string refusal(const std::string& line)
{
    try {
        static_cast<void>(read(line));
    } catch (const UsageError& error) {
        return error.what();
    }
    return {};
}

bool contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

/// In characters, of which some take several bytes.
std::size_t widest(const std::string& text)
{
    std::size_t most = 0;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        const auto characters = std::ranges::count_if(line, [](char c) { return (c & 0xC0) != 0x80; });
        most = std::max(most, static_cast<std::size_t>(characters));
    }
    return most;
}

/// In one line, a blank between the words.
std::string spaced(const std::string& text)
{
    std::istringstream words(text);
    std::string line = " ";
    for (std::string word; words >> word;)
        line += word + ' ';
    return line;
}

} // namespace

TEST_CASE("a run over recorded minutes needs no more than script and file")
{
    const Options options = read("run MA_Cross.js --data EURUSD-1m.csv");
    CHECK(options.command == Command::Run);
    CHECK_EQ(options.script.string(), "MA_Cross.js");
    CHECK_EQ(options.data.size(), 1U);
    CHECK_EQ(options.settings.symbol, "");
    CHECK(options.settings.timeframe == practice::Timeframe::M15);
    CHECK(options.settings.model == lab::Model::Ohlc);
    CHECK(options.settings.extremes == lab::ExtremeOrder::Usual);
    CHECK(options.settings.rules == lab::AccountRules::Demo);
    CHECK_EQ(options.settings.balance, 10'000'000);
    CHECK_EQ(options.settings.leverage, 100);
    CHECK(!options.settings.warmupBars);
    CHECK_EQ(options.settings.warmup(), 1500);
    CHECK_EQ(options.settings.delayMs, 0);
    CHECK(!options.settings.spreadPoints && !options.settings.from && !options.settings.to);
    CHECK(options.out.empty());
    CHECK_EQ(options.limit.count(), 0);
}

TEST_CASE("every option of a run arrives where it belongs")
{
    const Options options
        = read("run a.js --symbol EURUSD --seed=7 --speed 2.5 --timeframe 1h --from 2014-05-01 --to "
               "2014-06-01T12:30 "
               "--warmup 100 --model path --extremes high-first --spread 12 --delay 250 --account plan "
               "--balance 25000.5 --leverage 50 --set Fast=5 --set Name=a=b --out there --limit 1.5");
    const lab::RunSettings& settings = options.settings;
    CHECK_EQ(settings.symbol, "EURUSD");
    CHECK_EQ(settings.seed, 7U);
    CHECK_EQ(options.settings.speed, 2.5);
    CHECK(settings.timeframe == practice::Timeframe::H1);
    CHECK_EQ(settings.from.value_or(0), 1'398'902'400'000);
    CHECK_EQ(settings.to.value_or(0), 1'401'625'800'000);
    CHECK_EQ(settings.warmup(), 100);
    CHECK(settings.model == lab::Model::Path);
    CHECK(settings.extremes == lab::ExtremeOrder::HighFirst);
    CHECK_EQ(settings.spreadPoints.value_or(0), 12);
    CHECK_EQ(settings.delayMs, 250);
    CHECK(settings.rules == lab::AccountRules::Plan);
    CHECK_EQ(settings.balance, 2'500'050);
    CHECK_EQ(settings.leverage, 50);
    REQUIRE(settings.inputs.size() == 2);
    CHECK(settings.inputs[0] == std::make_pair(std::string("Fast"), std::string("5")));
    CHECK(settings.inputs[1] == std::make_pair(std::string("Name"), std::string("a=b")));
    CHECK_EQ(options.out.string(), "there");
    CHECK_EQ(options.limit.count(), 1500);
}

TEST_CASE("several files stand behind one --data or behind one each, and the script before or after them")
{
    for (const char* line : {"run a.js --data x/A-1m.csv x/B-1m.csv", "run --data x/A-1m.csv x/B-1m.csv a.js",
             "run --data=x/A-1m.csv x/B-1m.csv a.js", "run --data x/A-1m.csv a.js --data x/B-1m.csv"}) {
        const Options options = read(line);
        CHECK_EQ(options.script.string(), "a.js");
        REQUIRE(options.data.size() == 2);
        CHECK_EQ(options.data[0].string(), "x/A-1m.csv");
        CHECK_EQ(options.data[1].string(), "x/B-1m.csv");
    }
}

TEST_CASE("of a repeated option the last one counts, of an input too")
{
    const Options options
        = read("run a.js --data A-1m.csv --warmup 1 --warmup 2 --set Fast=1 --set Slow=3 --set Fast=2");
    CHECK_EQ(options.settings.warmup(), 2);
    REQUIRE(options.settings.inputs.size() == 2);
    CHECK_EQ(options.settings.inputs[0].first, "Slow");
    CHECK_EQ(options.settings.inputs[1].second, "2");
}

TEST_CASE("behind two dashes everything is a name")
{
    CHECK_EQ(read("inputs -- --help").script.string(), "--help");
}

TEST_CASE("commands without prices need none")
{
    CHECK_EQ(read("inputs a.js").script.string(), "a.js");
    CHECK_EQ(read("report history.json --balance 100 --out r").results.size(), 1U);
    CHECK(read("report history.json --balance 100").hasBalance);
    CHECK(!read("report history.json").hasBalance);
    CHECK_EQ(read("compare a b c").results.size(), 3U);
}

TEST_CASE("what is missing is named")
{
    CHECK(contains(refusal(""), "inputs, run, report, compare, check, sweep"));
    CHECK(contains(refusal("walzer a.js"), "unknown command walzer; there are inputs, run"));
    CHECK(contains(refusal("--data A-1m.csv run a.js"), "the command comes first"));
    CHECK(contains(refusal("run --data A-1m.csv"), "run needs a script"));
    CHECK(contains(refusal("inputs"), "inputs needs a script"));
    CHECK(contains(refusal("report"), "report needs a file"));
    CHECK(contains(refusal("compare a"), "at least two"));
    CHECK(contains(refusal("run a.js"), "--data"));
    CHECK(contains(refusal("run a.js --seed 1"), "--symbol"));
    CHECK(contains(refusal("run a.js --data"), "--data needs a value"));
    CHECK(contains(refusal("run a.js b.js --data A-1m.csv"), "b.js"));
    CHECK(contains(refusal("run a.js --data A-1m.csv --speed 2"), "--speed"));
    CHECK(contains(refusal("run a.js --data A-1m.csv --from 2014-05-02 --to 2014-05-02"),
        "--from has to be before --to"));
}

TEST_CASE("an unknown option is answered with those that the command has")
{
    const std::string run = refusal("run a.js --fast 3");
    CHECK(contains(run, "unknown option --fast; run has --data, --symbol, "));
    CHECK(contains(run, "--out, --help, --version"));
    const std::string compare = refusal("compare a b --symbol EURUSD");
    CHECK_EQ(compare, "unknown option --symbol; compare has --out, --help, --version");
}

TEST_CASE("values that cannot be used are refused in one line that says what can")
{
    const std::string start = "run a.js --data A-1m.csv ";
    for (const char* line : {"--timeframe 2m", "--timeframe M15", "--seed -1", "--seed 1.5", "--seed x",
             "--from 2014-13-01", "--from 2014-02-30", "--from 2014-5-1", "--from yesterday",
             "--to 2014-05-01T24:00", "--to 2014-05-01T12:30:00+02:00", "--warmup -1", "--warmup 1e3",
             "--model tick", "--extremes high", "--spread 0", "--spread 7", "--spread 1.5", "--delay -1",
             "--delay 1h", "--account real", "--balance 0", "--balance 0.001", "--balance -5",
             "--balance 1,000", "--leverage 0", "--leverage 1001", "--set Fast", "--set =5", "--limit 0",
             "--limit soon", "--data=", "--out=", "--symbol="}) {
        const std::string text = refusal(start + line);
        CHECK(!text.empty());
        CHECK(text.find('\n') == std::string::npos);
        const std::string option(
            line, std::find_if(line, line + 30, [](char c) { return c == ' ' || c == '='; }));
        CHECK(text.starts_with(option + " takes "));
        if (text.empty())
            std::cout << line << '\n';
    }
    CHECK(contains(refusal(start + "--timeframe 2m"), "1m, 5m, 15m, 1h, 4h, 1d, 1w, 1mn, not \"2m\""));
    CHECK(contains(refusal(start + "--model tick"), "open, ohlc, path, feed"));
    CHECK(contains(refusal("run a.js --symbol X --seed 1 --speed 0"), "0.1 to 1000"));
}

TEST_CASE("times are read to the millisecond and always in UTC")
{
    CHECK_EQ(lab::moment("1970-01-01").value_or(-1), 0);
    CHECK_EQ(lab::moment("2024-02-29T23:59:59.999Z").value_or(-1), 1'709'251'199'999);
    CHECK_EQ(lab::moment("2024-02-29T23:59Z").value_or(-1), 1'709'251'140'000);
    CHECK_EQ(lab::moment("2024-02-29Z").value_or(-1), 1'709'164'800'000);
    CHECK(!lab::moment("2023-02-29"));
    CHECK(!lab::moment("1969-12-31"));
    CHECK(!lab::moment("2024-02-29T"));
    CHECK(!lab::moment("2024-02-29 12:00"));
    CHECK(!lab::moment(""));
}

TEST_CASE("amounts are whole cents")
{
    CHECK_EQ(lab::amount("0.01").value_or(0), 1);
    CHECK_EQ(lab::amount("1.5").value_or(0), 150);
    CHECK_EQ(lab::amount("1000000000000").value_or(0), 100'000'000'000'000);
    CHECK(!lab::amount("1000000000000.01"));
    CHECK(!lab::amount("1."));
    CHECK(!lab::amount(".5"));
    CHECK(!lab::amount("99999999999999999999"));
}

TEST_CASE("help and version need nothing else")
{
    CHECK(read("--help").showHelp);
    CHECK(read("--version").showVersion);
    CHECK(read("run --help").showHelp);
    CHECK(read("run --help").command == Command::Run);
    CHECK(read("compare --version").showVersion);
}

TEST_CASE("verify takes a session, a script and where in the session it was")
{
    const Options options = read("verify s.txt a.js --symbol EURUSD --timeframe 1m --account 5f --from "
                                 "2026-05-01T12:30:15.250 --to 2026-05-02 --set Fast=5 --limit 3");
    CHECK(options.command == Command::Verify);
    CHECK_EQ(options.session.string(), "s.txt");
    CHECK_EQ(options.script.string(), "a.js");
    CHECK_EQ(options.account, "5f");
    CHECK(options.hasTimeframe && options.settings.timeframe == practice::Timeframe::M1);
    CHECK_EQ(*options.settings.from % 1000, 250);
    CHECK_EQ(options.settings.inputs.size(), 1U);
    CHECK(!read("verify s a").hasTimeframe);
    CHECK(contains(refusal("verify"), "session"));
    CHECK(contains(refusal("verify s"), "script"));
    CHECK(contains(refusal("verify s a b"), "one session and one script"));
    CHECK(contains(refusal("verify s a --account="), "--account"));
    CHECK(contains(refusal("verify s a --from 2026-05-02 --to 2026-05-01"), "--from"));
    CHECK(contains(refusal("verify s a --data EURUSD-1m.csv"), "unknown option --data"));
}

TEST_CASE("the commands that the guide and the README show can be typed as they stand")
{
    for (const auto& [path, least] : {std::pair("/resources/ea_guide.html", 3), std::pair("/README.md", 2)}) {
        std::ifstream page(std::string(PROJECT_ROOT) + path);
        int commands = 0;
        for (std::string line; std::getline(page, line);) {
            // Alone on its line, behind the name of a folder or a mark at most.
            const std::size_t name = line.find("tavoran-lab ");
            const std::string before = line.substr(0, std::min(name, line.size()));
            if (name == std::string::npos
                || (!before.empty() && before != "<pre><samp>" && before.back() != '/'))
                continue;
            line.resize(std::min(line.find("</samp>"), line.size()));
            CHECK_EQ(refusal(line.substr(name + 12)), std::string());
            ++commands;
        }
        CHECK(commands >= least);
    }
}

TEST_CASE("a help says what is required, which values there are, and what stands for none")
{
    const std::string walk = lab::helpText(Command::Walk);
    CHECK(contains(walk, "Usage: tavoran-lab walk SCRIPT PRICES --train LENGTH --test LENGTH [options]\n"));
    CHECK(contains(walk, "--train LENGTH     required: "));
    CHECK(contains(walk, "--test LENGTH      required: "));
    CHECK(contains(walk, "FROM:TO:STEP"));
    CHECK(contains(walk, "0 to 1000000 (30)"));
    CHECK(contains(walk, "1 to 1000 (as many as cores)"));
    CHECK(contains(walk, "512 to 1000000 (2048)"));
    CHECK(contains(walk, "(SCRIPT-SYMBOL-walk)"));
    CHECK(contains(walk, "as of run, see its --help: --data "));
    CHECK(contains(lab::helpText(Command::Run), "--data FILE-1m.csv | --seed N --symbol S [options]\n"));
    CHECK(contains(lab::helpText(Command::Run), "0 to 86400000 (0)"));
    CHECK(contains(lab::helpText(Command::Run), "365 days before --to"));
    CHECK(contains(lab::helpText(Command::Plan), "PRICES --chunks N [options]\n"));
    CHECK(contains(lab::helpText(Command::Merge), "new, or with a former sweep (SCRIPT-SYMBOL-sweep)"));
    CHECK(contains(lab::helpText(Command::Report), "of this one alone (all of them)"));
    const std::string challenge = lab::helpText(Command::Challenge);
    CHECK(contains(challenge, "PRICES --starts daily | --seeds A..B\n       [options]\n"));
    CHECK(contains(challenge, "--starts daily     a start on each day with prices; or --seeds"));
}

TEST_CASE("the help of check tells which exit status a run without anything to compare has")
{
    const std::string check = lab::helpText(Command::Check);
    CHECK(contains(check, "1 when something does not, or there is\nnothing to compare;"));
    CHECK(!contains(check, "found out."));
}

TEST_CASE("a help has neither options that there are not nor a hole in it")
{
    const std::string inputs = lab::helpText(Command::Inputs);
    CHECK(inputs.starts_with("Usage: tavoran-lab inputs SCRIPT\n"));
    for (const lab::CommandRow& row : lab::commandRows())
        CHECK(!contains(lab::helpText(row.command), "\n\n\n"));
    // Every summary begins in the same column.
    CHECK(contains(lab::helpText(Command::None), "\n  verify SESSION SCRIPT  compare a "));
}

TEST_CASE("a name that is nearly right is answered with the right one")
{
    const std::string sort = refusal("sweep a.js --sort profit");
    CHECK(contains(sort, "not \"profit\"; did you mean netProfit?\n  "));
    CHECK(widest("tavoran-lab: " + sort) <= 80);
    CHECK(contains(refusal("sweep a.js --sort Sharp"), "did you mean sharpe?"));
    CHECK(contains(refusal("sweep a.js --sort zzz"), "not \"zzz\":\n  "));
    CHECK(contains(refusal("sweep a.js --min-trade 3"), "did you mean --min-trades?"));
    CHECK(contains(refusal("wlak a.js"), "did you mean walk?"));
    CHECK(contains(refusal("run a.js --min-trades 3"), "unknown option --min-trades; run has"));
}

TEST_CASE("each help fits a screen and names every option of its command")
{
    std::vector<Command> commands{Command::None};
    for (const lab::CommandRow& row : lab::commandRows())
        commands.push_back(row.command);
    for (const Command command : commands) {
        const std::string help = lab::helpText(command);
        CHECK(widest(help) <= 80);
        CHECK(std::ranges::count(help, '\n') <= 23); // and the prompt behind it
        CHECK(help.ends_with('\n'));
        for (const lab::OptionRow& row : lab::optionRows()) {
            // An option may mean something else to another command.
            const bool has = std::ranges::any_of(lab::optionRows(), [&](const lab::OptionRow& other) {
                return other.name == row.name && (other.commands & lab::setOf(command)) != 0;
            });
            if (command != Command::None) // which shows examples
                CHECK_EQ(contains(spaced(help), ' ' + std::string(row.name) + ' '), has);
        }
    }
    for (const lab::CommandRow& row : lab::commandRows())
        CHECK(contains(lab::helpText(Command::None), "  " + std::string(row.name) + ' '));
}

CHECK_MAIN()
