#include "lab/cli/Commands.h"
#include "lab/cli/KeptRuns.h"
#include "lab/cli/PlanFile.h"
#include "lab/cli/RunScript.h"
#include "lab/cli/StopSignal.h"
#include "lab/cli/SweepEnding.h"
#include "lab/core/output/DraftName.h"
#include "lab/core/output/ResultFolder.h"
#include "lab/core/output/Texts.h"
#include "lab/core/study/StudyError.h"

#include <algorithm>
#include <iostream>
#include <iterator>
#include <optional>
#include <set>
#include <system_error>
#include <vector>

namespace lab {

namespace fs = std::filesystem;

namespace {

constexpr const char* probeNote = "probe";
constexpr const char* failedProbe = "failed";

/// The study of a plan on this machine. Throws StudyError when it is not the same here.
StudyBench benchOf(const PlanFile& plan, const Options& options)
{
    Options all = plan.options;
    all.command = options.command;
    all.study.jobs = options.study.jobs;
    all.study.memoryMb = options.study.memoryMb;
    all.out = options.out;
    return {std::move(all), plan.script};
}

void checkIdentity(const PlanFile& plan, const StudyBench& bench)
{
    const StudyIdentity here = bench.identity();
    for (std::size_t i = 0; i < here.size(); ++i) {
        if (i >= plan.identity.size() || plan.identity[i] != here[i])
            throw StudyError(differs(here[i].first) + " here from the plan's");
    }
    if (plan.sets != bench.numbers().size())
        throw StudyError("the plan counts " + std::to_string(plan.sets) + " sets, and its arguments make "
            + std::to_string(bench.numbers().size()));
}

/// What a machine makes of the plan's first set: another one that computes otherwise is told by it.
std::string probeOf(const SetResult& result)
{
    return result.failure ? std::string(failedProbe)
                          : hexText(result.tickPrint) + hexText(result.decisionPrint);
}

/// A file on its way to its place; what does not get there goes.
class Draft {
public:
    explicit Draft(const fs::path& place)
        : m_place(place)
        , m_draft(draftOf(place))
    {
        removeLeftDrafts(place, {"", journal});
        remove();
    }
    Draft(const Draft&) = delete;
    Draft& operator=(const Draft&) = delete;
    ~Draft() { remove(); }
    [[nodiscard]] const fs::path& path() const { return m_draft; }
    void putIntoPlace() const
    {
        std::error_code error;
        fs::rename(m_draft, m_place, error);
        if (error)
            throw OutputError("cannot write " + m_place.string() + ": " + error.message());
        settleFolder(fs::absolute(m_place, error).parent_path());
    }

private:
    void remove() const
    {
        std::error_code ignored;
        fs::remove(m_draft, ignored);
        fs::remove(m_draft.string() + journal, ignored);
    }

    static constexpr const char* journal = "-journal";

    fs::path m_place;
    fs::path m_draft;
};

/// What a former work at a chunk has left in its place.
struct FormerWork {
    std::set<std::uint64_t> finished;
    std::string probe;
};

std::optional<FormerWork> formerWork(const fs::path& place, const StudyIdentity& identity)
{
    std::error_code error;
    if (!fs::exists(place, error))
        return {};
    try {
        const StudyStore store = StudyStore::open(place);
        if (!store.differenceTo(identity).empty())
            return {};
        return FormerWork{store.finished(), store.note(probeNote)};
    } catch (const StudyError&) {
        return {}; // damaged, or of something else: made anew
    }
}

/// The sets of a chunk that are still to be run.
std::vector<std::uint64_t> openSets(const PlanFile& plan, const StudyBench& bench, std::uint64_t chunk,
    const std::set<std::uint64_t>& finished)
{
    const auto [from, to] = plan.span(chunk);
    const auto first = bench.numbers().begin();
    std::vector<std::uint64_t> open;
    std::set_difference(first + static_cast<std::ptrdiff_t>(from), first + static_cast<std::ptrdiff_t>(to),
        finished.begin(), finished.end(), std::back_inserter(open));
    return open;
}

std::string listed(const std::vector<std::uint64_t>& chunks)
{
    constexpr std::size_t most = 20;
    std::string text;
    for (std::size_t i = 0; i < std::min(most, chunks.size()); ++i)
        text += (i > 0 ? ", " : "") + std::to_string(chunks[i]);
    return chunks.size() > most ? text + " and " + std::to_string(chunks.size() - most) + " more" : text;
}

/// Every chunk of the plan is there and belongs to it, and all machines agree.
void checkChunks(const PlanFile& plan, const fs::path& file)
{
    std::vector<std::uint64_t> missing;
    std::string wrong;
    std::string probe;
    std::uint64_t probed = 0;
    for (std::uint64_t chunk = 1; chunk <= plan.chunks; ++chunk) {
        const fs::path place = chunkPlace(file, chunk);
        std::error_code error;
        if (!fs::exists(place, error)) {
            missing.push_back(chunk);
            continue;
        }
        const StudyStore store = StudyStore::open(place);
        const std::string difference = store.differenceTo(plan.identityOf(chunk));
        const std::string found = store.note(probeNote);
        const std::string who = "chunk " + std::to_string(chunk);
        if (!difference.empty())
            wrong += (wrong.empty() ? "" : "; ") + who + ": " + differs(difference);
        else if (const std::size_t held = store.results().size(); held != plan.setsOf(chunk))
            wrong += (wrong.empty() ? "" : "; ") + who + " holds " + std::to_string(held) + " of its "
                + std::to_string(plan.setsOf(chunk)) + " sets";
        else if (probed > 0 && found != probe)
            wrong += (wrong.empty() ? "" : "; ") + who + " decided otherwise than chunk "
                + std::to_string(probed) + " with the same inputs";
        else {
            probe = found;
            probed = chunk;
        }
    }
    if (!wrong.empty())
        throw StudyError("these chunks do not belong together: " + wrong);
    if (!missing.empty())
        throw StudyError("missing chunks: " + listed(missing));
}

} // namespace

int planChunks(Options options)
{
    const ExpertScript script = readScript(options.script);
    const Options given = options;
    fs::path file = options.out;
    const StudyBench bench(std::move(options), script);
    if (const int stopped = stopStatusAtOnce())
        return stopped;
    const std::size_t sets = bench.numbers().size();
    if (given.study.chunks > sets)
        throw StudyError(
            std::to_string(given.study.chunks) + " chunks for " + std::to_string(sets) + " sets");
    if (file.empty())
        file = bench.name() + '-' + bench.options().settings.symbol + ".plan.json";
    std::error_code error;
    if (fs::exists(file, error))
        static_cast<void>(readPlan(file)); // anything else is not overwritten

    const PlanFile plan{given, script, sets, given.study.chunks, bench.identity(), {}};
    ResultFolder folder(file.parent_path());
    folder.add(file.filename().string(), planText(plan, file));
    folder.commit();
    std::cout << sets << " sets in " << plan.chunks << " chunks; for each of them\n  tavoran-lab work "
              << file.string() << " CHUNK\nand in the end\n  tavoran-lab merge " << file.string() << '\n';
    return succeeded;
}

int workChunk(const Options& options)
{
    const fs::path& file = options.study.plan;
    const PlanFile plan = readPlan(file);
    const std::uint64_t chunk = options.study.chunk;
    if (chunk > plan.chunks)
        throw StudyError(
            file.string() + " has " + std::to_string(plan.chunks) + " chunks, not " + std::to_string(chunk));
    const fs::path place = chunkPlace(file, chunk);
    const std::string who = "chunk " + std::to_string(chunk);
    const std::optional<FormerWork> former = formerWork(place, plan.identityOf(chunk));
    if (former && former->finished.size() == plan.setsOf(chunk) && former->probe != failedProbe) {
        std::cout << who << " is done already\n";
        return succeeded;
    }
    const StudyBench bench = benchOf(plan, options);
    if (const int stopped = stopStatusAtOnce())
        return stopped;
    checkIdentity(plan, bench);

    // What failed is tried again, as by a sweep that goes on. The probe is run each time: this may be
    // another machine than the one that began.
    const std::vector<std::uint64_t> open
        = openSets(plan, bench, chunk, former ? former->finished : std::set<std::uint64_t>());
    const std::uint64_t probe = bench.numbers().front();
    std::vector<std::uint64_t> numbers = open;
    const bool isProbeExtra = std::ranges::find(open, probe) == open.end();
    if (isProbeExtra)
        numbers.push_back(probe);

    const Draft draft(place);
    std::size_t failed = 0;
    {
        std::error_code error;
        if (former && !fs::copy_file(place, draft.path(), error))
            throw OutputError("cannot write " + draft.path().string() + ": " + error.message());
        StudyStore store = former ? StudyStore::open(draft.path())
                                  : StudyStore::create(draft.path(), plan.identityOf(chunk));
        std::string here;
        const bool isWhole = bench.runSets(numbers, bench.name() + ", " + who, [&](const SetResult& set) {
            if (set.number == probe)
                here = probeOf(set);
            if (set.number == probe && isProbeExtra)
                return;
            failed += set.failure ? 1 : 0;
            store.put(set, bench.grid().inputsOf(set.number));
        });
        if (!isWhole) {
            std::cerr << "tavoran-lab: stopped; " << who
                      << (former ? " is as it was before\n" : " is not whole, and nothing of it is kept\n");
            return stopStatus();
        }
        if (!former || former->probe == failedProbe)
            store.setNote(probeNote, here);
        else if (here != failedProbe && here != former->probe)
            throw StudyError(who + " was begun by a machine that decided otherwise with the same inputs");
        store.flush();
    }
    draft.putIntoPlace();
    std::cout << who << ": " << plan.setsOf(chunk) << " sets"
              << (former ? ", " + std::to_string(open.size()) + " of them run now" : "")
              << (failed > 0 ? ", " + std::to_string(failed) + " failed" : "") << '\n';
    return succeeded;
}

int mergeChunks(const Options& options)
{
    const fs::path& file = options.study.plan;
    const PlanFile plan = readPlan(file);
    checkChunks(plan, file);
    const StudyBench bench = benchOf(plan, options);
    if (const int stopped = stopStatusAtOnce())
        return stopped;
    checkIdentity(plan, bench);
    const fs::path folder = sweepFolder(bench);
    std::error_code error;
    const bool wasStopped = fs::exists(folder / storeName(ResultKind::Sweep), error)
        && !fs::exists(folder / "sweep.csv", error);
    if (!wasStopped)
        checkResultPlace(folder, ResultKind::Sweep);
    StudyStore store = storeIn(folder, ResultKind::Sweep, bench.identity(), wasStopped);
    for (std::uint64_t chunk = 1; chunk <= plan.chunks; ++chunk) {
        const StudyStore part = StudyStore::open(chunkPlace(file, chunk));
        for (SetResult& set : part.results()) {
            set.days = part.daysOf(set.number);
            store.put(set, bench.grid().inputsOf(set.number));
        }
    }
    store.flush();
    return endSweep(bench, store, folder);
}

} // namespace lab
