#pragma once

#include "chart/data/ViewState.h"

#include <QtGlobal>

/// Moving along the series by dragging, and changing the bar width by the wheel. Knows the view state
/// only; the widget that owns it applies the result.
class PanZoom final {
public:
    [[nodiscard]] bool isPanning() const { return m_panning; }

    /// A drag begins at pixel column `x`.
    void begin(int x, const ViewState& state);
    void end() { m_panning = false; }
    /// The numbers of the bars below the drag have become higher by so many.
    void renumber(double bars) { m_startIndex += bars; }

    /// The view with the pointer dragged to column `x` over a series of `count` candles: stays between
    /// the first and the last bar, and follows the market from the last bar on.
    [[nodiscard]] ViewState dragged(int x, ViewState state, qsizetype count) const;

    /// Bar width after one turn of the wheel; anything but an upward turn makes bars narrower.
    [[nodiscard]] static double wheeled(double barWidth, int verticalDelta);
    /// Bar width one menu step wider.
    [[nodiscard]] static double wider(double barWidth);
    /// Bar width one menu step narrower.
    [[nodiscard]] static double narrower(double barWidth);

private:
    bool m_panning = false;
    int m_startX = 0;
    double m_startIndex = 0.0;
};
