#pragma once

#include "experts/ExpertScript.h"
#include "lab/core/RunSettings.h"
#include "lab/core/market/MinuteHistory.h"

#include <cstddef>
#include <filesystem>

/// A random walk of EURUSD, minute after minute without a hole: the same for the same number.
[[nodiscard]] lab::MinuteHistory minuteWalk(std::size_t count);

/// Writes it as a file of recorded minutes, asks included; throws std::runtime_error when that fails.
void writeMinutes(const std::filesystem::path& path, const lab::MinuteHistory& history);

/// The example of two moving averages, as the programs come with it.
[[nodiscard]] ExpertScript averagesScript();

/// Over the whole of such a walk, with no bar before it.
[[nodiscard]] lab::RunSettings walkSettings(practice::Timeframe timeframe, lab::Model model);
