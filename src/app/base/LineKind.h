#pragma once

/// What a line about an Expert Advisor is: failures also go to the log file, where they are still found when
/// the terminal has closed.
enum class LineKind { Ordinary, Failure };
