#pragma once

#include <vector>

/// The least of the values that is at least as large as so many per cent of them (the nearest rank); 0
/// without values. The per cent must lie above 0 and not above 100.
[[nodiscard]] double percentile(std::vector<double> values, double percent);
