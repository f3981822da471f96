#pragma once

/// A symbol's latest prices; 0 where none is known.
struct Quote final {
    double bid = 0.0;
    double ask = 0.0;

    [[nodiscard]] bool isComplete() const { return bid > 0.0 && ask > 0.0; }

    friend bool operator==(const Quote&, const Quote&) = default;
};
