#include "lab/cli/Commands.h"
#include "lab/cli/KeptRuns.h"
#include "lab/cli/PriceSources.h"
#include "lab/cli/Progress.h"
#include "lab/cli/ResultPlace.h"
#include "lab/cli/RunScript.h"
#include "lab/cli/Screen.h"
#include "lab/cli/StopSignal.h"
#include "lab/cli/StudyBench.h"
#include "lab/core/market/HistorySources.h"
#include "lab/core/market/RunSpan.h"
#include "lab/core/output/FigureText.h"
#include "lab/core/output/ResultFolder.h"
#include "lab/core/output/Texts.h"
#include "lab/core/study/Challenge.h"
#include "practice/core/market/HashRandom.h"

#include <iostream>

namespace lab {

namespace {

/// Where a run begins: with the first price of each day, or with each simulated market.
std::vector<RunSettings> startsOf(const StudyBench& bench)
{
    std::vector<RunSettings> starts;
    const RunSettings settings = bench.settingsOf(0);
    if (const auto seeds = bench.options().study.seeds) {
        for (std::uint64_t seed = seeds->first;; ++seed) {
            starts.push_back(settings);
            starts.back().seed = seed;
            if (seed == seeds->second)
                return starts;
        }
    }
    const MinuteHistory& history = bench.history();
    const RunSpan span = spanOf(history, settings);
    const auto dayOf
        = [&](std::size_t minute) { return practice::floorDivide(history.timeAt(minute), practice::dayMs); };
    for (std::size_t minute = span.firstMinute; minute < span.endMinute; ++minute) {
        if (minute > span.firstMinute && dayOf(minute) == dayOf(minute - 1))
            continue;
        starts.push_back(settings);
        starts.back().from = history.timeAt(minute);
    }
    return starts;
}

/// What the runs from these starts hold for.
StudyIdentity identityOf(const StudyBench& bench, const std::vector<RunSettings>& starts)
{
    std::string all;
    for (const RunSettings& start : starts)
        all += std::to_string(start.from.value_or(0)) + ' ' + std::to_string(start.seed) + '\n';
    StudyIdentity identity = bench.identity();
    identity.emplace_back("the starts", hexText(practice::hashText(all)));
    return identity;
}

/// In a worker: the run from this start, over its own market where it has one.
RunResult runFrom(const StudyBench& bench, const ExpertScript& script, const RunSettings& start)
{
    if (start.seed == bench.options().settings.seed)
        return bench.runInWorker(start);
    Options options = bench.options();
    options.settings = start;
    const std::vector<MinuteHistory> histories = loadHistories(options, Told::Nothing);
    std::vector<const MinuteHistory*> places;
    for (const MinuteHistory& history : histories)
        places.push_back(&history);
    RunControl control;
    control.limit = options.limit;
    return LabRun(places).run(script, start, control);
}

std::string summaryText(const ChallengeSummary& summary)
{
    std::vector<std::vector<std::string>> lines{{"", "starts", "share", "95 % interval", "median days"}};
    for (const ChallengeSummary::Share& share : summary.shares) {
        std::vector<std::string>& line = lines.emplace_back();
        line.emplace_back(challengeWord(share.outcome));
        line.push_back(std::to_string(share.count));
        line.push_back(share.share ? percentText(share.share->share, 1) : std::string(undefinedText));
        line.push_back(share.share
                ? percentText(share.share->low, 1) + " to " + percentText(share.share->high, 1)
                : std::string(undefinedText));
        line.push_back(share.medianDays ? fixedText(*share.medianDays, 1) : std::string(undefinedText));
    }
    return columns(lines, {1, 2, 3, 4});
}

} // namespace

int challengePlan(Options options)
{
    const bool isResumed = options.study.resume;
    if (!options.out.empty())
        checkStudyPlace(options.out, ResultKind::Challenge, isResumed);
    options.settings.rules = AccountRules::Plan;
    if (options.study.seeds)
        options.settings.seed = options.study.seeds->first;
    const ExpertScript script = readScript(options.script);
    const StudyBench bench(std::move(options), script);
    if (const int stopped = stopStatusAtOnce())
        return stopped;
    if (bench.grid().size() != 1)
        throw UsageError("challenge takes one value for each input; sweep tries several");
    std::filesystem::path folder = bench.options().out;
    if (folder.empty()) {
        folder = bench.name() + '-' + bench.options().settings.symbol + "-challenge";
        checkStudyPlace(folder, ResultKind::Challenge, isResumed);
    }

    const std::vector<RunSettings> starts = startsOf(bench);
    std::vector<ChallengeRow> rows(starts.size());
    KeptRuns kept(folder, ResultKind::Challenge, identityOf(bench, starts), isResumed);
    std::vector<std::size_t> open;
    for (std::size_t start = 0; start < starts.size(); ++start) {
        if (const auto former = kept.former().find(start); former != kept.former().end())
            rows[start] = challengeRowFrom(former->second);
        else
            open.push_back(start);
    }
    bool isWhole = false;
    {
        Progress progress(bench.name() + ", " + std::to_string(open.size()) + " starts");
        progress.showLabel();
        std::size_t done = 0;
        isWhole = runJobs(
            open.size(),
            [&](std::size_t job) {
                return bytesOf(challengeRowOf(runFrom(bench, script, starts[open[job]])));
            },
            [&](const JobResult& result) {
                const std::size_t start = open[result.job];
                ChallengeRow& row = rows[start];
                if (!result.failure)
                    row = challengeRowFrom(result.bytes);
                row.failure = result.failure;
                row.start = starts[start].from.value_or(row.start);
                row.seed = starts[start].seed;
                if (!row.failure)
                    kept.keep(start, bytesOf(row));
                progress.show(static_cast<double>(++done) / static_cast<double>(open.size()));
            },
            workerSettings(bench.options(), coreCount()));
    }
    if (!isWhole)
        return kept.stopped(starts.size(), "starts");
    kept.flush();
    RunResult about = bench.about();
    about.inputs = bench.inputs();
    const RunSpan span = spanOf(bench.history(), about.settings);
    about.settings.from = bench.history().timeAt(span.firstMinute);
    about.settings.to = bench.history().timeAt(span.endMinute - 1) + practice::minuteMs;
    if (const auto warning = contractWarning(bench.history()))
        about.warnings.push_back(*warning);
    ResultFolder files(folder);
    files.add("challenge.csv", challengeCsv(rows));
    files.add("challenge.json", challengeJson(rows, about, TAVORAN_VERSION));
    files.commit();

    const ChallengeSummary summary = challengeSummary(rows);
    for (const std::string& warning : challengeWarnings(about))
        std::cout << toned(
            "! " + wrapped(oneLine(warning), screenWidth - 2, "  "), Tone::Warning, hasColours())
                  << '\n';
    std::cout << summaryText(summary) << '\n';
    if (bench.options().study.daily)
        std::cout << wrapped(
            "Starts a day apart share most of their prices: the intervals hold for starts that do "
            "not. Late starts have less time to finish.",
            80, "")
                  << "\n\n";
    std::cout << (folder / "challenge.csv").string() << '\n';
    if (summary.failed > 0) {
        std::cerr << "tavoran-lab: " << summary.failed << " of " << summary.starts
                  << " runs failed; challenge.csv tells why\n";
        return someFailed;
    }
    return succeeded;
}

} // namespace lab
