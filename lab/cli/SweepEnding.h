#pragma once

#include "lab/cli/StudyBench.h"

#include <filesystem>

namespace lab {

/// The file of a sweep's results in its folder.
inline constexpr const char* sweepStoreName = "sweep.sqlite";

/// Refuses, before any work, a folder that a study must not or cannot write to: one that holds another study
/// or something else. `marks` are files of which one shows that it is a former result of the same command.
/// Throws UsageError.
void checkStudyPlace(const std::filesystem::path& folder, const std::vector<std::string>& marks);

/// The store in the folder: a new one, or with --resume the one that is there, if it belongs to this study.
[[nodiscard]] StudyStore sweepStore(const StudyBench& bench, const std::filesystem::path& folder);

/// Puts what the store holds in order, runs the best set once more for its report, writes all files and
/// prints the table. Returns the exit status.
[[nodiscard]] int endSweep(
    const StudyBench& bench, const StudyStore& store, const std::filesystem::path& folder);

} // namespace lab
