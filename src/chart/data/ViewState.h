#pragma once

/// What part of the series a chart shows, and how wide.
struct ViewState {
    static constexpr double minBarWidth = 1.0;
    static constexpr double maxBarWidth = 40.0;

    double barWidth = 7.0;      ///< horizontal pixels per bar, 1 to 40
    double rightBarIndex = 0.0; ///< bar at the right edge of the plot, may be fractional
    bool autoScroll = true;     ///< the view follows the newest bar
    bool chartShift = false;    ///< an empty margin is kept right of the newest bar

    bool operator==(const ViewState&) const = default;
};
