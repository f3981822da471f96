#include "lab/cli/Commands.h"
#include "lab/cli/KeptRuns.h"
#include "lab/cli/RunScript.h"
#include "lab/cli/StopSignal.h"
#include "lab/cli/SweepEnding.h"

#include <algorithm>
#include <optional>
#include <set>

namespace lab {

int sweepSets(Options options)
{
    const bool isResumed = options.study.resume;
    if (!options.out.empty())
        checkStudyPlace(options.out, ResultKind::Sweep, isResumed);
    ExpertScript script = readScript(options.script);
    const StudyBench bench(std::move(options), std::move(script));
    if (const int stopped = stopStatusAtOnce())
        return stopped;
    const std::filesystem::path folder = sweepFolder(bench);
    checkStudyPlace(folder, ResultKind::Sweep, isResumed);
    std::optional<StudyStore> store = storeIn(folder, ResultKind::Sweep, bench.identity(), isResumed);

    // What failed is tried again: a machine that was short of memory may have more now.
    const std::set<std::uint64_t> finished = store->finished();
    std::vector<std::uint64_t> open;
    std::ranges::set_difference(bench.numbers(), finished, std::back_inserter(open));
    const std::string label = bench.name() + ", " + std::to_string(open.size()) + " sets";
    bool isWhole = false;
    try {
        isWhole = bench.runSets(
            open, label, [&](const SetResult& set) { store->put(set, bench.grid().inputsOf(set.number)); });
        store->flush();
    } catch (...) {
        endStore(store, folder, ResultKind::Sweep);
        throw;
    }
    if (!isWhole) {
        const std::size_t done = store->finished().size();
        endStore(store, folder, ResultKind::Sweep);
        return tellStopped(done, bench.numbers().size(), "sets");
    }
    return endSweep(bench, *store, folder);
}

} // namespace lab
