#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QString>

/// One chart as the layout remembers it.
struct SavedChart final {
    QString symbol;
    QString timeframe;   ///< a timeframe key, perhaps an unknown one
    QByteArray geometry; ///< of the sub-window; empty when unreadable
    bool maximized = false;
    QJsonObject state; ///< the chart's own state
};

/// The charts as indented JSON text.
[[nodiscard]] QString chartsLayoutText(const QList<SavedChart>& charts);

/// Reads such a text. Entries without a symbol or a timeframe are left out, and so is what exceeds a
/// hundred charts; a text that is no JSON array gives none.
[[nodiscard]] QList<SavedChart> readChartsLayout(const QString& text);
