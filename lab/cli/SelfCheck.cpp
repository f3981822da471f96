#include "lab/cli/SelfCheck.h"

#include "lab/core/figures/Figures.h"
#include "lab/core/output/ResultFiles.h"
#include "lab/core/output/Texts.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace lab {

namespace {

using practice::Cents;
using practice::TimeMs;
using Outcome = CheckVerdict::Outcome;

constexpr std::size_t comparedLines = 1000;
constexpr Cents tolerableShare = 10; ///< a tenth of the larger result

Cents netOf(const RunResult& result)
{
    Cents net = 0;
    for (const TradeRow& trade : result.trades)
        net += trade.net();
    return net;
}

/// The result as far as it is settled by this moment, as its own end cannot have touched it.
RunResult settledPart(const RunResult& result, TimeMs end)
{
    // What is open at the end is closed there, within the last minute, by the lab or in the script's last
    // words.
    const TimeMs untouched = end - practice::minuteMs;
    RunResult part;
    part.settings.symbol = result.settings.symbol;
    part.digits = result.digits;
    for (const TradeRow& trade : result.trades) {
        if (trade.closeTime < untouched && trade.reason != ExitReason::End)
            part.trades.push_back(trade);
    }
    for (const EquityPoint& point : result.equity) {
        if (point.time < untouched)
            part.equity.push_back(point);
    }
    for (const JournalLine& line : result.journal) {
        if (line.time < untouched && part.journal.size() < comparedLines)
            part.journal.push_back(line);
    }
    return part;
}

/// The first line that differs, from 1; 0 for equal texts.
std::size_t differingLine(std::string_view one, std::string_view other)
{
    if (one == other)
        return 0;
    const auto places = std::ranges::mismatch(one, other);
    return 1 + static_cast<std::size_t>(std::count(one.begin(), places.in1, '\n'));
}

/// "1 bar", "2 bars"
std::string counted(std::uint64_t number, const std::string& one)
{
    return std::to_string(number) + ' ' + one + (number == 1 ? "" : "s");
}

std::string tradeWords(const RunResult& result)
{
    return counted(result.trades.size(), "trade") + " and " + typeset(practice::moneyText(netOf(result)));
}

/// How much of a run was held against another one.
struct Compared {
    std::uint64_t bars = 0;
    std::size_t trades = 0;
    std::size_t lines = 0;
};

/// "1, 2 and 3"
template <typename Words> std::string listed(const std::vector<Compared>& all, Words wordsOf)
{
    std::string text;
    for (std::size_t i = 0; i < all.size(); ++i)
        text += (i == 0 ? "" : i + 1 == all.size() ? " and " : ", ") + wordsOf(all[i]);
    return text;
}

bool sameTrades(const RunResult& one, const RunResult& other)
{
    return tradesCsv(one) == tradesCsv(other);
}

/// Every file's bytes.
std::string allFiles(const RunResult& result)
{
    const Figures figures = figuresOf(result);
    return summaryJson(figures) + tradesCsv(result) + equityCsv(result) + dailyCsv(result)
        + journalText(result) + runJson(result, {});
}

} // namespace

std::optional<std::string> differenceBefore(const RunResult& shorter, const RunResult& longer)
{
    const TimeMs end = *shorter.settings.to;
    const RunResult one = settledPart(shorter, end);
    const RunResult other = settledPart(longer, end);
    if (const std::size_t line = differingLine(tradesCsv(one), tradesCsv(other)))
        return "trade " + std::to_string(line - 1);
    if (differingLine(equityCsv(one), equityCsv(other)) != 0)
        return "equity";
    if (const std::size_t line = differingLine(journalText(one), journalText(other)))
        return "line " + std::to_string(line) + " of the journal";
    return std::nullopt;
}

CheckVerdict checkFuture(const CheckRuns& runs, const RunResult& base)
{
    constexpr int parts = 4;
    const std::string name = "future";
    const TimeMs start = *base.settings.from;
    const TimeMs length = *base.settings.to - start;
    std::vector<Compared> compared;
    for (int part = 1; part < parts; ++part) {
        const TimeMs end = practice::barStart(start + length * part / parts, practice::Timeframe::M1);
        if (end <= start)
            continue;
        RunSettings settings = base.settings;
        settings.to = end;
        const RunResult shorter = runs.run(settings);
        if (const auto difference = differenceBefore(shorter, base))
            return {name, Outcome::Fails,
                "A run that ends at " + minuteText(end) + " differs from the whole run before that: "
                    + *difference + ". The result depends on the future."};
        const RunResult settled = settledPart(shorter, end);
        compared.push_back({shorter.bars, settled.trades.size(), settled.journal.size()});
    }
    if (compared.empty())
        return {name, Outcome::NotComparable, "The run is too short to end earlier."};
    const std::string bars
        = listed(compared, [](const Compared& each) { return std::to_string(each.bars); }) + " bars";
    if (compared.back().trades == 0 && compared.back().lines == 0)
        return {name, Outcome::NotComparable,
            "In runs that end after " + bars + " no trade is closed and nothing is written."};
    return {name, Outcome::Holds,
        "Runs that end after " + bars + " agree with the whole run so far: "
            + listed(compared, [](const Compared& each) { return std::to_string(each.trades); })
            + " closed trades and "
            + listed(compared, [](const Compared& each) { return std::to_string(each.lines); })
            + " lines of the journal compared."};
}

CheckVerdict checkWarmup(const CheckRuns& runs, const RunResult& base)
{
    const std::string name = "warm-up";
    const int usual = static_cast<int>(base.warmupBars);
    if (usual == 0)
        return {name, Outcome::NotComparable, "There is no warm-up."};
    RunSettings settings = base.settings;
    // A start that leaves room for the double one, unless the start was chosen.
    const auto roomy = runs.startAfter(usual * 2);
    const bool hasRoom = roomy && *roomy < *base.settings.to;
    RunResult reference = base;
    settings.warmupBars = usual;
    if (hasRoom && *roomy > *base.settings.from) {
        settings.from = roomy;
        reference = runs.run(settings);
    }
    const std::string over = " over " + counted(reference.bars, "bar");
    std::string compared;
    for (const int bars : {usual / 2, usual * 2}) {
        if (bars > usual && !hasRoom)
            continue;
        settings.warmupBars = bars;
        const RunResult other = runs.run(settings);
        if (!sameTrades(reference, other))
            return {name, Outcome::Fails,
                "With " + counted(static_cast<std::uint64_t>(bars), "bar") + " of warm-up there are "
                    + tradeWords(other) + ", with " + std::to_string(usual) + " there are "
                    + tradeWords(reference) + ',' + over + '.'};
        compared += (compared.empty() ? "" : " or ") + std::to_string(bars);
    }
    const std::string room = hasRoom ? "" : " There is not enough history to double it.";
    if (reference.trades.empty())
        return {name, Outcome::NotComparable,
            "There is no trade with " + compared + " bars of warm-up, nor with " + std::to_string(usual) + ','
                + over + '.' + room};
    return {name, Outcome::Holds,
        compared + " bars of warm-up give the same trades as " + std::to_string(usual) + ": "
            + counted(reference.trades.size(), "trade") + over + " compared." + room};
}

CheckVerdict checkExtremes(const CheckRuns& runs, const RunResult& base)
{
    const std::string name = "extremes";
    if (base.settings.model == Model::Path || base.settings.model == Model::Feed)
        return {name, Outcome::Holds,
            "The way through each minute is given; the order of its extremes is not in question."};
    RunSettings settings = base.settings;
    settings.extremes = ExtremeOrder::HighFirst;
    const RunResult high = runs.run(settings);
    settings.extremes = ExtremeOrder::LowFirst;
    const RunResult low = runs.run(settings);
    if (high.trades.empty() && low.trades.empty())
        return {name, Outcome::NotComparable,
            "There is no trade, high first or low first, over " + counted(high.bars, "bar") + '.'};
    const Cents difference = std::abs(netOf(high) - netOf(low));
    const Cents larger = std::max(std::abs(netOf(high)), std::abs(netOf(low)));
    const bool holds = difference * tolerableShare <= larger;
    return {name, holds ? Outcome::Holds : Outcome::Fails,
        "High first there are " + tradeWords(high) + ", low first " + tradeWords(low) + ", over "
            + counted(high.bars, "bar") + '.'
            + (holds ? "" : " The result depends on what minutes do not tell.")};
}

CheckVerdict checkRepetition(const CheckRuns& runs, const RunResult& base)
{
    const std::string name = "repetition";
    const RunResult again = runs.run(base.settings);
    if (allFiles(again) == allFiles(base))
        return {name, Outcome::Holds,
            "Another run gives the same files: " + tradeWords(base) + ", over " + counted(base.bars, "bar")
                + '.'};
    return {name, Outcome::Fails,
        "Another run gives other files: " + tradeWords(again) + " instead of " + tradeWords(base) + '.'};
}

const std::vector<Check>& allChecks()
{
    static const std::vector<Check> checks{checkFuture, checkWarmup, checkExtremes, checkRepetition};
    return checks;
}

} // namespace lab
