#pragma once

#include <QString>

class ChartGestures;

/// What the next click on the chart, or Enter, does for the tool in hand or for the ruler; a line short
/// enough for the status bar. Empty when neither is in hand.
[[nodiscard]] QString toolHint(const ChartGestures& gestures);
