#pragma once

#include "lab/cli/StudyBench.h"

#include <filesystem>

namespace lab {

/// The folder of a sweep: --out, or one that is named after script and symbol.
[[nodiscard]] std::filesystem::path sweepFolder(const StudyBench& bench);

/// Puts what the store holds in order, runs the best set once more for its report, writes all files and
/// prints the table. Returns the exit status.
[[nodiscard]] int endSweep(
    const StudyBench& bench, const StudyStore& store, const std::filesystem::path& folder);

/// Tells on the standard error why a sweep or a walk has chosen nothing, and how it could go on.
void tellNoChoice(const Choice& choice, const SweepOrder& order);

} // namespace lab
