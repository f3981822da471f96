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

constexpr std::size_t comparedLines = 1000;
constexpr Cents tolerableShare = 10; ///< a tenth of the larger result

/// The settings of a run, with nothing left to be worked out anew.
RunSettings pinned(const RunResult& base)
{
    return base.settings;
}

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
    // What is open at the end is closed there, within the last minute.
    const TimeMs untouched = end - practice::minuteMs;
    RunResult part;
    part.settings.symbol = result.settings.symbol;
    part.digits = result.digits;
    for (const TradeRow& trade : result.trades) {
        if (trade.closeTime < end && trade.reason != ExitReason::End)
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

std::string tradeWords(const RunResult& result)
{
    return std::to_string(result.trades.size()) + (result.trades.size() == 1 ? " trade" : " trades") + " and "
        + practice::moneyText(netOf(result));
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
    int compared = 0;
    for (int part = 1; part < parts; ++part) {
        const TimeMs end = practice::barStart(start + length * part / parts, practice::Timeframe::M1);
        if (end <= start)
            continue;
        RunSettings settings = pinned(base);
        settings.to = end;
        const RunResult shorter = runs.run(settings);
        if (const auto difference = differenceBefore(shorter, base))
            return {name, false,
                "A run that ends at " + minuteText(end) + " differs from the whole run before that: "
                    + *difference + ". The result depends on the future."};
        ++compared;
    }
    return {name, true, std::to_string(compared) + " earlier ends change nothing before them."};
}

CheckVerdict checkWarmup(const CheckRuns& runs, const RunResult& base)
{
    const std::string name = "warm-up";
    const int usual = base.settings.warmupBars;
    if (usual == 0)
        return {name, true, "There is no warm-up."};
    RunSettings settings = pinned(base);
    // A start that leaves room for the double one, unless the start was chosen.
    const auto roomy = runs.startAfter(usual * 2);
    const bool hasRoom = roomy && *roomy < *base.settings.to;
    RunResult reference = base;
    if (hasRoom && *roomy > *base.settings.from) {
        settings.from = roomy;
        reference = runs.run(settings);
    }
    std::string compared;
    for (const int bars : {usual / 2, usual * 2}) {
        if (bars > usual && !hasRoom)
            continue;
        settings.warmupBars = bars;
        const RunResult other = runs.run(settings);
        if (!sameTrades(reference, other))
            return {name, false,
                "With " + std::to_string(bars) + " bars of warm-up there are " + tradeWords(other) + ", with "
                    + std::to_string(usual) + " there are " + tradeWords(reference) + '.'};
        compared += (compared.empty() ? "" : " or ") + std::to_string(bars);
    }
    std::string text = compared + " bars of warm-up give the same trades as " + std::to_string(usual) + '.';
    if (!hasRoom)
        text += " There is not enough history to double it.";
    return {name, true, text};
}

CheckVerdict checkExtremes(const CheckRuns& runs, const RunResult& base)
{
    const std::string name = "extremes";
    if (base.settings.model == Model::Path || base.settings.model == Model::Feed)
        return {name, true,
            "The way through each minute is given; the order of its extremes is not in question."};
    RunSettings settings = pinned(base);
    settings.extremes = ExtremeOrder::HighFirst;
    const RunResult high = runs.run(settings);
    settings.extremes = ExtremeOrder::LowFirst;
    const RunResult low = runs.run(settings);
    const Cents difference = std::abs(netOf(high) - netOf(low));
    const Cents larger = std::max(std::abs(netOf(high)), std::abs(netOf(low)));
    const bool holds = difference * tolerableShare <= larger;
    return {name, holds,
        "High first there are " + tradeWords(high) + ", low first " + tradeWords(low) + '.'
            + (holds ? "" : " The result depends on what minutes do not tell.")};
}

CheckVerdict checkRepetition(const CheckRuns& runs, const RunResult& base)
{
    const std::string name = "repetition";
    const RunResult again = runs.run(pinned(base));
    if (allFiles(again) == allFiles(base))
        return {name, true, "Another run gives the same files."};
    return {name, false,
        "Another run gives other files: " + tradeWords(again) + " instead of " + tradeWords(base) + '.'};
}

const std::vector<Check>& allChecks()
{
    static const std::vector<Check> checks{checkFuture, checkWarmup, checkExtremes, checkRepetition};
    return checks;
}

} // namespace lab
