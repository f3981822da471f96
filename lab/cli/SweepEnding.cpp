#include "lab/cli/SweepEnding.h"

#include "lab/cli/Commands.h"
#include "lab/cli/Progress.h"
#include "lab/cli/ResultPlace.h"
#include "lab/cli/Screen.h"
#include "lab/cli/StopSignal.h"
#include "lab/core/figures/Figures.h"
#include "lab/core/output/FigureText.h"
#include "lab/core/output/ReportPage.h"
#include "lab/core/output/Texts.h"
#include "lab/core/study/StudyPage.h"
#include "lab/core/study/SweepFiles.h"
#include "practice/core/market/HashRandom.h"

#include <algorithm>
#include <iostream>

namespace lab {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t shownFailures = 5;

std::string counted(std::size_t count, const std::string& thing)
{
    return groupedText(static_cast<double>(count), 0) + ' ' + thing + (count == 1 ? "" : "s");
}

std::string tableText(const SweepTable& table)
{
    std::vector<std::vector<std::string>> lines{{"rank"}};
    for (const GridAxis& axis : table.grid.axes())
        lines[0].push_back(shortened(axis.name, 20));
    for (const FigureRow* row : shownFigures(table.order.sort))
        lines[0].emplace_back(row->key);
    lines[0].emplace_back("stability");
    for (std::size_t rank = 0; rank < std::min(shownSets, table.ranking.size()); ++rank) {
        const std::size_t place = table.ranking[rank];
        const SetResult& set = table.sets[place];
        std::vector<std::string>& line = lines.emplace_back();
        line.push_back(isEligible(set, table.order) ? std::to_string(rank + 1) : std::string(undefinedText));
        for (const auto& [name, value] : table.grid.inputsOf(set.number))
            line.push_back(shortened(value, 20));
        for (const FigureRow* row : shownFigures(table.order.sort))
            line.push_back(set.failure ? "failed" : figureText(row->kind, set.figure(row->key)));
        line.push_back(figureText(FigureKind::Fraction, table.stability[place]));
    }
    std::vector<std::size_t> right(lines[0].size());
    for (std::size_t column = 0; column < right.size(); ++column)
        right[column] = column;
    std::string text = columns(lines, right);
    if (table.ranking.size() > shownSets)
        text += "and " + counted(table.ranking.size() - shownSets, "more set") + " in sweep.csv\n";
    return text;
}

std::string headText(const SweepTable& table)
{
    const SortFigure& sort = table.order.sort;
    return counted(table.choice.sets, "set") + " by " + std::string(sort.row->key) + " (the "
        + (sort.lowIsBest ? "lowest" : "highest") + "), "
        + (table.best ? groupedText(static_cast<double>(table.choice.eligible), 0) : "none")
        + " of them with at least " + tradesText(table.order.minTrades);
}

std::string worthText(const SweepTable& table)
{
    const auto text = [](const Figure& value, std::string_view why) {
        const std::string shown = figureText(FigureKind::Fraction, value);
        return value || why.empty() ? shown : shown + "  " + std::string(why.substr(0, why.find(',')));
    };
    return columns({{"Deflated Sharpe ratio (DSR)",
                        text(table.deflatedSharpe,
                            table.best ? whyNoDeflated : "needs a set that can be chosen")},
        {"Probability of overfitting (PBO)", text(table.overfittingProbability, whyNoOverfitting(table))}});
}

void tellFailures(const SweepTable& table)
{
    std::size_t told = 0;
    for (const SetResult& set : table.sets) {
        if (!set.failure || told == shownFailures)
            continue;
        ++told;
        std::cerr << "tavoran-lab: failed: " << inputsText(table.grid.inputsOf(set.number)) << ": "
                  << *set.failure << '\n';
    }
    if (table.choice.failed > told)
        std::cerr << "tavoran-lab: " << counted(table.choice.failed - told, "more set")
                  << " failed; sweep.csv tells why\n";
}

/// The run of the best set, this time whole.
RunResult bestRun(const StudyBench& bench, const SetResult& best)
{
    Progress progress("The best set once more");
    RunResult result
        = bench.run(bench.settingsOf(best.number), [&progress](double done) { progress.show(done); });
    if (result.decisionPrint != best.decisionPrint || result.tickPrint != best.tickPrint)
        result.warnings.emplace_back("This run differs from the one of the sweep with the same inputs");
    return result;
}

} // namespace

fs::path sweepFolder(const StudyBench& bench)
{
    const Options& options = bench.options();
    return options.out.empty() ? fs::path(bench.name() + '-' + options.settings.symbol + "-sweep")
                               : options.out;
}

int endSweep(const StudyBench& bench, const StudyStore& store, const fs::path& folder)
{
    const SweepTable table = sweepTable(bench.grid(), store.results(), bench.order(),
        [&store](std::uint64_t number) { return store.daysOf(number); });
    RunResult about = bench.about();
    if (table.best) {
        about = bestRun(bench, table.sets[*table.best]);
        if (const int stopped = stopStatus())
            return stopped;
    }
    if (!table.best)
        about.inputs = bench.inputs();
    ResultFolder files(folder);
    files.add("sweep.csv", sweepCsv(table));
    files.add("sweep.json", sweepJson(table, about, TAVORAN_VERSION));
    if (table.best)
        addResult(files, about, figuresOf(about), {bench.name(), sweepParts(table), sweepWords(table)});
    files.commit();

    if (!table.best)
        removeRun(folder); // of a former ending of this sweep, which had another order
    std::cout << toned(headText(table), table.best ? Tone::Strong : Tone::Warning, hasColours()) << "\n\n"
              << tableText(table) << '\n'
              << worthText(table) << '\n'
              << (folder / (table.best ? "report.html" : "sweep.csv")).string() << '\n';
    tellFailures(table);
    if (!table.best)
        tellNoChoice(table.choice, table.order);
    if (table.choice.failed > 0)
        return someFailed;
    return table.best ? succeeded : fellShort;
}

void tellNoChoice(const Choice& choice, const SweepOrder& order)
{
    tellError("no set can be chosen: " + whyNone(choice, order)
        + (choice.withTrades == 0 && choice.failed < choice.sets
                ? "; --resume with a lower --min-trades runs none of them again"
                : ""));
}

} // namespace lab
