#pragma once

#include "lab/cli/StudyBench.h"

#include <filesystem>

namespace lab {

/// The file of a sweep's results in its folder.
inline constexpr const char* sweepStoreName = "sweep.sqlite";

/// The folder of a sweep: --out, or one that is named after script and symbol.
[[nodiscard]] std::filesystem::path sweepFolder(const StudyBench& bench);

/// The store in the folder. With `goesOn` the one that is there, if it belongs to this study; throws
/// StudyError if not. Else a new one: a finished sweep goes, with its files.
[[nodiscard]] StudyStore sweepStore(
    const StudyBench& bench, const std::filesystem::path& folder, bool goesOn);

/// Puts what the store holds in order, runs the best set once more for its report, writes all files and
/// prints the table. Returns the exit status.
[[nodiscard]] int endSweep(
    const StudyBench& bench, const StudyStore& store, const std::filesystem::path& folder);

} // namespace lab
