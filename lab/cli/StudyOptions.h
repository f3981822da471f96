#pragma once

#include "practice/core/Types.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>

namespace lab {

/// What only the commands that make many runs are told.
struct StudyOptions {
    std::optional<std::uint64_t> random; ///< so many sets of all
    std::size_t jobs = 0;                ///< at once; 0: as is usual for the command
    std::string sort = "sharpe";         ///< key of a figure
    std::uint64_t minTrades = 30;
    std::uint64_t memoryMb = 2048; ///< of each worker, besides the prices
    bool resume = false;
    practice::TimeMs train = 0; ///< length of a window
    practice::TimeMs test = 0;
    bool isAnchored = false; ///< every window trains from the first day on
    bool daily = false;      ///< a start on each day
    std::optional<std::pair<std::uint64_t, std::uint64_t>> seeds; ///< of simulated markets, both counted
    std::uint64_t chunks = 0;
    std::filesystem::path plan;
    std::uint64_t chunk = 0; ///< from 1
};

} // namespace lab
