#pragma once

#include <QString>

class ChartGestures;

/// What the next click on the chart, or key, does for a level that keys hold, the tool in hand or the ruler;
/// a line short enough for the status bar. Empty when there is none of them.
[[nodiscard]] QString toolHint(const ChartGestures& gestures);
