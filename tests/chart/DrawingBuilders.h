#pragma once

#include "chart/data/Drawing.h"

#include <QStringList>

/// Objects as tests need them, and what tests ask of a list of them.
namespace fixtures {

inline Drawing horizontalLine(const QString& id, double price, bool selected = false)
{
    return {id, QStringLiteral("hline"), {{1000, price}}, Drawing().color, selected};
}

/// The ids of what is selected, joined by commas. One without an id is a dash.
inline QString selectedIds(const QList<Drawing>& drawings)
{
    QStringList ids;
    for (const Drawing& drawing : drawings) {
        if (drawing.selected)
            ids.append(drawing.id.isEmpty() ? QStringLiteral("-") : drawing.id);
    }
    return ids.join(QLatin1Char(','));
}

} // namespace fixtures
