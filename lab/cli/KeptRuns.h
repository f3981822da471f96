#pragma once

#include "lab/cli/ResultPlace.h"
#include "lab/core/study/StudyStore.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>

namespace lab {

/// Refuses, before any work, a place for a study's result; with `goesOn` the folder of one that was stopped
/// will do. Throws UsageError.
void checkStudyPlace(const std::filesystem::path& folder, ResultKind kind, bool goesOn);

/// The store in a study's folder. With `goesOn` the one that is there, if it belongs to this study; throws
/// StudyError if not. Else a new one: a finished study goes, with its files.
[[nodiscard]] StudyStore storeIn(
    const std::filesystem::path& folder, ResultKind kind, const StudyIdentity& identity, bool goesOn);

/// Takes the store of a study away, and its folder where that is empty then.
void removeStore(const std::filesystem::path& folder, ResultKind kind);
/// Closes the store, and takes it away if nothing that was done has been kept in it.
void endStore(std::optional<StudyStore>& store, const std::filesystem::path& folder, ResultKind kind);

/// Tells on the standard error how many of a stopped study's runs are done, and how it goes on. Returns the
/// exit status.
[[nodiscard]] int tellStopped(std::size_t done, std::size_t runs, const std::string& name);

/// The runs of a walk or a challenge that have come to their end, kept in its folder as they come, so that a
/// study that was stopped can go on. What fails is not kept: it is tried again.
class KeptRuns final {
public:
    KeptRuns(std::filesystem::path folder, ResultKind kind, const StudyIdentity& identity, bool goesOn);
    /// Where nothing was kept, nothing stays behind.
    ~KeptRuns();
    KeptRuns(const KeptRuns&) = delete;
    KeptRuns& operator=(const KeptRuns&) = delete;

    /// Those of former times, by their numbers.
    [[nodiscard]] const std::map<std::uint64_t, std::string>& former() const { return m_former; }
    void keep(std::uint64_t number, const std::string& bytes);
    void flush() { m_store->flush(); }
    /// Of how many runs, and what they are called. Ends the study for now; returns the exit status.
    [[nodiscard]] int stopped(std::size_t runs, const std::string& name);

private:
    std::filesystem::path m_folder;
    ResultKind m_kind;
    std::optional<StudyStore> m_store;
    std::map<std::uint64_t, std::string> m_former;
    std::size_t m_kept = 0;
};

} // namespace lab
