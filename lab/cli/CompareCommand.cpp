#include "lab/cli/Commands.h"
#include "lab/cli/ResultPlace.h"
#include "lab/core/output/Comparison.h"
#include "lab/core/output/ResultFolder.h"

#include <iostream>

namespace lab {

int compareResults(const Options& options)
{
    if (!options.out.empty())
        checkResultPlace(options.out, ResultKind::Comparison);
    std::vector<SavedRun> runs;
    for (const std::filesystem::path& folder : options.results)
        runs.push_back(readSavedRun(folder));
    if (!options.out.empty()) {
        ResultFolder files(options.out);
        files.add("compare.html", comparePage(runs));
        files.commit();
    }
    std::cout << compareText(runs);
    if (!options.out.empty())
        std::cout << '\n' << (options.out / "compare.html").string() << '\n';
    return succeeded;
}

} // namespace lab
