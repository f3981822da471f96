#include "net/records/TradeRecord.h"

#include "net/records/JsonNumber.h"

using namespace Qt::StringLiterals;

namespace {

std::optional<double> level(const QJsonObject& record, QLatin1StringView key)
{
    const double price = jsonNumber(record.value(key));
    return price != 0.0 ? std::optional(price) : std::nullopt;
}

} // namespace

QString sideText(Side side)
{
    return side == Side::Sell ? u"SELL"_s : u"BUY"_s;
}

Side sideOf(const QString& text)
{
    return text == sideText(Side::Sell) ? Side::Sell : Side::Buy;
}

QString trade::id(const QJsonObject& record)
{
    return record.value("id"_L1).toString();
}

QString trade::accountId(const QJsonObject& record)
{
    return record.value("accountId"_L1).toString();
}

QString trade::symbol(const QJsonObject& record)
{
    return record.value("symbol"_L1).toString();
}

QString trade::typeText(const QJsonObject& record)
{
    return record.value("type"_L1).toString();
}

Side trade::side(const QJsonObject& record)
{
    return typeText(record) == "BUY"_L1 ? Side::Buy : Side::Sell;
}

QString trade::orderKind(const QJsonObject& record)
{
    return record.value("orderKind"_L1).toString();
}

bool trade::isPending(const QJsonObject& record)
{
    return record.value("status"_L1).toString() == "PENDING"_L1;
}

double trade::lots(const QJsonObject& record)
{
    return jsonNumber(record.value("lotSize"_L1));
}

double trade::entryPrice(const QJsonObject& record)
{
    return jsonNumber(record.value("entryPrice"_L1));
}

double trade::exitPrice(const QJsonObject& record)
{
    return jsonNumber(record.value("exitPrice"_L1));
}

double trade::pendingPrice(const QJsonObject& record)
{
    return jsonNumber(record.value("pendingPrice"_L1));
}

std::optional<double> trade::stopLoss(const QJsonObject& record)
{
    return level(record, "stopLoss"_L1);
}

std::optional<double> trade::takeProfit(const QJsonObject& record)
{
    return level(record, "takeProfit"_L1);
}

double trade::profit(const QJsonObject& record)
{
    return jsonNumber(record.value("pnl"_L1));
}

double trade::margin(const QJsonObject& record)
{
    return jsonNumber(record.value("margin"_L1));
}

double trade::swap(const QJsonObject& record)
{
    return jsonNumber(record.value("swap"_L1));
}

double trade::commission(const QJsonObject& record)
{
    return jsonNumber(record.value("commission"_L1));
}

QString trade::createdAt(const QJsonObject& record)
{
    return record.value("createdAt"_L1).toString();
}

QString trade::closedAt(const QJsonObject& record)
{
    const QJsonValue closed = record.value("closedAt"_L1);
    return (closed.isNull() ? record.value("updatedAt"_L1) : closed).toString();
}
