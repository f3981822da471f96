// A run's files, as `tavoran-lab compare` reads them: summary.json, trades.csv, equity.csv and perhaps
// run.json, one after the other in one input, with a line of three equals signs between them.

#include "fuzz/Files.h"

#include "lab/core/output/ResultFiles.h"
#include "lab/core/output/ResultFolder.h"
#include "lab/core/output/SavedRun.h"

#include <algorithm>
#include <array>

using fuzz::demand;

namespace fuzz_result {

namespace {

lab::RunResult resultOf(const lab::SavedRun& run)
{
    lab::RunResult result;
    result.settings.symbol = run.symbol;
    result.digits = run.digits;
    result.trades = run.trades;
    result.equity = run.equity;
    return result;
}

/// Whether it is one line that begins with one of the files and a line of it.
bool namesPlace(std::string_view refusal, const fuzz::Folder& folder)
{
    constexpr std::array<const char*, 4> names{"summary.json", "trades.csv", "equity.csv", "run.json"};
    return std::any_of(names.begin(), names.end(), [&](const char* name) {
        const std::string file = (folder.path() / name).string();
        return refusal.starts_with(file + ':') && fuzz::namesLine(refusal, file, folder.read(name));
    });
}

/// What was read can be written, and what was written is a fixed point.
void demandWritable(const lab::SavedRun& run, const fuzz::Folder& folder, std::string_view summary)
{
    const lab::RunResult result = resultOf(run);
    const std::string trades = lab::tradesCsv(result);
    const std::string equity = lab::equityCsv(result);
    static_cast<void>(folder.write("summary.json", summary));
    static_cast<void>(folder.write("trades.csv", trades));
    static_cast<void>(folder.write("equity.csv", equity));
    const lab::SavedRun again = lab::readSavedRun(folder.path());
    demand(again.trades.size() == run.trades.size() && again.equity.size() == run.equity.size(),
        "every line is there again");
    demand(again.origin == run.origin && again.simulated == run.simulated && again.figures == run.figures
            && again.warnings == run.warnings,
        "the same files tell the same");
    const lab::RunResult once = resultOf(again);
    demand(lab::tradesCsv(once) == trades, "trades are written as they were read");
    demand(lab::equityCsv(once) == equity, "equity is written as it was read");
}

int attempt(const std::uint8_t* data, std::size_t size)
{
    static const fuzz::Folder folder;
    std::string_view text = fuzz::textOf(data, size);
    const std::string_view summary = fuzz::takePart(text);
    static_cast<void>(folder.write("summary.json", summary));
    static_cast<void>(folder.write("trades.csv", fuzz::takePart(text)));
    static_cast<void>(folder.write("equity.csv", fuzz::takePart(text)));
    // The bytes of another run must not be found in the place of none.
    const bool hasOrigin = !text.empty();
    if (hasOrigin)
        static_cast<void>(folder.write("run.json", text));
    else
        std::filesystem::remove(folder.path() / "run.json");
    std::optional<lab::SavedRun> run;
    try {
        run = lab::readSavedRun(folder.path());
    } catch (const lab::OutputError& error) {
        demand(namesPlace(error.what(), folder), "a refusal is one line that names its place");
        return 0;
    }
    demand(!run->figures.empty(), "a summary has figures");
    demand(hasOrigin || (run->origin.empty() && !run->simulated), "what is not told is not made up");
    const std::pair<std::string, std::string> simulated("simulated", "true");
    demand(!run->simulated
            || (std::find(run->origin.begin(), run->origin.end(), simulated) != run->origin.end()),
        "prices are simulated where the run says so");
    demandWritable(*run, folder, summary);
    return 0;
}

constexpr std::size_t longest = 100'000;                               // nested as deeply as that
const fuzz::Target target("result", &attempt, longest, "-entropic=0"); // as for a connection

} // namespace

} // namespace fuzz_result
