#pragma once

#include "experts/ExpertScript.h"
#include "lab/cli/Options.h"

namespace lab {

/// The script of the command line. Throws UsageError when it cannot be read.
[[nodiscard]] ExpertScript readScript(const std::filesystem::path& path);

/// Throws UsageError for a name that is no input of the script but nearly one, with that one.
void refuseMistyped(const ExpertScript& script, const std::string& name);

/// The inputs of the command line, in the script's order. Throws UsageError for what is no input of the
/// script, which names those that are, and for values that it cannot have.
void settleInputs(RunSettings& settings, const ExpertScript& script);

} // namespace lab
