#include "chart/data/IndicatorPane.h"

#include "chart/data/IndicatorTable.h"

const QList<IndicatorPane>& hiddenPanes()
{
    static const QList<IndicatorPane> panes = [] {
        QList<IndicatorPane> all;
        for (const IndicatorRow& row : indicatorTable()) {
            if (row.pane)
                all.append({row.kind, row.usualPeriod, false});
        }
        return all;
    }();
    return panes;
}
