#pragma once

#include "practice/core/Types.h"
#include "practice/core/broker/Money.h"

#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>

namespace lab {

// How the values of options read. Nothing stands for a text that is no such value.

/// Digits and nothing else, between both limits.
[[nodiscard]] std::optional<std::uint64_t> wholeNumber(std::string_view text, std::uint64_t lowest = 0,
    std::uint64_t highest = std::numeric_limits<std::uint64_t>::max());

/// A plain or scientific decimal number between both limits.
[[nodiscard]] std::optional<double> decimalNumber(std::string_view text, double lowest, double highest);

/// An amount above 0 with at most two decimals, up to 10^12.
[[nodiscard]] std::optional<practice::Cents> amount(std::string_view text);

/// A moment in UTC: 2014-05-01, 2014-05-01T12:30, 2014-05-01T12:30:00 or ...00.000, each with a Z or without;
/// of the years 1970 to 9999.
[[nodiscard]] std::optional<practice::TimeMs> moment(std::string_view text);

} // namespace lab
