#pragma once

#include "panes/PriceAlert.h"

#include <QList>

#include <limits>
#include <map>

class PriceSnapshot;

/// The price alerts in the order they were made, and which of them a price snapshot sets off. However many
/// there are, a check compares each symbol's price with its two nearest alerts only.
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

    /// Marks the alerts that this snapshot sets off, and returns them in list order. A bid that is not above
    /// 0 sets off none.
    [[nodiscard]] QList<Fired> check(const PriceSnapshot& prices);

private:
    /// The nearest thresholds of one symbol's active alerts. A bid between the two sets off no alert.
    struct Watch {
        double lowestAbove = std::numeric_limits<double>::infinity();
        double highestBelow = -std::numeric_limits<double>::infinity();
    };

    void watch(const PriceAlert& alert);
    void watchAll();
    void collect(const QString& symbol, double bid, QList<Fired>& fired);

    QList<PriceAlert> m_alerts;
    std::map<QString, Watch> m_watched; ///< of every symbol with an active alert
};
