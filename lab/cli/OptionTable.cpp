#include "lab/cli/OptionTable.h"

#include "lab/cli/OptionValues.h"
#include "lab/cli/StudyOptionReaders.h"
#include "lab/core/output/RunWords.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <utility>

namespace lab {

namespace {

constexpr CommandSet running = runningCommands;
constexpr CommandSet writing
    = running | setOf(Command::Report) | setOf(Command::Compare) | setOf(Command::Merge);
/// Those that choose among sets of inputs.
constexpr CommandSet choosing = setOf(Command::Sweep) | setOf(Command::Walk) | setOf(Command::Plan);
constexpr CommandSet working
    = setOf(Command::Sweep) | setOf(Command::Walk) | setOf(Command::Challenge) | setOf(Command::Work);
constexpr CommandSet verifying = setOf(Command::Verify);

constexpr std::array commands{
    CommandRow{Command::Inputs, "inputs", "SCRIPT", "list the values of a script that can be changed",
        "An input is a line at the top level of the script that gives a name to a number,\n"
        "a text, true or false:  var Fast = 10;  // what stands here explains it\n"},
    CommandRow{Command::Run, "run", "SCRIPT", "run a script over history and write a report",
        "Without --out the files go to SCRIPT-SYMBOL in the current folder.\n"
        "Exit status: 0; 1 when the script failed; 2 when something cannot be used; 130\n"
        "after Ctrl-C, which keeps what was done.\n"},
    CommandRow{Command::Report, "report", "FILE", "the same report for an account's own closed trades",
        "FILE is the platform's reply to GET /api/trades/history, saved as it came.\n"
        "Without --out the files go to a folder named after it in the current one.\n"},
    CommandRow{Command::Compare, "compare", "DIR DIR", "results of two runs or more, side by side",
        "With --out the comparison is written as a page too, compare.html.\n"},
    CommandRow{Command::Check, "check", "SCRIPT", "find out whether a result can be believed",
        "An earlier end must change nothing before it, half and double the warm-up no\n"
        "trade, the order of the extremes no more than a tenth of the result, and another\n"
        "run no byte. Exit status: 0 when all of this holds, 1 when not, else as of run.\n"
        "With --out the run is written, with what does not hold among the warnings.\n"},
    CommandRow{Command::Sweep, "sweep", "SCRIPT", "try many values of inputs, on all cores",
        "--set takes ranges FROM:TO:STEP and lists A,B. Exit status: 0; 3 when some sets\n"
        "failed; 130 after Ctrl-C, which keeps what was done; else as of run.\n"},
    CommandRow{Command::Walk, "walk", "SCRIPT", "choose values on the past, try them on what follows",
        "Each window chooses as sweep does, and is tested on the time behind it.\n"},
    CommandRow{Command::Challenge, "challenge", "SCRIPT",
        "how often a plan would be passed, from many starts",
        "A run from each start ends with the plan or with the prices.\n"},
    CommandRow{Command::Plan, "plan", "SCRIPT", "a sweep in chunks, for several machines",
        "--out names the file, SCRIPT-SYMBOL.plan.json without it. Then, for each chunk,\n"
        "tavoran-lab work PLAN CHUNK, and in the end tavoran-lab merge PLAN.\n"},
    CommandRow{Command::Work, "work", "PLAN CHUNK", "carry out a chunk of a plan",
        "Chunks are numbered from 1. The result lies beside the plan.\n"},
    CommandRow{Command::Merge, "merge", "PLAN", "join the chunks of a plan to the result of a sweep",
        "Exit status: 0; 2 when chunks are missing or do not belong together, and names\n"
        "them; 3 when some sets failed.\n"},
    CommandRow{Command::Verify, "verify", "SESSION SCRIPT", "compare a live script with the lab",
        "SESSION is what tavoran-practice --record has written. The script is called at\n"
        "each price that the platform sent, on the bars and with the account that it told\n"
        "of; its orders and the broker's fills have to be those that were recorded.\n"
        "Exit status: 0 without a divergence, 1 with one, 2 when something cannot be\n"
        "used.\n"},
};

[[noreturn]] void refuse(std::string_view what, const std::string& text)
{
    throw UsageError(std::string(what) + ", not \"" + text + '"');
}

template <typename Value, std::size_t Count, typename Name>
Value oneOf(const std::array<Value, Count>& values, const Name& nameOf, std::string_view option,
    const std::string& text)
{
    std::string names;
    for (const Value value : values) {
        if (nameOf(value) == text)
            return value;
        names += names.empty() ? " takes one of " : ", ";
        names += nameOf(value);
    }
    refuse(std::string(option) + names, text);
}

void readData(Options& options, const std::string& text)
{
    if (text.empty())
        refuse("--data takes a file SYMBOL-1m.csv", text);
    options.data.emplace_back(text);
}

void readSymbol(Options& options, const std::string& text)
{
    if (text.empty())
        refuse("--symbol takes the name of a symbol", text);
    options.settings.symbol = text;
}

void readSeed(Options& options, const std::string& text)
{
    const auto seed = wholeNumber(text);
    if (!seed)
        refuse("--seed takes a whole number that is not negative", text);
    options.settings.seed = *seed;
}

void readSpeed(Options& options, const std::string& text)
{
    const auto speed = decimalNumber(text, 0.1, 1000);
    if (!speed)
        refuse("--speed takes a number from 0.1 to 1000", text);
    options.speed = *speed;
}

void readTimeframe(Options& options, const std::string& text)
{
    options.settings.timeframe = oneOf(practice::allTimeframes, practice::timeframeKey, "--timeframe", text);
    options.hasTimeframe = true;
}

practice::TimeMs momentOf(std::string_view option, const std::string& text)
{
    const auto time = moment(text);
    if (!time)
        refuse(
            std::string(option) + " takes a day such as 2014-05-01 or a time such as 2014-05-01T12:30", text);
    return *time;
}

void readFrom(Options& options, const std::string& text)
{
    options.settings.from = momentOf("--from", text);
}

void readTo(Options& options, const std::string& text)
{
    options.settings.to = momentOf("--to", text);
}

void readWarmup(Options& options, const std::string& text)
{
    const auto bars = wholeNumber(text, 0, 1'000'000);
    if (!bars)
        refuse("--warmup takes a number of bars from 0 to 1000000", text);
    options.settings.warmupBars = static_cast<int>(*bars);
}

void readModel(Options& options, const std::string& text)
{
    options.settings.model
        = oneOf(std::array{Model::Open, Model::Ohlc, Model::Path, Model::Feed}, modelText, "--model", text);
}

void readExtremes(Options& options, const std::string& text)
{
    options.settings.extremes
        = oneOf(std::array{ExtremeOrder::Usual, ExtremeOrder::HighFirst, ExtremeOrder::LowFirst},
            extremesText, "--extremes", text);
}

void readSpread(Options& options, const std::string& text)
{
    const auto points = wholeNumber(text, 2, 1'000'000);
    if (!points || *points % 2 != 0)
        refuse("--spread takes an even number of points from 2 to 1000000", text);
    options.settings.spreadPoints = static_cast<std::int64_t>(*points);
}

void readDelay(Options& options, const std::string& text)
{
    const auto delay = wholeNumber(text, 0, static_cast<std::uint64_t>(practice::dayMs));
    if (!delay)
        refuse("--delay takes milliseconds from 0 to 86400000", text);
    options.settings.delayMs = static_cast<practice::TimeMs>(*delay);
}

void readAccount(Options& options, const std::string& text)
{
    options.settings.rules
        = oneOf(std::array{AccountRules::Demo, AccountRules::Plan}, rulesText, "--account", text);
}

void readAccountId(Options& options, const std::string& text)
{
    if (text.empty())
        refuse("--account takes the id of an account", text);
    options.account = text;
}

void readBalance(Options& options, const std::string& text)
{
    const auto balance = amount(text);
    if (!balance)
        refuse("--balance takes an amount above 0 such as 25000 or 25000.50", text);
    options.settings.balance = *balance;
    options.hasBalance = true;
}

void readLeverage(Options& options, const std::string& text)
{
    const auto leverage = wholeNumber(text, 1, 1'000);
    if (!leverage)
        refuse("--leverage takes a whole number from 1 to 1000", text);
    options.settings.leverage = static_cast<int>(*leverage);
}

void readInput(Options& options, const std::string& text)
{
    const std::size_t equals = text.find('=');
    if (equals == 0 || equals == std::string::npos)
        refuse("--set takes the name of an input and its value, NAME=VALUE", text);
    const std::string name = text.substr(0, equals);
    auto& inputs = options.settings.inputs;
    std::erase_if(inputs, [&name](const auto& input) { return input.first == name; });
    inputs.emplace_back(name, text.substr(equals + 1));
}

// An empty name may come from an unset variable in a script, and must not mean the usual folder.
void readOut(Options& options, const std::string& text)
{
    if (text.empty())
        refuse("--out takes the name of a folder", text);
    options.out = text;
}

void readLimit(Options& options, const std::string& text)
{
    const auto seconds = decimalNumber(text, 0.001, 1e6);
    if (!seconds)
        refuse("--limit takes seconds from 0.001 to 1000000", text);
    options.limit = std::chrono::milliseconds(static_cast<std::int64_t>(*seconds * 1000 + 0.5));
}

constexpr std::array options{
    OptionRow{"--data", "FILE-1m.csv",
        "recorded minutes, of a symbol that the file is named after;\n"
        "more of them where results are turned into USD",
        running, readData},
    OptionRow{"--symbol", "S", "which symbol, where there are several", running | setOf(Command::Report),
        readSymbol},
    OptionRow{"--seed", "N",
        "simulated prices, of this market of the practice platform;\n"
        "with --data of the script's random numbers alone (1)",
        running, readSeed},
    OptionRow{"--speed", "X", "how fast the simulated market moves, 0.1 to 1000 (1)", running, readSpeed},
    OptionRow{"--timeframe", "T", "of the chart: 1m 5m 15m 1h 4h 1d 1w 1mn (15m)", running, readTimeframe},
    OptionRow{"--from", "D",
        "day or time in UTC, 2014-05-01 or 2014-05-01T12:30 (as\n"
        "soon as there is a warm-up; simulated: 2024-01-01, or\n"
        "365 days before --to)",
        running, readFrom},
    OptionRow{"--to", "D",
        "day or time that no longer belongs to the run (the end of\n"
        "the record; simulated: 365 days after --from)",
        running, readTo},
    OptionRow{
        "--warmup", "BARS", "bars before the start (1500, or a quarter of the record)", running, readWarmup},
    OptionRow{"--model", "M",
        "when the script is called: at the open of each bar, at\n"
        "ohlc of each minute, along a path, as by a feed (ohlc)",
        running, readModel},
    OptionRow{"--extremes", "E",
        "order of a minute's extremes: usual (the one nearer the\n"
        "open comes first), high-first or low-first (usual)",
        running, readExtremes},
    OptionRow{"--spread", "P", "spread in points, even (as recorded, or else as usual)", running, readSpread},
    OptionRow{"--delay", "MS", "time from an order to its execution (0)", running, readDelay},
    OptionRow{"--account", "A", "rules of a demo account or of a plan: demo, plan (demo)",
        running & ~setOf(Command::Challenge), readAccount},
    OptionRow{"--balance", "B", "balance at the start in USD (100000)", running | setOf(Command::Report),
        readBalance},
    OptionRow{"--leverage", "L", "of the account, 1 to 1000 (100)", running, readLeverage},
    OptionRow{"--set", "NAME=V", "another value for an input; may be repeated", running, readInput},
    OptionRow{"--symbol", "S", "of the chart, where the session has several", verifying, readSymbol},
    OptionRow{"--timeframe", "T", "of the chart, where the session has several", verifying, readTimeframe},
    OptionRow{"--account", "ID", "traded on, where the session has several", verifying, readAccountId},
    OptionRow{"--from", "D",
        "when the script came onto the chart, in UTC, such as\n"
        "2026-05-01T12:30:15.250 (as soon as there were bars)",
        verifying, readFrom},
    OptionRow{"--to", "D", "when it left the chart (the end of the session)", verifying, readTo},
    OptionRow{
        "--set", "NAME=V", "an input's value in the live script; may be repeated", verifying, readInput},
    OptionRow{"--out", "DIR", "the folder to write to", writing, readOut},
    OptionRow{
        "--limit", "SECONDS", "the most that a run may take (no limit)", running | verifying, readLimit},
    OptionRow{"--random", "N", "try N of the sets, drawn by --seed", choosing, readRandom},
    OptionRow{"--sort", "FIGURE", "a key of summary.json that decides (sharpe)", choosing, readSort},
    OptionRow{"--min-trades", "N", "a set with fewer is not chosen (30)", choosing, readMinTrades},
    OptionRow{"--train", "LENGTH", "of the time to choose on, 90d or 12w", setOf(Command::Walk), readTrain},
    OptionRow{"--test", "LENGTH", "of the time to try on, behind it", setOf(Command::Walk), readTest},
    OptionRow{"--anchored", "", "choose on all the past", setOf(Command::Walk), readAnchored},
    OptionRow{"--starts", "daily", "a start on each day with prices", setOf(Command::Challenge), readStarts},
    OptionRow{"--seeds", "A..B", "a simulated market for each", setOf(Command::Challenge), readSeeds},
    OptionRow{"--chunks", "N", "in how many parts the sets go", setOf(Command::Plan), readChunks},
    OptionRow{"--jobs", "N", "runs at once (as many as cores; of work: 1)", working, readJobs},
    OptionRow{"--memory", "MB", "the most for each of them, besides prices (2048)", working, readMemory},
    OptionRow{"--resume", "", "go on with a sweep that was stopped", setOf(Command::Sweep), readResume},
};

} // namespace

std::span<const CommandRow> commandRows()
{
    return commands;
}

const CommandRow& rowOf(Command command)
{
    return *std::ranges::find(commands, command, &CommandRow::command);
}

std::span<const OptionRow> optionRows()
{
    return options;
}

} // namespace lab
