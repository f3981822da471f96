#include "lab/cli/ResultPlace.h"

#include "lab/cli/UsageError.h"
#include "lab/core/figures/Figures.h"
#include "lab/core/output/ReportPage.h"
#include "lab/core/output/ResultFiles.h"

#include <algorithm>
#include <system_error>
#include <unistd.h>

namespace lab {

namespace fs = std::filesystem;

namespace {

constexpr const char* runFiles[]{
    "report.html", "summary.json", "trades.csv", "equity.csv", "daily.csv", "journal.txt", "run.json"};

/// A kind of result and the file which shows that it is there. Studies hold a run, too.
struct KindRow {
    ResultKind kind;
    std::string_view study;
    std::string_view mark;
    std::string_view name;
};

constexpr KindRow kindRows[]{{ResultKind::Sweep, "sweep", "sweep.csv", "a sweep"},
    {ResultKind::Walk, "walk", "walk.csv", "a walk"},
    {ResultKind::Challenge, "challenge", "challenge.csv", "a challenge"},
    {ResultKind::Run, "", "run.json", "a run"}, {ResultKind::Comparison, "", "compare.html", "a comparison"}};

bool hasStore(const fs::path& folder, ResultKind kind)
{
    std::error_code error;
    return !studyName(kind).empty() && fs::exists(folder / storeName(kind), error);
}

const KindRow* kindIn(const fs::path& folder)
{
    std::error_code error;
    for (const KindRow& row : kindRows) {
        if (fs::exists(folder / row.mark, error) || hasStore(folder, row.kind))
            return &row;
    }
    return nullptr;
}

void checkContent(const fs::path& folder, ResultKind kind)
{
    constexpr const char* advice = "; another folder can be named with --out";
    std::error_code error;
    const KindRow* found = kindIn(folder);
    if (!found && !holdsNothing(folder))
        throw UsageError(folder.string() + " holds something else than a result" + advice);
    if (found && found->kind != kind)
        throw UsageError(folder.string() + " holds " + std::string(found->name) + advice);
    if (hasStore(folder, kind) && !fs::exists(folder / found->mark, error))
        throw UsageError(folder.string() + " holds " + std::string(found->name)
            + " that was stopped: --resume goes on with it" + advice);
}

} // namespace

std::string_view studyName(ResultKind kind)
{
    return std::ranges::find(kindRows, kind, &KindRow::kind)->study;
}

std::string storeName(ResultKind kind)
{
    const std::string_view name = studyName(kind);
    return name.empty() ? std::string() : std::string(name) + ".sqlite";
}

void checkResultPlace(const fs::path& folder, ResultKind kind)
{
    std::error_code error;
    const fs::file_status status = fs::status(folder, error);
    if (fs::exists(status)) {
        if (!fs::is_directory(status))
            throw UsageError(folder.string() + " is no folder; another one can be named with --out");
        checkContent(folder, kind);
    }
    fs::path nearest = fs::absolute(folder, error);
    while (!fs::exists(nearest, error) && nearest.has_relative_path())
        nearest = nearest.parent_path();
    if (::access(nearest.c_str(), W_OK | X_OK) != 0)
        throw UsageError(
            "cannot write to " + folder.string() + ": " + std::generic_category().message(errno));
}

void removeRun(const fs::path& folder)
{
    std::error_code error;
    for (const char* file : runFiles) {
        fs::remove(folder / file, error);
        if (error)
            throw UsageError("cannot write to " + folder.string() + ": " + error.message());
    }
}

void addResult(ResultFolder& files, const RunResult& result, const Figures& figures, const ReportWords& words)
{
    // First what shows that this is a run: of one that was killed on its way here, the next takes the place.
    files.add("run.json", runJson(result, TAVORAN_VERSION));
    files.add("report.html", reportPage(result, figures, words));
    files.add("summary.json", summaryJson(figures));
    files.add("trades.csv", tradesCsv(result));
    files.add("equity.csv", equityCsv(result));
    files.add("daily.csv", dailyCsv(result));
    files.add("journal.txt", journalText(result));
}

void writeResult(
    const fs::path& folder, const RunResult& result, const Figures& figures, const std::string& scriptName)
{
    ResultFolder files(folder);
    addResult(files, result, figures, {scriptName, {}});
    files.commit();
}

} // namespace lab
