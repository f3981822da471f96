#pragma once

#include "lab/core/figures/FigureTable.h"

#include <functional>
#include <string>
#include <string_view>

namespace lab {

/// The figure with a key, of whatever has figures.
using FigureOf = std::function<Figure(std::string_view key)>;

/// Why a figure that is undefined is so: what it needs, in a few words such as "needs a trade".
[[nodiscard]] std::string_view whyMissing(std::string_view key, const FigureOf& figureOf);
[[nodiscard]] std::string_view whyMissing(std::string_view key, const Figures& figures);

/// A dash that tells why when it is pointed at; HTML.
[[nodiscard]] std::string missingMark(std::string_view why);

/// A figure for a cell of a page, or the dash with its reason.
[[nodiscard]] std::string figureHtml(FigureKind kind, const Figure& value, std::string_view why);

} // namespace lab
