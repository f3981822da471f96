#pragma once

#include <optional>
#include <string>
#include <vector>

namespace lab {

/// A figure over two inputs of a sweep.
struct HeatGrid {
    std::string figure;                                     ///< what is shown, such as "sharpe"
    std::string columnName;                                 ///< the input along the top
    std::string rowName;                                    ///< the input down the side
    std::vector<std::string> columns;                       ///< its values
    std::vector<std::string> rows;                          ///< its values
    std::vector<std::vector<std::optional<double>>> values; ///< rows of columns; nothing: undefined or failed
    bool lowIsBest = false;
    std::string id = "heat"; ///< of the part in the page
    std::string title = "Heat map";
    std::string missing = "not tried, failed, or undefined"; ///< why a cell has no value
};

/// The grid as a table with coloured cells, for ReportWords::parts. Names and values are escaped.
[[nodiscard]] std::string heatMap(const HeatGrid& grid);

} // namespace lab
