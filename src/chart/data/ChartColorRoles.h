#pragma once

#include "chart/data/ChartColors.h"

#include <QLatin1StringView>
#include <array>

/// One of the seven colours of a chart as a person and a saved state know it.
struct ChartColorRole {
    const char* label; ///< English; translate in the context "ChartColorRoles"
    QLatin1StringView key;
    QColor ChartColors::*member;
};

/// The roles in the order in which they are shown.
[[nodiscard]] const std::array<ChartColorRole, 7>& chartColorRoles();

/// The two ready-made looks.
[[nodiscard]] ChartColors greenOnBlackColors();
[[nodiscard]] ChartColors blackOnWhiteColors();
