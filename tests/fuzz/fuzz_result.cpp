// A run's files, as `tavoran-lab compare` reads them: summary.json, trades.csv and equity.csv, one after the
// other in one input, with a line of three equals signs between them.

#include "fuzz/Files.h"

#include "lab/core/output/ResultFiles.h"
#include "lab/core/output/ResultFolder.h"
#include "lab/core/output/SavedRun.h"

using fuzz::demand;

namespace fuzz_result {

namespace {

std::string_view takePart(std::string_view& text)
{
    constexpr std::string_view mark = "===\n";
    const std::size_t end = text.find(mark);
    const std::string_view part = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + mark.size());
    return part;
}

lab::RunResult resultOf(const lab::SavedRun& run)
{
    lab::RunResult result;
    result.settings.symbol = run.symbol;
    result.digits = run.digits;
    result.trades = run.trades;
    result.equity = run.equity;
    return result;
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
    const lab::RunResult once = resultOf(again);
    demand(lab::tradesCsv(once) == trades, "trades are written as they were read");
    demand(lab::equityCsv(once) == equity, "equity is written as it was read");
}

int attempt(const std::uint8_t* data, std::size_t size)
{
    static const fuzz::Folder folder;
    std::string_view text = fuzz::textOf(data, size);
    const std::string_view summary = takePart(text);
    static_cast<void>(folder.write("summary.json", summary));
    static_cast<void>(folder.write("trades.csv", takePart(text)));
    static_cast<void>(folder.write("equity.csv", text));
    std::optional<lab::SavedRun> run;
    try {
        run = lab::readSavedRun(folder.path());
    } catch (const lab::OutputError& error) {
        const std::string_view what = error.what();
        demand(what.starts_with(folder.path().string()) && fuzz::isOneLine(what), "a refusal is one line");
        return 0;
    }
    demand(!run->figures.empty(), "a summary has figures");
    demandWritable(*run, folder, summary);
    return 0;
}

const fuzz::Target target("result", &attempt);

} // namespace

} // namespace fuzz_result
