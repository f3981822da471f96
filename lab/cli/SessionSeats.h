#pragma once

#include "lab/cli/Options.h"
#include "lab/run/SessionCheck.h"

namespace lab {

/// The chart and the account of a recorded session that are meant: those of the command line, or the only
/// ones. Where there are several, those on which orders were placed come first. Throws UsageError, which
/// names what there is to choose from, and SessionError.
[[nodiscard]] SessionSeat chooseSeat(const Options& options);

} // namespace lab
