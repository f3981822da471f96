#pragma once

#include "chart/data/IndicatorKind.h"

#include <QList>

/// A pane below the prices. A chart has each kind of pane once, on show or hidden.
struct IndicatorPane {
    IndicatorKind kind = IndicatorKind::Rsi;
    qint32 period = 14; ///< bars; remembered while the pane is hidden
    bool shown = false;

    bool operator==(const IndicatorPane&) const = default;
};

/// Each kind of pane, hidden, over its usual period; in the order of the table of kinds.
[[nodiscard]] const QList<IndicatorPane>& hiddenPanes();
