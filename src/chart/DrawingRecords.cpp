#include "chart/DrawingRecords.h"

#include "net/JsonNumber.h"

#include <QSet>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

/// The last millisecond that calendars know; anchors beyond it would overflow the way to their column.
constexpr qint64 latestTime = 8'640'000'000'000'000;

/// How many points an object of this kind has; 0 for an unknown kind.
qsizetype pointsOf(const QString& type)
{
    if (type == "hline"_L1 || type == "vline"_L1)
        return 1;
    if (type == "trendline"_L1 || type == "rectangle"_L1 || type == "fibonacci"_L1)
        return 2;
    return 0;
}

std::optional<qint64> readTime(const QJsonValue& value)
{
    if (value.isString()) {
        bool ok = false;
        const qint64 time = value.toString().toLongLong(&ok);
        return ok && std::abs(time) <= latestTime ? std::optional(time) : std::nullopt;
    }
    const double time = value.toDouble(std::nan(""));
    if (!(std::abs(time) <= static_cast<double>(latestTime)))
        return std::nullopt;
    return static_cast<qint64>(time);
}

std::optional<double> readPrice(const QJsonValue& value)
{
    const double price = jsonNumber(value);
    if (price != 0.0)
        return price;
    // 0 stands for unreadable as well.
    bool ok = value.isDouble() && value.toDouble() == 0.0;
    if (value.isString())
        ok = value.toString().toDouble(&ok) == 0.0 && ok;
    return ok ? std::optional(0.0) : std::nullopt;
}

std::optional<DrawingPoint> readPoint(const QJsonValue& value)
{
    const QJsonObject fields = value.toObject();
    const std::optional<qint64> time = readTime(fields.value("time"_L1));
    const std::optional<double> price = readPrice(fields.value("price"_L1));
    if (!time || !price)
        return std::nullopt;
    return DrawingPoint{*time, *price};
}

QColor readColor(const QJsonValue& style)
{
    const QString name = style.toObject().value("color"_L1).toString();
    if (!QColor::isValidColor(name))
        return Drawing().color;
    const QColor color(name);
    return {color.red(), color.green(), color.blue()};
}

std::optional<Drawing> readDrawing(const QJsonObject& fields)
{
    Drawing drawing;
    drawing.id = fields.value("id"_L1).toString();
    drawing.type = fields.value("toolType"_L1).toString();
    drawing.color = readColor(fields.value("style"_L1));
    const QJsonArray points = fields.value("points"_L1).toArray();
    const qsizetype wanted = pointsOf(drawing.type);
    if (wanted == 0 || points.size() < wanted)
        return std::nullopt;
    for (qsizetype i = 0; i < wanted; ++i) {
        const std::optional<DrawingPoint> point = readPoint(points.at(i));
        if (!point)
            return std::nullopt;
        drawing.points.append(*point);
    }
    return drawing;
}

} // namespace

std::optional<QList<Drawing>> readDrawings(const QJsonDocument& document)
{
    if (!document.isArray())
        return std::nullopt;
    QList<Drawing> drawings;
    QSet<QString> ids;
    const QJsonArray records = document.array();
    for (const QJsonValue& record : records) {
        const std::optional<Drawing> drawing = readDrawing(record.toObject());
        if (!drawing || (!drawing->id.isEmpty() && ids.contains(drawing->id)))
            continue;
        ids.insert(drawing->id);
        drawings.append(*drawing);
    }
    return drawings;
}

QJsonObject updateDrawingBody(const Drawing& drawing)
{
    QJsonArray points;
    for (const DrawingPoint& point : drawing.points) {
        // As text: not every reader of JSON keeps all digits of a 64-bit number.
        points.append(QJsonObject{{u"time"_s, QString::number(point.time)}, {u"price"_s, point.price}});
    }
    return {{u"points"_s, points}, {u"style"_s, QJsonObject{{u"color"_s, drawing.color.name()}}}};
}

QJsonObject createDrawingBody(const Drawing& drawing, const QString& symbol, const QString& accountId)
{
    QJsonObject body = updateDrawingBody(drawing);
    body.insert(u"symbol"_s, symbol);
    body.insert(u"toolType"_s, drawing.type);
    if (!accountId.isEmpty())
        body.insert(u"accountId"_s, accountId);
    return body;
}
