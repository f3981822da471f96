#include "net/records/DrawingRecord.h"

#include "net/records/JsonNumber.h"

using namespace Qt::StringLiterals;

QString drawing::id(const QJsonObject& record)
{
    return record.value("id"_L1).toString();
}

QString drawing::tool(const QJsonObject& record)
{
    return record.value("toolType"_L1).toString();
}

QJsonValue drawing::color(const QJsonObject& record)
{
    return record.value("style"_L1).toObject().value("color"_L1);
}

QJsonArray drawing::points(const QJsonObject& record)
{
    return record.value("points"_L1).toArray();
}

qint64 drawing::time(const QJsonObject& point)
{
    const QJsonValue value = point.value("time"_L1);
    if (value.isString())
        return value.toString().toLongLong();
    constexpr double beyond = 9223372036854775808.0; // 2 to the power of 63, the first that does not fit
    const double time = value.toDouble();
    return time >= -beyond && time < beyond ? static_cast<qint64>(time) : 0;
}

double drawing::price(const QJsonObject& point)
{
    return jsonNumber(point.value("price"_L1));
}

QJsonObject drawing::point(qint64 time, double price)
{
    // As text: not every reader of JSON keeps all digits of a 64-bit number.
    return {{u"time"_s, QString::number(time)}, {u"price"_s, price}};
}

QJsonObject drawing::updateBody(const QJsonArray& points, const QString& color)
{
    return {{u"points"_s, points}, {u"style"_s, QJsonObject{{u"color"_s, color}}}};
}

void drawing::addOrigin(
    QJsonObject& body, const QString& tool, const QString& symbol, const QString& accountId)
{
    body.insert("symbol"_L1, symbol);
    body.insert("toolType"_L1, tool);
    if (!accountId.isEmpty())
        body.insert("accountId"_L1, accountId);
}
