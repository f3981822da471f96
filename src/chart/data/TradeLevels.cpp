#include "chart/data/TradeLevels.h"

#include "app/base/NumberFormat.h"
#include "app/base/ServerText.h"
#include "net/records/LevelsBody.h"
#include "net/records/TradeRecord.h"

#include <QCoreApplication>
#include <QJsonObject>

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
    const QJsonObject& trade, LevelKind kind, double price, const QString& label, const QColor& color)
{
    TradeLevel level;
    level.tradeId = trade::id(trade);
    level.kind = levelText(kind);
    level.price = price;
    level.label = label.arg(shownName(shortId(level.tradeId)));
    level.color = color;
    level.penStyle = Qt::DashLine;
    level.draggable = true;
    return level;
}

void appendOpenTrade(const QJsonObject& trade, QList<TradeLevel>& levels)
{
    const QString id = trade::id(trade);
    const bool buy = trade::side(trade) == Side::Buy;
    if (const double price = trade::entryPrice(trade); price != 0.0) {
        TradeLevel entry;
        entry.tradeId = id;
        entry.kind = levelText(LevelKind::Entry);
        entry.price = price;
        //: %1 the side, %2 lots, %3 the ticket
        entry.label = Label::tr("%1 %2 #%3")
                          .arg(buy ? Label::tr("buy") : Label::tr("sell"), formatVolume(trade::lots(trade)),
                              shownName(shortId(id)));
        entry.color = buy ? buyColor : sellColor;
        entry.penStyle = Qt::SolidLine;
        levels.append(entry);
    }
    if (const auto price = trade::stopLoss(trade))
        levels.append(
            //: stop loss of a ticket
            protectiveLevel(trade, LevelKind::StopLoss, *price, Label::tr("sl #%1"), stopLossColor));
    if (const auto price = trade::takeProfit(trade))
        levels.append(
            //: take profit of a ticket
            protectiveLevel(trade, LevelKind::TakeProfit, *price, Label::tr("tp #%1"), takeProfitColor));
}

void appendPendingOrder(const QJsonObject& order, QList<TradeLevel>& levels)
{
    const double price = trade::pendingPrice(order);
    if (price == 0.0)
        return;
    TradeLevel level;
    level.tradeId = trade::id(order);
    level.kind = levelText(LevelKind::Price);
    level.price = price;
    //: %1 the type of a pending order, %2 lots, %3 the ticket
    level.label = Label::tr("%1 %2 #%3")
                      .arg(shownName(trade::orderKind(order)), formatVolume(trade::lots(order)),
                          shownName(shortId(level.tradeId)));
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
        if (trade::symbol(trade) == symbol)
            appendOpenTrade(trade, levels);
    }
    for (const QJsonValue value : pending) {
        const QJsonObject order = value.toObject();
        if (trade::symbol(order) == symbol)
            appendPendingOrder(order, levels);
    }
    return levels;
}
