#pragma once

#include "lab/core/market/HistoryError.h"
#include "lab/core/market/MinuteHistory.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace lab {

/// Reads recorded minutes from a file named SYMBOL-1m.csv (format: practice::readMinuteFile). A symbol that
/// the practice platform lists has its charges and contract; of any other, they follow from its name, as
/// where the platform replays it. Throws HistoryError, with the platform's own words about a damaged file.
[[nodiscard]] MinuteHistory readHistory(const std::filesystem::path& path);

/// The minutes, as a practice platform of this seed and speed shows them, that lie whole between `from` and
/// `to`; spreads are those at each minute's ends, within it the wider one. Throws HistoryError for symbols
/// that the platform does not list (their names are named), times beyond its market's, and no whole minute
/// between.
[[nodiscard]] MinuteHistory simulatedHistory(
    std::string_view symbol, std::uint64_t seed, double speed, practice::TimeMs from, practice::TimeMs to);

/// What a trader has to know of a recorded symbol that the practice platform does not list: its contract and
/// its charges are guessed. A plain sentence; nothing for a symbol that is listed.
[[nodiscard]] std::optional<std::string> contractWarning(const MinuteHistory& history);

/// The pair whose mid turns a symbol's results into USD; nothing where its own price, or none, is needed.
[[nodiscard]] std::optional<std::string> ratePairOf(const practice::SymbolSpec& spec);

} // namespace lab
