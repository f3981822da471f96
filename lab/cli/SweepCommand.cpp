#include "lab/cli/Commands.h"
#include "lab/cli/KeptRuns.h"
#include "lab/cli/RunScript.h"
#include "lab/cli/StopSignal.h"
#include "lab/cli/SweepEnding.h"

#include <algorithm>
#include <iostream>
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
    StudyStore store = storeIn(folder, ResultKind::Sweep, bench.identity(), isResumed);

    // What failed is tried again: a machine that was short of memory may have more now.
    const std::set<std::uint64_t> finished = store.finished();
    std::vector<std::uint64_t> open;
    std::ranges::set_difference(bench.numbers(), finished, std::back_inserter(open));
    const std::string label = bench.name() + ", " + std::to_string(open.size()) + " sets";
    const bool isWhole = bench.runSets(
        open, label, [&](const SetResult& set) { store.put(set, bench.grid().inputsOf(set.number)); });
    store.flush();
    if (!isWhole) {
        std::cerr << "tavoran-lab: stopped; " << store.finished().size() << " of " << bench.numbers().size()
                  << " sets are done and kept, --resume goes on\n";
        return stopStatus();
    }
    return endSweep(bench, store, folder);
}

} // namespace lab
