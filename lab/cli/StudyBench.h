#pragma once

#include "experts/ExpertScript.h"
#include "lab/cli/Options.h"
#include "lab/core/market/MinuteHistory.h"
#include "lab/core/study/Grid.h"
#include "lab/core/study/StudyStore.h"
#include "lab/core/study/SweepTable.h"
#include "lab/core/study/WorkerPool.h"
#include "lab/run/LabRun.h"

#include <functional>
#include <string>
#include <vector>

namespace lab {

/// The sets that --set asks for: an axis for each input, in the script's order. Throws UsageError for what is
/// no input of the script and for values that it cannot have, StudyError for ranges that cannot be.
[[nodiscard]] Grid gridOf(const ExpertScript& script, const RunSettings& settings);

/// How many processors this program may use.
[[nodiscard]] std::size_t coreCount();

/// What the workers of the command line may take, and what stops them.
[[nodiscard]] WorkerSettings workerSettings(const Options& options, std::size_t usualJobs);

/// Script, prices and sets of a study, ready for runs of it. Nothing of the script has run yet, so that
/// workers may be forked.
class StudyBench final {
public:
    /// Throws UsageError, HistoryError or StudyError when something is wrong with the command line's.
    StudyBench(Options options, ExpertScript script);
    StudyBench(const StudyBench&) = delete;
    StudyBench& operator=(const StudyBench&) = delete;

    [[nodiscard]] const Options& options() const { return m_options; }
    [[nodiscard]] std::string name() const { return m_script.name.toStdString(); }
    [[nodiscard]] const Grid& grid() const { return m_grid; }
    [[nodiscard]] const std::vector<std::uint64_t>& numbers() const { return m_numbers; }
    [[nodiscard]] const MinuteHistory& history() const { return m_histories.front(); }
    [[nodiscard]] SweepOrder order() const;
    [[nodiscard]] StudyIdentity identity() const;
    /// A result of no run: settings, script and prices.
    [[nodiscard]] RunResult about() const;

    /// All inputs of the script, with the values of the first set.
    [[nodiscard]] std::vector<RunInput> inputs() const;
    /// The settings with the inputs of a set.
    [[nodiscard]] RunSettings settingsOf(std::uint64_t number) const;
    /// A run in this process, with the command line's limit; told how far it is.
    [[nodiscard]] RunResult run(
        const RunSettings& settings, const std::function<void(double)>& progress = {}) const;
    /// A run whose end somebody else sees to: a worker's.
    [[nodiscard]] RunResult runInWorker(const RunSettings& settings) const;

    /// Makes so many runs in workers and hands over what is kept of each, in the order in which they come; a
    /// failed one with its reason, and the number 0. False when it was stopped.
    [[nodiscard]] bool runEach(std::size_t count, const std::function<RunSettings(std::size_t run)>& settings,
        const std::string& label, const std::function<void(std::size_t run, SetResult)>& take) const;
    /// Runs these sets in workers and hands over what is kept of each. False when it was stopped.
    [[nodiscard]] bool runSets(const std::vector<std::uint64_t>& numbers, const std::string& label,
        const std::function<void(const SetResult&)>& take) const;

private:
    Options m_options;
    ExpertScript m_script;
    Grid m_grid;
    std::vector<std::uint64_t> m_numbers;
    std::vector<MinuteHistory> m_histories;
    LabRun m_lab;
};

} // namespace lab
