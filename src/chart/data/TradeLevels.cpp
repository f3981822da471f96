#include "chart/data/TradeLevels.h"

#include "app/base/NumberFormat.h"
#include "app/base/ServerText.h"
#include "net/records/JsonNumber.h"

#include <QCoreApplication>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace {

constexpr QColor buyColor(0x3b, 0xa7, 0xff);
constexpr QColor sellColor(0xff, 0x4a, 0x4a);
constexpr QColor stopLossColor(0xff, 0x4a, 0x4a);
constexpr QColor takeProfitColor(0x00, 0xe6, 0x76);
constexpr QColor pendingColor(0xff, 0xa7, 0x26);

struct Label {
    Q_DECLARE_TR_FUNCTIONS(TradeLevels)
};

TradeLevel protectiveLevel(
    const QJsonObject& trade, const QString& kind, double price, const QString& label, const QColor& color)
{
    TradeLevel level;
    level.tradeId = trade.value("id"_L1).toString();
    level.kind = kind;
    level.price = price;
    level.label = label.arg(shownName(shortId(level.tradeId)));
    level.color = color;
    level.penStyle = Qt::DashLine;
    level.draggable = true;
    return level;
}

void appendOpenTrade(const QJsonObject& trade, QList<TradeLevel>& levels)
{
    const QString id = trade.value("id"_L1).toString();
    const bool buy = trade.value("type"_L1).toString() == "BUY"_L1;
    if (const double price = jsonNumber(trade.value("entryPrice"_L1)); price != 0.0) {
        TradeLevel entry;
        entry.tradeId = id;
        entry.kind = u"ENTRY"_s;
        entry.price = price;
        entry.label = Label::tr("%1 %2 #%3")
                          .arg(buy ? Label::tr("buy") : Label::tr("sell"),
                              formatVolume(jsonNumber(trade.value("lotSize"_L1))), shownName(shortId(id)));
        entry.color = buy ? buyColor : sellColor;
        entry.penStyle = Qt::SolidLine;
        levels.append(entry);
    }
    if (const double price = jsonNumber(trade.value("stopLoss"_L1)); price != 0.0)
        levels.append(protectiveLevel(trade, u"SL"_s, price, Label::tr("sl #%1"), stopLossColor));
    if (const double price = jsonNumber(trade.value("takeProfit"_L1)); price != 0.0)
        levels.append(protectiveLevel(trade, u"TP"_s, price, Label::tr("tp #%1"), takeProfitColor));
}

void appendPendingOrder(const QJsonObject& order, QList<TradeLevel>& levels)
{
    const double price = jsonNumber(order.value("pendingPrice"_L1));
    if (price == 0.0)
        return;
    TradeLevel level;
    level.tradeId = order.value("id"_L1).toString();
    level.kind = u"PRICE"_s;
    level.price = price;
    level.label
        = Label::tr("%1 %2 #%3")
              .arg(shownName(order.value("orderKind"_L1).toString()),
                  formatVolume(jsonNumber(order.value("lotSize"_L1))), shownName(shortId(level.tradeId)));
    level.color = pendingColor;
    level.penStyle = Qt::DashLine;
    level.draggable = true;
    levels.append(level);
}

} // namespace

QList<TradeLevel> buildTradeLevels(const QString& symbol, const QJsonArray& open, const QJsonArray& pending)
{
    QList<TradeLevel> levels;
    for (const QJsonValue value : open) {
        const QJsonObject trade = value.toObject();
        if (trade.value("symbol"_L1).toString() == symbol)
            appendOpenTrade(trade, levels);
    }
    for (const QJsonValue value : pending) {
        const QJsonObject order = value.toObject();
        if (order.value("symbol"_L1).toString() == symbol)
            appendPendingOrder(order, levels);
    }
    return levels;
}
