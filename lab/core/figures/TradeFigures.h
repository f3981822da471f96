#pragma once

#include "lab/core/figures/Figures.h"

namespace lab {

/// Fills in what follows from the closed trades alone: their number, results, runs, durations and costs.
void addTradeFigures(const RunResult& result, Figures& figures);

} // namespace lab
