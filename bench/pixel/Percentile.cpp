#include "pixel/Percentile.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

double percentile(std::vector<double> values, double percent)
{
    if (values.empty())
        return 0.0;
    const auto rank
        = static_cast<std::size_t>(std::ceil(percent / 100.0 * static_cast<double>(values.size())));
    const std::size_t place = std::clamp<std::size_t>(rank, 1, values.size()) - 1;
    std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(place), values.end());
    return values.at(place);
}
