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
/// Those whose help refers to that of `run` for prices, times and the account.
constexpr CommandSet studying = running & ~setOf(Command::Run);
/// Those that choose among sets of inputs.
constexpr CommandSet choosing = setOf(Command::Sweep) | setOf(Command::Walk) | setOf(Command::Plan);
constexpr CommandSet working
    = setOf(Command::Sweep) | setOf(Command::Walk) | setOf(Command::Challenge) | setOf(Command::Work);
constexpr CommandSet verifying = setOf(Command::Verify);

constexpr std::array commands{
    CommandRow{Command::Inputs, "inputs", "SCRIPT", {}, "list the values of a script that can be changed",
        "An input is a line at the top level of the script that gives a name to a number,\n"
        "a text, true or false:  var Fast = 10;  // what stands here explains it\n"},
    CommandRow{Command::Run, "run", "SCRIPT", "--data FILE-1m.csv | --seed N --symbol S",
        "run a script over history and write a report", {}},
    CommandRow{Command::Report, "report", "FILE", {}, "the same report for an account's own closed trades",
        "FILE is the platform's reply to GET /api/trades/history, saved as it came.\n"},
    CommandRow{
        Command::Compare, "compare", "DIR DIR...", {}, "results of two runs or more, side by side", {}},
    CommandRow{Command::Check, "check", "SCRIPT", "PRICES", "find out whether a result can be believed",
        "An earlier end must change nothing before it, half and double the warm-up no\n"
        "trade, the order of the extremes no more than a tenth of the result, and another\n"
        "run no byte.\n"
        "Exit status: 0 when all of this holds; 1 when something does not, or there is\n"
        "nothing to compare; 2 when something cannot be used.\n"},
    CommandRow{Command::Sweep, "sweep", "SCRIPT", "PRICES", "try many values of inputs, on all cores",
        "Exit status: 0; 1 when no set can be chosen; 2 when something cannot be used; 3\n"
        "when some sets failed; 130 after Ctrl-C, which keeps what was done.\n"},
    CommandRow{Command::Walk, "walk", "SCRIPT", "PRICES --train LENGTH --test LENGTH",
        "choose values on the past, try them on what follows",
        "Each window chooses as sweep does, and is tested on the time behind it. Exit\n"
        "status: as of sweep; 1 also when a test ended early.\n"},
    CommandRow{Command::Challenge, "challenge", "SCRIPT", "PRICES --starts daily | --seeds A..B",
        "how often a plan would be passed, from many starts",
        "A run from each start ends with the plan or with the prices.\n"},
    CommandRow{Command::Plan, "plan", "SCRIPT", "PRICES --chunks N",
        "a sweep in chunks, for several machines",
        "Then, for each chunk, tavoran-lab work PLAN CHUNK, and in the end tavoran-lab\n"
        "merge PLAN.\n"},
    CommandRow{Command::Work, "work", "PLAN CHUNK", {}, "carry out a chunk of a plan",
        "Chunks are numbered from 1. The result lies beside the plan.\n"},
    CommandRow{Command::Merge, "merge", "PLAN", {}, "join the chunks of a plan to the result of a sweep",
        "Exit status: 0; 2 when chunks are missing or do not belong together, and names\n"
        "them; else as of sweep.\n"},
    CommandRow{Command::Verify, "verify", "SESSION SCRIPT", {}, "compare a live script with the lab",
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
    options.settings.speed = *speed;
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

constexpr std::array optionList{
    OptionRow{"--data", "FILE-1m.csv", "recorded minutes; several where results turn into USD", running,
        readData, studying},
    OptionRow{"--symbol", "S", "required where prices are simulated or of several files", running, readSymbol,
        studying},
    OptionRow{"--symbol", "S", "of this one alone (all of them)", setOf(Command::Report), readSymbol},
    OptionRow{"--seed", "N", "simulated prices; with --data of random numbers alone (1)", running, readSeed,
        studying},
    OptionRow{"--speed", "X", "of the simulated market, 0.1 to 1000 (1)", running, readSpeed, studying},
    OptionRow{"--timeframe", "T", "of the chart: 1m 5m 15m 1h 4h 1d 1w 1mn (15m)", running, readTimeframe,
        studying},
    OptionRow{"--from", "D",
        "day or time in UTC, such as 2014-05-01T12:30 (after the\n"
        "warm-up; simulated: 2024-01-01 or 365 days before --to)",
        running, readFrom, studying},
    OptionRow{
        "--to", "D", "the first moment behind it (the end; simulated: 365 days)", running, readTo, studying},
    OptionRow{"--warmup", "BARS",
        "before the start, 0 to 1000000 (1500, or a quarter of a\n"
        "shorter record)",
        running, readWarmup, studying},
    OptionRow{"--model", "M", "when the script is called: open, ohlc, path, feed (ohlc)", running, readModel,
        studying},
    OptionRow{"--extremes", "E", "which comes first: usual, high-first, low-first (usual)", running,
        readExtremes, studying},
    OptionRow{"--spread", "P", "in points, even, 2 to 1000000 (recorded, or else usual)", running, readSpread,
        studying},
    OptionRow{
        "--delay", "MS", "from an order to its execution, 0 to 86400000 (0)", running, readDelay, studying},
    OptionRow{"--account", "A", "rules of a demo account or of a plan: demo, plan (demo)",
        running & ~setOf(Command::Challenge), readAccount, studying},
    OptionRow{"--balance", "B", "at the start in USD, above 0 (100000)", running | setOf(Command::Report),
        readBalance, studying},
    OptionRow{"--leverage", "L", "of the account, 1 to 1000 (100)", running, readLeverage, studying},
    OptionRow{
        "--set", "NAME=V", "another value for an input; may be repeated", running & ~choosing, readInput},
    OptionRow{"--set", "NAME=VALUES",
        "values of an input: a range FROM:TO:STEP such as 5:20:1,\n"
        "a list such as 1,2,5, or one; may be repeated",
        choosing, readInput},
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
    OptionRow{"--train", "LENGTH", "required: the time to choose on, 1d to 10000w", setOf(Command::Walk),
        readTrain},
    OptionRow{"--test", "LENGTH", "required: the time to try on, behind it, 1d to 10000w",
        setOf(Command::Walk), readTest},
    OptionRow{"--anchored", "", "choose on all the past", setOf(Command::Walk), readAnchored},
    OptionRow{"--starts", "daily", "a start on each day with prices; or --seeds (required)",
        setOf(Command::Challenge), readStarts},
    OptionRow{"--seeds", "A..B",
        "instead of --starts and --seed: a simulated market for\n"
        "each, at most 100000 of them",
        setOf(Command::Challenge), readSeeds},
    OptionRow{"--chunks", "N", "required: in how many parts the sets go, 1 to 100000", setOf(Command::Plan),
        readChunks},
    OptionRow{"--random", "N", "of the sets, 1 to 1000000, drawn by --seed (all)", choosing, readRandom},
    OptionRow{"--sort", "FIGURE", "a key of summary.json that decides (sharpe)", choosing, readSort},
    OptionRow{
        "--min-trades", "N", "a set with fewer is not chosen, 0 to 1000000 (30)", choosing, readMinTrades},
    OptionRow{"--jobs", "N", "runs at once, 1 to 1000 (as many as cores)", working & ~setOf(Command::Work),
        readJobs},
    OptionRow{"--jobs", "N", "runs at once, 1 to 1000 (1)", setOf(Command::Work), readJobs},
    OptionRow{"--memory", "MB", "of each, besides prices, 512 to 1000000 (2048)", working, readMemory},
    OptionRow{"--limit", "SECONDS", "the most a run may take, 0.001 to 1000000 (no limit)",
        running | verifying, readLimit},
    OptionRow{"--resume", "", "go on where it was stopped",
        setOf(Command::Sweep) | setOf(Command::Walk) | setOf(Command::Challenge), readResume},
    OptionRow{"--out", "DIR", "new, or with a former run (SCRIPT-SYMBOL)", setOf(Command::Run), readOut},
    OptionRow{"--out", "DIR", "new, or with a former run (FILE without its extension)",
        setOf(Command::Report), readOut},
    OptionRow{"--out", "DIR", "write compare.html: new, or with a former comparison", setOf(Command::Compare),
        readOut},
    OptionRow{"--out", "DIR",
        "write the run, with what does not hold among its\n"
        "warnings: new, or with a former run (none is written)",
        setOf(Command::Check), readOut},
    OptionRow{"--out", "DIR", "new, or with a former sweep (SCRIPT-SYMBOL-sweep)",
        setOf(Command::Sweep) | setOf(Command::Merge), readOut},
    OptionRow{
        "--out", "DIR", "new, or with a former walk (SCRIPT-SYMBOL-walk)", setOf(Command::Walk), readOut},
    OptionRow{"--out", "DIR", "new, or with a former one (SCRIPT-SYMBOL-challenge)",
        setOf(Command::Challenge), readOut},
    OptionRow{
        "--out", "FILE", "new, or a former plan (SCRIPT-SYMBOL.plan.json)", setOf(Command::Plan), readOut},
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
    return optionList;
}

} // namespace lab
