#pragma once

#include "lab/core/Moment.h"
#include "practice/core/PointScale.h"
#include "practice/core/Types.h"

#include <cstdint>

namespace lab {

/// A two-sided price in points.
struct PointQuote {
    std::int64_t bid = 0;
    std::int64_t ask = 0;

    [[nodiscard]] practice::Quote toPrices(int digits) const
    {
        const double unit = practice::pointsPerUnit(digits);
        return {static_cast<double>(bid) / unit, static_cast<double>(ask) / unit};
    }
    friend bool operator==(const PointQuote&, const PointQuote&) = default;
};

/// Bid and ask at a moment.
[[nodiscard]] inline PointQuote quoteAt(const Moment& moment)
{
    return {moment.mid - moment.halfSpread, moment.mid + moment.halfSpread};
}

} // namespace lab
