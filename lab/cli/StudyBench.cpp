#include "lab/cli/StudyBench.h"

#include "lab/cli/DeafScript.h"
#include "lab/cli/PriceSources.h"
#include "lab/cli/Progress.h"
#include "lab/cli/RunScript.h"
#include "lab/cli/StopSignal.h"
#include "lab/core/market/RunSpan.h"
#include "lab/core/output/ResultFiles.h"
#include "lab/core/output/Texts.h"
#include "lab/core/study/SweepFiles.h"
#include "lab/run/ScriptInputs.h"
#include "practice/core/market/HashRandom.h"

#include <algorithm>
#include <sched.h>
#include <utility>

namespace lab {

namespace {

std::string hashed(const std::string& text)
{
    return hexText(practice::hashText(text));
}

void checkValue(const ExpertScript& script, const std::string& name, const std::string& value)
{
    QString error;
    if (!withInputs(script.text, {{QString::fromStdString(name), QString::fromStdString(value)}}, error))
        throw UsageError(error.toStdString());
}

} // namespace

Grid gridOf(const ExpertScript& script, const RunSettings& settings)
{
    std::vector<std::pair<std::string, std::string>> given = settings.inputs;
    std::vector<GridAxis> axes;
    for (const ScriptInput& input : inputsOf(script.text)) {
        const std::string name = input.name.toStdString();
        const auto found = std::ranges::find(given, name, &std::pair<std::string, std::string>::first);
        if (found == given.end())
            continue;
        const bool isRange
            = input.kind == ScriptInput::Kind::Number && found->second.find(':') != std::string::npos;
        GridAxis axis = axisOf(name, found->second, isRange);
        if (isRange) {
            checkValue(script, name, axis.values.front());
        } else {
            for (const std::string& value : axis.values)
                checkValue(script, name, value);
        }
        axes.push_back(std::move(axis));
        given.erase(found);
    }
    for (const auto& [name, value] : given) {
        refuseMistyped(script, name);
        checkValue(script, name, value);
    }
    return Grid(std::move(axes));
}

std::size_t coreCount()
{
    cpu_set_t cores;
    CPU_ZERO(&cores);
    if (::sched_getaffinity(0, sizeof cores, &cores) != 0)
        return 1;
    return static_cast<std::size_t>(std::max(1, CPU_COUNT(&cores)));
}

WorkerSettings workerSettings(const Options& options, std::size_t usualJobs)
{
    WorkerSettings settings;
    settings.workers = options.study.jobs > 0 ? options.study.jobs : usualJobs;
    settings.limit = options.limit;
    settings.memoryBytes = options.study.memoryMb * 1024 * 1024;
    settings.stop = &stopFlag();
    return settings;
}

StudyBench::StudyBench(Options options, ExpertScript script)
    : m_options(std::move(options))
    , m_script(std::move(script))
    , m_grid(gridOf(m_script, m_options.settings))
    , m_numbers(m_options.study.random ? sampledSets(m_grid, *m_options.study.random, m_options.settings.seed)
                                       : allSets(m_grid))
    , m_histories(loadHistories(m_options))
    , m_lab(historiesAt(m_histories))
{
    m_options.settings.inputs.clear();
    static_cast<void>(spanOf(m_histories.front(), m_options.settings));
}

SweepOrder StudyBench::order() const
{
    return {sortFigureOf(m_options.study.sort), m_options.study.minTrades};
}

StudyIdentity StudyBench::identity() const
{
    std::string sets;
    for (const GridAxis& axis : m_grid.axes()) {
        sets += axis.name + '\n';
        for (const std::string& value : axis.values)
            sets += value + '\n';
        sets += '\n';
    }
    for (const std::uint64_t number : m_options.study.random ? m_numbers : std::vector<std::uint64_t>())
        sets += std::to_string(number) + ',';
    return {{"the version", TAVORAN_VERSION}, {"the script", hashed(m_script.text.toStdString())},
        {"the prices", hexText(m_lab.dataHash())}, {"the settings", hashed(runJson(about(), {}))},
        {"the sets", hashed(sets)}};
}

RunResult StudyBench::about() const
{
    RunResult about;
    about.settings = m_options.settings;
    about.scriptHash = practice::hashText(m_script.text.toStdString());
    about.dataHash = m_lab.dataHash();
    for (const MinuteHistory& each : m_histories)
        about.simulated = about.simulated || each.isSimulated;
    return about;
}

std::vector<RunInput> StudyBench::inputs() const
{
    return inputsAsRun(settingsOf(m_numbers.front()), m_script);
}

RunSettings StudyBench::settingsOf(std::uint64_t number) const
{
    RunSettings settings = m_options.settings;
    settings.inputs = m_grid.inputsOf(number);
    return settings;
}

RunResult StudyBench::run(const RunSettings& settings, const std::function<void(double)>& progress) const
{
    RunControl control;
    control.progress = progress;
    control.stop = &stopFlag();
    control.limit = m_options.limit;
    control.deaf = leaveDeafScript(name(), m_options.limit);
    return m_lab.run(m_script, settings, control);
}

RunResult StudyBench::runInWorker(const RunSettings& settings) const
{
    RunControl control;
    control.limit = m_options.limit;
    return m_lab.run(m_script, settings, control);
}

bool StudyBench::runEach(std::size_t count, const std::function<RunSettings(std::size_t run)>& settings,
    const std::string& label, const std::function<void(std::size_t run, SetResult)>& take) const
{
    Progress progress(label);
    progress.showLabel(); // the first run may take its time
    std::size_t done = 0;
    const Work work = [&](std::size_t job) { return bytesOf(setResultOf(0, runInWorker(settings(job)))); };
    const auto keep = [&](const JobResult& job) {
        SetResult result;
        if (job.failure)
            result.failure = job.failure;
        else
            result = setResultFrom(job.bytes);
        take(job.job, std::move(result));
        progress.show(static_cast<double>(++done) / static_cast<double>(count));
    };
    return runJobs(
        count, work, keep, workerSettings(m_options, m_options.command == Command::Work ? 1 : coreCount()));
}

bool StudyBench::runSets(const std::vector<std::uint64_t>& numbers, const std::string& label,
    const std::function<void(const SetResult&)>& take) const
{
    return runEach(
        numbers.size(), [&](std::size_t job) { return settingsOf(numbers[job]); }, label,
        [&](std::size_t job, SetResult result) {
            result.number = numbers[job];
            take(result);
        });
}

} // namespace lab
