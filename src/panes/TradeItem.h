#pragma once

#include "panes/PriceItem.h"

#include <optional>

class QJsonObject;

/// One open trade or pending order in the Trade list. Remembers the numbers behind its live cells, so
/// that a value which did not change is neither formatted nor painted again. The whole record is in
/// column 0 under Qt::UserRole.
class TradeItem final : public PriceItem {
public:
    /// `digits`: the symbol's price decimals.
    TradeItem(const QJsonObject& trade, int digits);

    /// True when the trade would be closed at the bid.
    [[nodiscard]] bool closesAtBid() const { return m_closesAtBid; }

    /// A live price: it is not stale.
    void setCurrentPrice(double price, int digits);
    /// In account currency.
    void setProfit(double profit);

private:
    bool m_closesAtBid;
    std::optional<double> m_currentPrice;
    std::optional<double> m_profit;
};

/// Right-aligns, centred vertically, the given columns of a row.
void alignRight(QTreeWidgetItem* item, std::initializer_list<int> columns);
