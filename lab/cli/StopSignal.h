#pragma once

#include <atomic>

namespace lab {

/// Takes Ctrl-C and SIGTERM for a wish to end in good order; a second one ends the program at once. To be
/// called once, at the start.
void watchStopSignals();

/// Set as soon as one of them has come.
[[nodiscard]] const std::atomic<bool>& stopFlag();

/// The exit status of a program that ended for it: 128 and the signal's number. 0 while none has come.
[[nodiscard]] int stopStatus();

/// The same, for a program that has done nothing yet that could be kept; says so if it was stopped.
[[nodiscard]] int stopStatusAtOnce();

} // namespace lab
