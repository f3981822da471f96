#pragma once

#include "lab/core/study/WalkFiles.h"

#include <string>

namespace lab {

// What a walk says on the terminal.

/// For each window a line that says what was chosen, or why nothing was, and below it past and test, one
/// under the other.
[[nodiscard]] std::string walkTable(const Walk& walk);

/// What the tests come to together.
[[nodiscard]] std::string walkWhole(const Walk& walk);

} // namespace lab
