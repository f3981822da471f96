#pragma once

#include "lab/cli/Options.h"

namespace lab {

// The program's commands: each writes to the standard output and returns the exit status. They throw
// UsageError, HistoryError or OutputError, whose text is a line for a person; the status is 2 then.

inline constexpr int succeeded = 0;
inline constexpr int fellShort = 1;   ///< a script failed, or a check found something
inline constexpr int notPossible = 2; ///< arguments, prices or files cannot be used
inline constexpr int someFailed = 3;  ///< some sets of a study

[[nodiscard]] int listInputs(const Options& options);
[[nodiscard]] int runOnce(Options options);
[[nodiscard]] int reportTrades(const Options& options);
[[nodiscard]] int compareResults(const Options& options);
[[nodiscard]] int checkScript(Options options);
[[nodiscard]] int sweepSets(Options options);
[[nodiscard]] int walkForward(Options options);
[[nodiscard]] int challengePlan(Options options);
[[nodiscard]] int planChunks(Options options);
[[nodiscard]] int workChunk(const Options& options);
[[nodiscard]] int mergeChunks(const Options& options);
[[nodiscard]] int verifySession(Options options);

} // namespace lab
