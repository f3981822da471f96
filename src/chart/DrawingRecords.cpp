#include "chart/DrawingRecords.h"

#include "chart/ColorText.h"
#include "chart/DrawingKind.h"
#include "chart/JsonPrice.h"

#include <QSet>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

/// The last millisecond that calendars know; anchors beyond it would overflow the way to their column.
constexpr qint64 latestTime = 8'640'000'000'000'000;

std::optional<qint64> readTime(const QJsonValue& value)
{
    if (value.isString()) {
        bool ok = false;
        const qint64 time = value.toString().toLongLong(&ok);
        return ok && time >= -latestTime && time <= latestTime ? std::optional(time) : std::nullopt;
    }
    const double time = value.toDouble(std::nan(""));
    if (!(std::abs(time) <= static_cast<double>(latestTime)))
        return std::nullopt;
    return static_cast<qint64>(time);
}

std::optional<DrawingPoint> readPoint(const QJsonValue& value)
{
    const QJsonObject fields = value.toObject();
    const std::optional<qint64> time = readTime(fields.value("time"_L1));
    const std::optional<double> price = jsonPrice(fields.value("price"_L1));
    if (!time || !price)
        return std::nullopt;
    return DrawingPoint{*time, *price};
}

std::optional<Drawing> readDrawing(const QJsonObject& fields)
{
    Drawing drawing;
    drawing.id = fields.value("id"_L1).toString();
    drawing.type = fields.value("toolType"_L1).toString();
    drawing.color = readColor(fields.value("style"_L1).toObject().value("color"_L1), drawing.color);
    const QJsonArray points = fields.value("points"_L1).toArray();
    const std::optional<DrawingKind> kind = drawingKind(drawing.type);
    if (!kind || points.size() < pointsNeeded(*kind))
        return std::nullopt;
    for (int i = 0; i < pointsNeeded(*kind); ++i) {
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
