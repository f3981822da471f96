#include "lab/cli/Commands.h"
#include "lab/cli/Progress.h"
#include "lab/cli/ResultPlace.h"
#include "lab/cli/RunScript.h"
#include "lab/cli/Screen.h"
#include "lab/cli/StopSignal.h"
#include "lab/cli/SweepEnding.h"
#include "lab/core/figures/Figures.h"
#include "lab/core/market/RunSpan.h"
#include "lab/core/output/FigureText.h"
#include "lab/core/output/ReportPage.h"
#include "lab/core/output/Texts.h"
#include "lab/core/study/StitchedRun.h"
#include "lab/core/study/StudyError.h"
#include "lab/core/study/StudyPage.h"
#include "lab/core/study/SweepFiles.h"
#include "lab/core/study/WalkFiles.h"

#include <iostream>

namespace lab {

namespace {

std::vector<WalkWindow> windowsOf(const StudyBench& bench)
{
    const MinuteHistory& history = bench.history();
    const RunSpan span = spanOf(history, bench.options().settings);
    const practice::TimeMs from = history.timeAt(span.firstMinute);
    const practice::TimeMs to = history.timeAt(span.endMinute - 1) + practice::minuteMs;
    const StudyOptions& study = bench.options().study;
    std::vector<WalkWindow> windows = walkWindows(from, to, study.train, study.test, study.isAnchored);
    if (windows.empty())
        throw StudyError("the prices from " + minuteText(from) + " to " + minuteText(to)
            + " leave nothing to try on behind a training");
    if (windows.size() * bench.numbers().size() > mostSets)
        throw StudyError(std::to_string(windows.size()) + " windows with "
            + std::to_string(bench.numbers().size()) + " sets each are too many: a study makes at most "
            + std::to_string(mostSets) + " runs");
    return windows;
}

/// The best set of each window. False when it was stopped.
bool train(const StudyBench& bench, Walk& walk)
{
    const std::vector<std::uint64_t>& numbers = bench.numbers();
    std::vector<std::vector<SetResult>> results(walk.rows.size(), std::vector<SetResult>(numbers.size()));
    const std::string label = bench.name() + ", " + std::to_string(walk.rows.size()) + " windows";
    const bool isWhole = bench.runEach(
        walk.rows.size() * numbers.size(),
        [&](std::size_t run) {
            const WalkWindow& window = walk.rows[run / numbers.size()].window;
            RunSettings settings = bench.settingsOf(numbers[run % numbers.size()]);
            settings.from = window.trainFrom;
            settings.to = window.testFrom;
            return settings;
        },
        label,
        [&](std::size_t run, SetResult result) {
            result.number = numbers[run % numbers.size()];
            result.days.clear();
            walk.failed += result.failure ? 1 : 0;
            results[run / numbers.size()][run % numbers.size()] = std::move(result);
        });
    if (!isWhole)
        return false;
    if (walk.failed == walk.rows.size() * numbers.size())
        throw StudyError("every run has failed, the first one: " + *results.front().front().failure);
    for (std::size_t row = 0; row < walk.rows.size(); ++row) {
        if (const auto best = bestOf(results[row], walk.order))
            walk.rows[row].chosen = results[row][*best];
    }
    return true;
}

/// The time behind each window, with what it has chosen and with the balance that the one before has left.
StitchedRun test(const StudyBench& bench, Walk& walk)
{
    Progress progress("Trying what was chosen");
    StitchedRun stitched;
    practice::Cents balance = bench.options().settings.balance;
    for (std::size_t number = 0; number < walk.rows.size(); ++number) {
        WalkRow& row = walk.rows[number];
        progress.show(static_cast<double>(number) / static_cast<double>(walk.rows.size()));
        if (!row.chosen)
            continue;
        RunSettings settings = bench.settingsOf(row.chosen->number);
        settings.from = row.window.testFrom;
        settings.to = row.window.testTo;
        settings.balance = balance;
        const RunResult result = bench.run(settings);
        if (stopFlag())
            break;
        row.test = figuresOf(result);
        stitched.add(result);
        balance = result.equity.empty() ? balance : result.equity.back().balance;
        if (result.error || result.outcome != PlanOutcome::None || balance <= 0)
            break;
    }
    return stitched;
}

std::string tableText(const Walk& walk)
{
    std::vector<std::vector<std::string>> lines{
        {"tried from", "to", "inputs", "past/year", "trades", "netProfit", "a year", "efficiency"}};
    for (const WalkRow& row : walk.rows) {
        const auto tested = [&row](std::string_view key) {
            const FigureRow* figure = figureRow(key);
            return figureText(figure->kind, row.test ? figure->of(*row.test) : Figure());
        };
        lines.push_back({isoTime(row.window.testFrom).substr(0, 10), isoTime(row.window.testTo).substr(0, 10),
            row.chosen ? shortened(inputsText(walk.grid.inputsOf(row.chosen->number)), 40)
                       : std::string(undefinedText),
            figureText(FigureKind::Fraction, row.chosen ? row.chosen->figure("cagr") : Figure()),
            tested("trades"), tested("netProfit"), tested("cagr"),
            figureText(FigureKind::Fraction, row.efficiency())});
    }
    return columns(lines, {3, 4, 5, 6, 7});
}

} // namespace

int walkForward(Options options)
{
    if (!options.out.empty())
        checkStudyPlace(options.out, {"walk.csv"});
    ExpertScript script = readScript(options.script);
    const StudyBench bench(std::move(options), std::move(script));
    if (const int stopped = stopStatus())
        return stopped;
    std::filesystem::path folder = bench.options().out;
    if (folder.empty()) {
        folder = bench.name() + '-' + bench.options().settings.symbol + "-walk";
        checkStudyPlace(folder, {"walk.csv"});
    }
    Walk walk{
        bench.grid(), bench.order(), bench.numbers().size(), 0, bench.options().study.isAnchored, {}, {}};
    walk.train = bench.options().study.train;
    walk.test = bench.options().study.test;
    for (const WalkWindow& window : windowsOf(bench))
        walk.rows.push_back({window, {}, {}});
    if (!train(bench, walk))
        return stopStatus();
    const StitchedRun stitched = test(bench, walk);
    if (const int stopped = stopStatus())
        return stopped;
    if (!stitched.result())
        throw StudyError("no window has a set with " + std::string(walk.order.sort.row->key)
            + " and at least " + std::to_string(walk.order.minTrades) + " trades; --min-trades takes fewer");
    const RunResult& whole = *stitched.result();
    walk.whole = figuresOf(whole);
    ResultFolder files(folder);
    files.add("walk.csv", walkCsv(walk));
    files.add("walk.json", walkJson(walk, whole, TAVORAN_VERSION));
    addResult(files, whole, *walk.whole, {bench.name(), {walkPart(walk)}, walkWords(walk)});
    files.commit();

    std::cout << tableText(walk) << '\n'
              << columns(
                     {{"Net profit of the tests", figureText(FigureKind::Money, walk.whole->netProfit)},
                         {"Sharpe ratio of the tests", figureText(FigureKind::Number, walk.whole->sharpe)},
                         {"Efficiency", figureText(FigureKind::Fraction, walk.efficiency())}},
                     {1})
              << '\n'
              << (folder / "report.html").string() << '\n';
    if (whole.error) {
        std::cerr << "tavoran-lab: ended early: " << *whole.error << '\n';
        return fellShort;
    }
    if (walk.failed > 0) {
        std::cerr << "tavoran-lab: " << walk.failed << " runs of the trainings failed\n";
        return someFailed;
    }
    return succeeded;
}

} // namespace lab
