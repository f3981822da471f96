#include "lab/cli/Commands.h"
#include "lab/cli/KeptRuns.h"
#include "lab/cli/Progress.h"
#include "lab/cli/ResultPlace.h"
#include "lab/cli/RunScript.h"
#include "lab/cli/StopSignal.h"
#include "lab/cli/StudyBench.h"
#include "lab/cli/SweepEnding.h"
#include "lab/cli/WalkText.h"
#include "lab/core/figures/Figures.h"
#include "lab/core/market/RunSpan.h"
#include "lab/core/output/ReportPage.h"
#include "lab/core/output/Texts.h"
#include "lab/core/study/Challenge.h"
#include "lab/core/study/StitchedRun.h"
#include "lab/core/study/StudyError.h"
#include "lab/core/study/StudyPage.h"
#include "lab/core/study/WalkFiles.h"

#include <iostream>
#include <utility>

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

/// What the trainings of a walk hold for.
StudyIdentity identityOf(const StudyBench& bench)
{
    const StudyOptions& study = bench.options().study;
    StudyIdentity identity = bench.identity();
    identity.emplace_back("the windows",
        std::to_string(study.train) + ' ' + std::to_string(study.test)
            + (study.isAnchored ? " anchored" : ""));
    return identity;
}

/// The best set of each window. False when it was stopped.
bool train(const StudyBench& bench, KeptRuns& kept, Walk& walk)
{
    const std::vector<std::uint64_t>& numbers = bench.numbers();
    std::vector<std::vector<SetResult>> results(walk.rows.size(), std::vector<SetResult>(numbers.size()));
    const auto place = [&](std::size_t run, SetResult result) {
        result.number = numbers[run % numbers.size()];
        results[run / numbers.size()][run % numbers.size()] = std::move(result);
    };
    std::vector<std::size_t> open;
    for (std::size_t run = 0; run < walk.rows.size() * numbers.size(); ++run) {
        if (const auto former = kept.former().find(run); former != kept.former().end())
            place(run, setResultFrom(former->second));
        else
            open.push_back(run);
    }
    const std::string label = bench.name() + ", " + std::to_string(walk.rows.size()) + " windows";
    const bool isWhole = bench.runEach(
        open.size(),
        [&](std::size_t job) {
            const WalkWindow& window = walk.rows[open[job] / numbers.size()].window;
            RunSettings settings = bench.settingsOf(numbers[open[job] % numbers.size()]);
            settings.from = window.trainFrom;
            settings.to = window.testFrom;
            return settings;
        },
        label,
        [&](std::size_t job, SetResult result) {
            result.days.clear();
            if (result.failure)
                ++walk.failed;
            else
                kept.keep(open[job], bytesOf(result));
            place(open[job], std::move(result));
        });
    if (!isWhole)
        return false;
    kept.flush();
    if (walk.failed == walk.rows.size() * numbers.size())
        throw StudyError("every run has failed, the first one: " + *results.front().front().failure);
    for (std::size_t row = 0; row < walk.rows.size(); ++row)
        walk.rows[row].choose(std::move(results[row]), walk.order);
    return true;
}

/// Why no other window can be tested behind this run; empty where one can.
std::string endingOf(const RunResult& result, practice::Cents balance)
{
    if (result.error)
        return "ended early: " + *result.error;
    if (result.outcome != PlanOutcome::None)
        return "the plan ended: " + std::string(challengeWord(result.outcome));
    return balance > 0 ? std::string() : std::string("nothing is left of the balance");
}

/// The time behind each window, with what it has chosen and with the account that the one before has left.
StitchedRun test(const StudyBench& bench, Walk& walk)
{
    Progress progress("Trying what was chosen");
    StitchedRun stitched(walk.grid);
    practice::Cents balance = bench.options().settings.balance;
    std::optional<PlanCourse> course;
    for (std::size_t number = 0; number < walk.rows.size(); ++number) {
        WalkRow& row = walk.rows[number];
        progress.show(static_cast<double>(number) / static_cast<double>(walk.rows.size()));
        if (!row.chosen)
            continue;
        RunSettings settings = bench.settingsOf(row.chosen->number);
        settings.from = row.window.testFrom;
        settings.to = row.window.testTo;
        settings.balance = balance;
        settings.course = course;
        settings.goesOn = number + 1 < walk.rows.size();
        const RunResult result = bench.run(settings);
        if (stopFlag())
            break;
        row.test = figuresOf(result);
        stitched.add(result);
        balance = result.equity.empty() ? balance : result.equity.back().balance;
        course = result.course;
        row.ending = endingOf(result, balance);
        if (!row.ending.empty())
            break;
    }
    return stitched;
}

/// Writes all files and tells what they come to. `tests` are absent where nothing was chosen. Returns the
/// exit status.
int endWalk(const StudyBench& bench, Walk& walk, const std::optional<RunResult>& tests,
    const std::filesystem::path& folder)
{
    if (tests)
        walk.whole = figuresOf(*tests);
    ResultFolder files(folder);
    files.add("walk.csv", walkCsv(walk));
    RunResult about = bench.about();
    about.inputs = bench.inputs();
    files.add("walk.json", walkJson(walk, tests ? *tests : about, TAVORAN_VERSION));
    if (tests)
        addResult(files, *tests, *walk.whole, {bench.name(), {walkPart(walk)}, walkWords(walk)});
    files.commit();

    if (!tests)
        removeRun(folder); // of a former ending of this walk, which had another order
    std::cout << walkTable(walk) << '\n'
              << walkWhole(walk) << '\n'
              << (folder / (tests ? "report.html" : "walk.csv")).string() << '\n';
    if (!tests)
        tellNoChoice(walk.choice(), walk.order);
    if (tests && tests->error) {
        std::cerr << "tavoran-lab: ended early: " << *tests->error << '\n';
        return fellShort;
    }
    if (walk.failed > 0) {
        std::cerr << "tavoran-lab: " << walk.failed << " runs of the trainings failed\n";
        return someFailed;
    }
    return tests ? succeeded : fellShort;
}

} // namespace

int walkForward(Options options)
{
    const bool isResumed = options.study.resume;
    if (!options.out.empty())
        checkStudyPlace(options.out, ResultKind::Walk, isResumed);
    ExpertScript script = readScript(options.script);
    const StudyBench bench(std::move(options), std::move(script));
    if (const int stopped = stopStatusAtOnce())
        return stopped;
    std::filesystem::path folder = bench.options().out;
    if (folder.empty()) {
        folder = bench.name() + '-' + bench.options().settings.symbol + "-walk";
        checkStudyPlace(folder, ResultKind::Walk, isResumed);
    }
    Walk walk{
        bench.grid(), bench.order(), bench.numbers().size(), 0, bench.options().study.isAnchored, {}, {}};
    walk.train = bench.options().study.train;
    walk.test = bench.options().study.test;
    for (const WalkWindow& window : windowsOf(bench))
        walk.rows.push_back({window, {}, {}, {}, {}});
    KeptRuns kept(folder, ResultKind::Walk, identityOf(bench), isResumed);
    const auto stopped = [&] { return kept.stopped(walk.rows.size() * walk.setsPerWindow, "trainings"); };
    if (!train(bench, kept, walk))
        return stopped();
    const StitchedRun stitched = test(bench, walk);
    if (stopFlag())
        return stopped();
    return endWalk(bench, walk, stitched.result(), folder);
}

} // namespace lab
