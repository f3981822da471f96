#pragma once

/// How long a request may take, in milliseconds.
struct RequestLimits final {
    int silence = 15'000; ///< without progress
    int read = 60'000;    ///< a whole read, however steadily it drips
    int change = 30'000;  ///< a whole state-changing request
};
