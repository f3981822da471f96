#include "panes/TradeItem.h"

#include "app/base/NumberFormat.h"
#include "app/ui/Theme.h"
#include "net/records/JsonNumber.h"
#include "panes/TradeCells.h"

#include <QJsonObject>

using namespace Qt::StringLiterals;
using namespace TradeCells;

TradeItem::TradeItem(const QJsonObject& trade, int digits)
    : QTreeWidgetItem(tradeTexts(trade, digits))
    , m_closesAtBid(trade.value("type"_L1).toString() == "BUY"_L1)
{
    setData(TradeSymbol, Qt::UserRole, trade);
    alignRight(this, TradeNumbers);
    if (isPending(trade)) {
        const QBrush grey(FixedColors::grey);
        for (int column = 0; column < TradeColumnCount; ++column)
            setForeground(column, grey);
    } else {
        setProfit(jsonNumber(trade.value("pnl"_L1)));
    }
    setForeground(TradeType, typeColor(trade));
}

void TradeItem::setCurrentPrice(double price, int digits)
{
    if (m_currentPrice == price)
        return;
    m_currentPrice = price;
    setText(TradeCurrentPrice, formatPrice(price, digits));
}

void TradeItem::setProfit(double profit)
{
    if (m_profit == profit)
        return;
    m_profit = profit;
    setText(TradeProfit, formatMoney(profit));
    setForeground(TradeProfit, profitColor(profit));
}

void alignRight(QTreeWidgetItem* item, std::initializer_list<int> columns)
{
    for (const int column : columns)
        item->setTextAlignment(column, Qt::AlignRight | Qt::AlignVCenter);
}
