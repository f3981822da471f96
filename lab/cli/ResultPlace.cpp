#include "lab/cli/ResultPlace.h"

#include "lab/cli/UsageError.h"
#include "lab/core/figures/Figures.h"
#include "lab/core/output/ReportPage.h"
#include "lab/core/output/ResultFiles.h"

#include <system_error>
#include <unistd.h>

namespace lab {

namespace fs = std::filesystem;

void checkResultPlace(const fs::path& folder)
{
    std::error_code error;
    const fs::file_status status = fs::status(folder, error);
    if (fs::exists(status)) {
        if (!fs::is_directory(status))
            throw UsageError(folder.string() + " is no folder; another one can be named with --out");
        const bool isResult
            = fs::exists(folder / "summary.json", error) && fs::exists(folder / "run.json", error);
        if (!isResult && !fs::is_empty(folder, error))
            throw UsageError(folder.string()
                + " holds something else than a result; another folder can be named with --out");
    }
    fs::path nearest = fs::absolute(folder, error);
    while (!fs::exists(nearest, error) && nearest.has_relative_path())
        nearest = nearest.parent_path();
    if (::access(nearest.c_str(), W_OK | X_OK) != 0)
        throw UsageError(
            "cannot write to " + folder.string() + ": " + std::generic_category().message(errno));
}

void addResult(ResultFolder& files, const RunResult& result, const Figures& figures, const ReportWords& words)
{
    files.add("report.html", reportPage(result, figures, words));
    files.add("summary.json", summaryJson(figures));
    files.add("trades.csv", tradesCsv(result));
    files.add("equity.csv", equityCsv(result));
    files.add("daily.csv", dailyCsv(result));
    files.add("journal.txt", journalText(result));
    files.add("run.json", runJson(result, TAVORAN_VERSION));
}

void writeResult(
    const fs::path& folder, const RunResult& result, const Figures& figures, const std::string& scriptName)
{
    ResultFolder files(folder);
    addResult(files, result, figures, {scriptName, {}});
    files.commit();
}

} // namespace lab
