#pragma once

#include <string>
#include <vector>

namespace lab {

/// The whole program, given its arguments without its name; returns the exit status. Qt's application object
/// exists.
[[nodiscard]] int runProgram(const std::vector<std::string>& arguments);

} // namespace lab
