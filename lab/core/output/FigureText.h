#pragma once

#include "lab/core/figures/FigureTable.h"

#include <string>

namespace lab {

/// What stands for an undefined figure.
inline constexpr std::string_view undefinedText = "\xE2\x80\x93";

/// A figure for people: grouped, with its unit, a minus as typography has it; a dash where it is undefined.
[[nodiscard]] std::string figureText(FigureKind kind, const Figure& value);

/// A figure for programs: two decimals for money, none for what is whole, else the shortest that reads as the
/// same; empty where it is undefined.
[[nodiscard]] std::string figureData(FigureKind kind, const Figure& value);

/// "12.34 %" of 0.1234.
[[nodiscard]] std::string percentText(double fraction, int decimals = 2);

/// "1,234.50" of cents, perhaps parts of one.
[[nodiscard]] std::string centsText(double cents);

} // namespace lab
