#include "panes/TradeCells.h"

#include "app/base/NumberFormat.h"
#include "app/base/ServerText.h"
#include "app/ui/Theme.h"
#include "net/records/JsonNumber.h"

#include <QDateTime>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace {

double number(const QJsonObject& trade, QLatin1StringView key)
{
    return jsonNumber(trade.value(key));
}

QString text(const QJsonObject& trade, QLatin1StringView key)
{
    return shownName(trade.value(key).toString());
}

QString price(const QJsonObject& trade, QLatin1StringView key, int digits)
{
    return formatPrice(number(trade, key), digits);
}

QString level(const QJsonObject& trade, QLatin1StringView key, int digits)
{
    const double value = number(trade, key);
    return value > 0.0 ? formatPrice(value, digits) : QString();
}

QString money(const QJsonObject& trade, QLatin1StringView key)
{
    return formatMoney(number(trade, key));
}

} // namespace

bool TradeCells::isPending(const QJsonObject& trade)
{
    return trade.value("status"_L1).toString() == "PENDING"_L1;
}

QString TradeCells::typeLabel(const QJsonObject& trade)
{
    const QString kind = text(trade, "orderKind"_L1);
    if (kind.isEmpty() || kind == "MARKET"_L1)
        return text(trade, "type"_L1).toLower();
    return kind.toLower().replace(u'_', u' ');
}

QColor TradeCells::typeColor(const QJsonObject& trade)
{
    const bool buy = trade.value("type"_L1).toString() == "BUY"_L1;
    return buy ? FixedColors::profitBlue : FixedColors::lossRed;
}

QString TradeCells::timeText(const QString& iso)
{
    QDateTime time = QDateTime::fromString(iso, Qt::ISODateWithMs);
    // A time without a zone would count as local and could fall into the hour that a change to
    // summer time skips; it is shown as it was sent, so any zone without such hours will do.
    if (!time.isValid() || time.timeSpec() == Qt::LocalTime) {
        const QDateTime asUtc = QDateTime::fromString(iso + u'Z', Qt::ISODateWithMs);
        if (asUtc.isValid())
            time = asUtc;
    }
    return time.isValid() ? time.toString(u"yyyy.MM.dd HH:mm:ss") : QString();
}

QColor TradeCells::profitColor(double profit)
{
    if (profit > 0.0)
        return FixedColors::profitBlue;
    return profit < 0.0 ? FixedColors::lossRed : FixedColors::neutral;
}

QStringList TradeCells::tradeTexts(const QJsonObject& trade, int digits)
{
    const bool pending = isPending(trade);
    return {
        text(trade, "symbol"_L1),
        shortId(text(trade, "id"_L1)),
        timeText(trade.value("createdAt"_L1).toString()),
        typeLabel(trade),
        formatVolume(number(trade, "lotSize"_L1)),
        price(trade, pending ? "pendingPrice"_L1 : "entryPrice"_L1, digits),
        level(trade, "stopLoss"_L1, digits),
        level(trade, "takeProfit"_L1, digits),
        QString(),
        money(trade, "commission"_L1),
        money(trade, "swap"_L1),
        pending ? QString() : money(trade, "pnl"_L1),
    };
}

QStringList TradeCells::historyTexts(const QJsonObject& trade, int digits)
{
    const bool unclosed = trade.value("closedAt"_L1).isNull();
    return {
        text(trade, "symbol"_L1),
        shortId(text(trade, "id"_L1)),
        timeText(trade.value("createdAt"_L1).toString()),
        typeLabel(trade),
        formatVolume(number(trade, "lotSize"_L1)),
        price(trade, "entryPrice"_L1, digits),
        level(trade, "stopLoss"_L1, digits),
        level(trade, "takeProfit"_L1, digits),
        timeText(trade.value(unclosed ? "updatedAt"_L1 : "closedAt"_L1).toString()),
        price(trade, "exitPrice"_L1, digits),
        money(trade, "commission"_L1),
        money(trade, "swap"_L1),
        money(trade, "pnl"_L1),
    };
}
