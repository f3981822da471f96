#include "lab/cli/KeptRuns.h"

#include "lab/cli/StopSignal.h"
#include "lab/cli/UsageError.h"
#include "lab/core/study/StudyError.h"

#include <iostream>
#include <system_error>
#include <utility>

namespace lab {

namespace fs = std::filesystem;

void checkStudyPlace(const fs::path& folder, ResultKind kind, bool goesOn)
{
    std::error_code error;
    if (!goesOn || !fs::exists(folder / storeName(kind), error))
        checkResultPlace(folder, kind);
}

StudyStore storeIn(const fs::path& folder, ResultKind kind, const StudyIdentity& identity, bool goesOn)
{
    const std::string name(studyName(kind));
    const fs::path file = folder / storeName(kind);
    std::error_code error;
    const bool isBlank = goesOn && StudyStore::isBlank(file);
    if (goesOn && !isBlank && fs::exists(file, error)) {
        StudyStore store = StudyStore::open(file);
        const std::string difference = store.differenceTo(identity);
        if (!difference.empty())
            throw StudyError(file.string() + " belongs to another " + name + ": " + differs(difference)
                + "; another folder can be named with --out");
        return store;
    }
    if (isBlank)
        fs::remove(file, error);
    if (fs::exists(folder / (name + ".csv"), error)) {
        removeRun(folder);
        for (const std::string& each : {name + ".json", name + ".csv", storeName(kind)})
            fs::remove(folder / each, error);
    }
    fs::create_directories(folder, error);
    if (error)
        throw UsageError("cannot write to " + folder.string() + ": " + error.message());
    try {
        return StudyStore::create(file, identity);
    } catch (const StudyError&) {
        fs::remove(folder, error); // unless something is in it
        throw;
    }
}

void removeStore(const fs::path& folder, ResultKind kind)
{
    std::error_code ignored;
    const fs::path file = folder / storeName(kind);
    fs::remove(file, ignored);
    fs::remove(file.string() + "-journal", ignored);
    fs::remove(folder, ignored); // unless something else is in it
}

void endStore(std::optional<StudyStore>& store, const fs::path& folder, ResultKind kind)
{
    try {
        store->flush();
    } catch (const StudyError&) {
        // There was no room, or whoever ends this has told already why; what counts is what was kept before.
    }
    const bool isUsed = store->hasKept();
    store.reset();
    if (!isUsed)
        removeStore(folder, kind);
}

int tellStopped(std::size_t done, std::size_t runs, const std::string& name)
{
    std::cerr << "tavoran-lab: stopped; " << done << " of " << runs << ' ' << name << " are done and kept"
              << (done > 0 ? ", --resume goes on" : "") << '\n';
    return stopStatus();
}

KeptRuns::KeptRuns(fs::path folder, ResultKind kind, const StudyIdentity& identity, bool goesOn)
    : m_folder(std::move(folder))
    , m_kind(kind)
    , m_store(storeIn(m_folder, kind, identity, goesOn))
    , m_former(m_store->runs())
    , m_kept(m_former.size())
{
}

KeptRuns::~KeptRuns()
{
    endStore(m_store, m_folder, m_kind);
}

void KeptRuns::keep(std::uint64_t number, const std::string& bytes)
{
    m_store->putRun(number, bytes);
    ++m_kept;
}

int KeptRuns::stopped(std::size_t runs, const std::string& name)
{
    m_store->flush();
    return tellStopped(m_kept, runs, name);
}

} // namespace lab
