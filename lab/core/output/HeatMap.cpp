#include "lab/core/output/HeatMap.h"

#include "lab/core/output/MissingFigure.h"
#include "lab/core/output/PageFrame.h"
#include "lab/core/output/Texts.h"

#include <algorithm>
#include <cmath>

namespace lab {

namespace {

/// The colour behind a value: the stronger, the further it is from nothing; towards the page's own colours,
/// so that it fits light and dark.
std::string colourOf(double value, double largest, bool lowIsBest)
{
    const double share = largest > 0 ? std::min(1.0, std::abs(value) / largest) : 0;
    return std::string("color-mix(in srgb, var(--") + ((value < 0) != lowIsBest ? "loss" : "gain") + "-fill) "
        + fixedText(share * 70, 0) + "%, var(--card))";
}

std::string cell(const std::optional<double>& value, const HeatGrid& grid, double largest, bool isBest)
{
    if (!value || !std::isfinite(*value))
        return "<td>" + missingMark(grid.missing) + "</td>";
    return std::string("<td") + (isBest ? " class=\"best\"" : "") + " style=\"background:"
        + colourOf(*value, largest, grid.lowIsBest) + "\">" + typeset(groupedText(*value, 2)) + "</td>";
}

} // namespace

std::string heatMap(const HeatGrid& grid)
{
    double largest = 0;
    std::optional<double> best;
    for (const auto& row : grid.values) {
        for (const auto& value : row) {
            if (!value || !std::isfinite(*value))
                continue;
            largest = std::max(largest, std::abs(*value));
            if (!best || (grid.lowIsBest ? *value < *best : *value > *best))
                best = *value;
        }
    }
    const auto name = [](const std::string& text) { return escaped(shortened(text, 60)); };
    std::string html = "<div class=\"wide\"><table class=\"heat\">\n<caption>" + name(grid.figure) + " by "
        + name(grid.columnName) + " (across) and " + name(grid.rowName)
        + " (down); the best is framed</caption>\n<thead><tr><th scope=\"col\">" + name(grid.rowName)
        + "</th>";
    for (const std::string& column : grid.columns)
        html += "<th scope=\"col\">" + name(column) + "</th>";
    html += "</tr></thead>\n<tbody>\n";
    for (std::size_t row = 0; row < grid.rows.size(); ++row) {
        html += "<tr><th scope=\"row\">" + name(grid.rows[row]) + "</th>";
        for (std::size_t column = 0; column < grid.columns.size(); ++column) {
            const bool isThere = row < grid.values.size() && column < grid.values[row].size();
            const std::optional<double> value = isThere ? grid.values[row][column] : std::nullopt;
            html += cell(value, grid, largest, value && value == best);
        }
        html += "</tr>\n";
    }
    return pageSection(grid.id, grid.title, html + "</tbody>\n</table></div>");
}

} // namespace lab
