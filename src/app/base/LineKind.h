#pragma once

/// What a line of the Experts tab tells. A failure is written to the log file as well, so that it can be read
/// after the terminal has closed.
enum class LineKind { Ordinary, Failure };
