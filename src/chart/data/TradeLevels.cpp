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

QString inWords(const QString& kind, const QJsonObject& trade)
{
    //: %1 the side or the type of a pending order, %2 lots, %3 the ticket
    return Label::tr("%1 %2 #%3")
        .arg(kind, formatVolume(trade::lots(trade)), shownName(shortId(trade::id(trade))));
}

QString positionInWords(const QJsonObject& trade)
{
    return inWords(trade::side(trade) == Side::Buy ? Label::tr("buy") : Label::tr("sell"), trade);
}

TradeLevel protectiveLevel(
    const QJsonObject& trade, LevelKind kind, double price, const QString& label, const QColor& color)
{
    TradeLevel level;
    level.tradeId = trade::id(trade);
    level.trade = positionInWords(trade);
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
    if (const double price = trade::entryPrice(trade); price != 0.0) {
        TradeLevel entry;
        entry.tradeId = trade::id(trade);
        entry.kind = levelText(LevelKind::Entry);
        entry.price = price;
        entry.trade = positionInWords(trade);
        entry.label = entry.trade;
        entry.color = trade::side(trade) == Side::Buy ? buyColor : sellColor;
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
    const QString kind = shownName(trade::orderKind(order));
    level.label = inWords(kind, order);
    level.trade = inWords(kind.toLower().replace(u'_', u' '), order);
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
