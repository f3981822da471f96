#pragma once

#include <string>
#include <vector>

namespace practice {

/// SQL that brings a database from format N to format N + 1, for N = 0, 1, ... A published step is never
/// edited; a change of the layout is a new step at the end.
[[nodiscard]] const std::vector<std::string>& schemaMigrations();

} // namespace practice
