#pragma once

class QRect;
struct ChartFrame;

/// The texts that begin at the left edge of the plot.
namespace lefttexts {

/// Where such texts begin in the rows from `top` to `bottom`: beside what covers the edge there.
[[nodiscard]] int column(const ChartFrame& frame, int top, int bottom);

/// The room of the text of a level, above its line at row `y`; `rows` high, and ending so far above the line.
[[nodiscard]] QRect aboveLine(const ChartFrame& frame, int y, int rows);

} // namespace lefttexts
