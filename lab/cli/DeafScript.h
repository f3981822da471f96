#pragma once

#include <chrono>
#include <functional>
#include <string>

namespace lab {

/// For RunControl::deaf: says that the script cannot be ended, and ends the program, with fellShort. What was
/// not written by then never will be.
[[nodiscard]] std::function<void()> leaveDeafScript(
    const std::string& script, std::chrono::milliseconds limit);

} // namespace lab
