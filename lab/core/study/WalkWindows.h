#pragma once

#include "practice/core/Types.h"

#include <vector>

namespace lab {

/// A time to choose inputs on, and the time behind it to try them on.
struct WalkWindow {
    practice::TimeMs trainFrom = 0;
    practice::TimeMs testFrom = 0; ///< the training ends there
    practice::TimeMs testTo = 0;   ///< the first moment that no longer belongs to it
    practice::TimeMs shortBy = 0;  ///< what its test lacks of the length that was asked for

    [[nodiscard]] practice::TimeMs testLength() const { return testTo - testFrom; }
    /// Less than half a test, from which nothing by the year can be told.
    [[nodiscard]] bool isStump() const { return shortBy > testLength(); }
    friend bool operator==(const WalkWindow&, const WalkWindow&) = default;
};

/// Windows whose tests follow one another without a gap from `from` + `train` to `to`; the last one may be
/// shorter. Anchored ones all train from `from` on. None where the time is too short; lengths are above 0.
[[nodiscard]] std::vector<WalkWindow> walkWindows(practice::TimeMs from, practice::TimeMs to,
    practice::TimeMs train, practice::TimeMs test, bool isAnchored);

} // namespace lab
