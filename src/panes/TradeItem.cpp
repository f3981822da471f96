#include "panes/TradeItem.h"

#include "app/base/NumberFormat.h"
#include "app/ui/Theme.h"
#include "net/records/TradeRecord.h"
#include "panes/TradeCells.h"

#include <QJsonObject>

using namespace tradeCells;

TradeItem::TradeItem(const QJsonObject& trade, int digits)
    : PriceItem(tradeTexts(trade, digits), TradeCurrentPrice)
    , m_closesAtBid(trade::side(trade) == Side::Buy)
{
    setData(TradeSymbol, Qt::UserRole, trade);
    alignRight(this, tradeNumbers);
    if (trade::isPending(trade)) {
        const QBrush grey(fixedColors::grey);
        for (int column = 0; column < TradeColumnCount; ++column)
            setForeground(column, grey);
    } else {
        setProfit(trade::profit(trade));
    }
    setForeground(TradeType, typeColor(trade));
}

void TradeItem::setCurrentPrice(double price, int digits)
{
    setStale(false);
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
