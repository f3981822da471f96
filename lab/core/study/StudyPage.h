#pragma once

#include "lab/core/output/ReportPage.h"

namespace lab {

struct SweepTable;
struct Walk;

// What the page of a study says of it in its title, its verdict and its settings.

/// Of a sweep that has a best set, whose run the page shows.
[[nodiscard]] StudyWords sweepWords(const SweepTable& table);

[[nodiscard]] StudyWords walkWords(const Walk& walk);

} // namespace lab
