#pragma once

#include "experts/ExpertScript.h"
#include "lab/cli/Options.h"
#include "lab/core/market/MinuteHistory.h"

#include <vector>

namespace lab {

/// The script of the command line. Throws UsageError when it cannot be read.
[[nodiscard]] ExpertScript readScript(const std::filesystem::path& path);

/// Throws UsageError for a name that is no input of the script but nearly one, with that one.
void refuseMistyped(const ExpertScript& script, const std::string& name);

/// The inputs of the command line, in the script's order. Throws UsageError for what is no input of the
/// script, which names those that are, and for values that it cannot have.
void settleInputs(RunSettings& settings, const ExpertScript& script);

/// What a single run is made of.
struct GivenRun {
    ExpertScript script;
    std::vector<MinuteHistory> histories;
};

/// Reads it. What is wrong with the script, its inputs or the place of the result is said before
/// prices are read. Throws as the functions above, checkResultPlace() and loadHistories() do.
[[nodiscard]] GivenRun readGivenRun(Options& options);

} // namespace lab
