#include "panes/TradeCells.h"

#include "app/base/NumberFormat.h"
#include "app/base/ServerText.h"
#include "app/ui/Theme.h"
#include "net/records/TradeRecord.h"

#include <QDateTime>

using namespace Qt::StringLiterals;

namespace {

QString levelCell(const std::optional<double>& level, int digits)
{
    return level.value_or(0.0) > 0.0 ? formatPrice(*level, digits) : QString();
}

} // namespace

QString tradeCells::typeLabel(const QJsonObject& trade)
{
    const QString kind = shownName(trade::orderKind(trade));
    if (kind.isEmpty() || kind == "MARKET"_L1)
        return shownName(trade::typeText(trade)).toLower();
    return kind.toLower().replace(u'_', u' ');
}

QColor tradeCells::typeColor(const QJsonObject& trade)
{
    return trade::side(trade) == Side::Buy ? fixedColors::profitBlue : fixedColors::lossRed;
}

QString tradeCells::timeText(const QString& iso)
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

QColor tradeCells::profitColor(double profit)
{
    if (profit > 0.0)
        return fixedColors::profitBlue;
    return profit < 0.0 ? fixedColors::lossRed : fixedColors::neutral;
}

QStringList tradeCells::tradeTexts(const QJsonObject& trade, int digits)
{
    const bool pending = trade::isPending(trade);
    return {
        shownName(trade::symbol(trade)),
        shortId(shownName(trade::id(trade))),
        timeText(trade::createdAt(trade)),
        typeLabel(trade),
        formatVolume(trade::lots(trade)),
        formatPrice(pending ? trade::pendingPrice(trade) : trade::entryPrice(trade), digits),
        levelCell(trade::stopLoss(trade), digits),
        levelCell(trade::takeProfit(trade), digits),
        QString(),
        formatMoney(trade::commission(trade)),
        formatMoney(trade::swap(trade)),
        pending ? QString() : formatMoney(trade::profit(trade)),
    };
}

QStringList tradeCells::historyTexts(const QJsonObject& trade, int digits)
{
    return {
        shownName(trade::symbol(trade)),
        shortId(shownName(trade::id(trade))),
        timeText(trade::createdAt(trade)),
        typeLabel(trade),
        formatVolume(trade::lots(trade)),
        formatPrice(trade::entryPrice(trade), digits),
        levelCell(trade::stopLoss(trade), digits),
        levelCell(trade::takeProfit(trade), digits),
        timeText(trade::closedAt(trade)),
        formatPrice(trade::exitPrice(trade), digits),
        formatMoney(trade::commission(trade)),
        formatMoney(trade::swap(trade)),
        formatMoney(trade::profit(trade)),
    };
}
