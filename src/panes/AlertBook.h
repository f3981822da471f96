#pragma once

#include "panes/PriceAlert.h"

#include <QHash>
#include <QJsonObject>
#include <QList>

/// The price alerts in the order they were made, and which of them a price snapshot sets off. What a snapshot
/// costs depends on the symbols that are waited for, not on the number of alerts.
class AlertBook final {
public:
    /// An alert that a snapshot has set off.
    struct Fired {
        qsizetype index = 0;
        double bid = 0.0;
    };

    /// Reads what toJson() wrote; a text that is no such list gives no alerts, and fields that are missing or
    /// of a wrong type count as "", below, 0 and active.
    [[nodiscard]] static AlertBook fromJson(const QString& text);
    [[nodiscard]] QString toJson() const;

    [[nodiscard]] const QList<PriceAlert>& alerts() const { return m_alerts; }
    void add(const PriceAlert& alert);
    /// An index outside the list removes nothing.
    void removeAt(qsizetype index);

    /// Marks the alerts that this price map sets off, and returns them in list order. A bid that is missing,
    /// unreadable or not above 0 sets off none.
    [[nodiscard]] QList<Fired> check(const QJsonObject& prices);

private:
    /// The nearest thresholds of one symbol's active alerts; a bid between them sets off none.
    struct Watch {
        double lowestAbove;
        double highestBelow;
    };

    void watch(const PriceAlert& alert);
    void watchAll();
    void checkSymbol(
        const QString& symbol, const Watch& watched, const QJsonValue& quote, QList<Fired>& fired);
    void collect(const QString& symbol, double bid, QList<Fired>& fired);

    QList<PriceAlert> m_alerts;
    QHash<QString, Watch> m_watched; ///< of every symbol with an active alert
};
