#include "chart/layers/LeftTexts.h"

#include "chart/layers/ChartFrame.h"

namespace {

constexpr int margin = 6;
/// Between a line and the room of its text.
constexpr int gap = 2;
/// How far the letters may hang over the room that centres them.
constexpr int overhang = 2;

} // namespace

int lefttexts::column(const ChartFrame& frame, int top, int bottom)
{
    const int first = frame.view.plot().left() + margin;
    const QRect rows(first, top, 1, bottom - top + 1);
    return frame.covered.intersects(rows) ? frame.covered.right() + 1 + margin : first;
}

QRect lefttexts::aboveLine(const ChartFrame& frame, int y, int rows)
{
    const QRect& plot = frame.view.plot();
    const int top = y - gap - rows;
    const int left = column(frame, top - overhang, y - 1);
    return {left, top, plot.right() - margin - left + 1, rows};
}
