#pragma once

#include "lab/core/figures/Figures.h"

#include <string>

namespace lab {

struct RunResult;

/// What a run comes to, for a terminal: the verdict, the warnings, the figures that are looked at first.
[[nodiscard]] std::string figureList(const RunResult& result, const Figures& figures, bool colours);

} // namespace lab
